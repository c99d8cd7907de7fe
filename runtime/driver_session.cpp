#include "runtime/driver_session.h"

#include "runtime/attribute_registry.h"
#include "runtime/driver_identity.h"
#include "runtime/repeated_capability.h"

#include <utility>

namespace drivekit
{
namespace
{

template <class Value>
const Value* find(const NamedValues<Value>& values, std::string_view name)
{
    const auto found = values.find(name);
    return found == values.end() ? nullptr : &found->second;
}

/// "CH1" to "CH6" stand for the physical names, in their order.
bool appendChannelAlias(std::string_view token, std::string& text)
{
    constexpr std::string_view kPrefix = "CH";
    if (token.size() != kPrefix.size() + 1 || !token.starts_with(kPrefix))
        return false;
    const auto position = static_cast<std::size_t>(token.back() - '1');
    if (position >= RepCapBase<OutputChannel>::kCount)
        return false;
    text += RepCapBase<OutputChannel>::physicalName(position).text();
    return true;
}

} // namespace

ViStatus DriverSession::Initialize(const std::string& resourceName, bool idQuery, bool reset,
                                   const std::string& optionString)
{
    resourceName_ = resourceName;
    idQuery_ = idQuery;
    reset_ = reset;
    optionString_ = optionString;
    ViStatus status = ResolveConfiguration(resourceName, optionString);
    if (status < 0)
        return status;
    if (options_.interchangeCheck && !interchangeCheckSupported_)
        return ReportErrorWithElaboration(base::kErrorBadOptionValue, elaborations::kNoInterchangeCheck, {"True"});
    status = openSession();
    if (status < 0)
        CloseInstrument();
    return status;
}

/// What init does with the instrument; after a failure the caller closes it.
ViStatus DriverSession::openSession()
{
    ViStatus status = OpenInstrument();
    if (status >= 0 && options_.queryInstrumentStatus)
        status = InitializeStatus();
    if (status >= 0)
        status = ReadIdentity(manufacturer_, model_, serialNumber_, firmwareRevision_);
    return status < 0 ? status : checkIdentity();
}

ViStatus DriverSession::checkIdentity()
{
    if (!idQuery_ || IsModelSupported())
        return VI_SUCCESS;
    // The message has no place for the model, so the description does not name it.
    return ReportError(base::kErrorIdQueryFailed, {"Unrecognized model: " + model_});
}

ViStatus DriverSession::Close()
{
    return CloseInstrument();
}

ViSession DriverSession::GetViSession() const
{
    return vi_;
}

bool DriverSession::cache() const
{
    return options_.cache;
}

bool DriverSession::interchangeCheck() const
{
    return options_.interchangeCheck;
}

bool DriverSession::queryInstrumentStatus() const
{
    return options_.queryInstrumentStatus;
}

bool DriverSession::rangeCheck() const
{
    return options_.rangeCheck;
}

bool DriverSession::recordCoercions() const
{
    return options_.recordCoercions;
}

bool DriverSession::simulate() const
{
    return options_.simulate;
}

bool DriverSession::initialCache() const
{
    return initialOptions_.cache;
}

bool DriverSession::initialInterchangeCheck() const
{
    return initialOptions_.interchangeCheck;
}

bool DriverSession::initialQueryInstrumentStatus() const
{
    return initialOptions_.queryInstrumentStatus;
}

bool DriverSession::initialRangeCheck() const
{
    return initialOptions_.rangeCheck;
}

bool DriverSession::initialRecordCoercions() const
{
    return initialOptions_.recordCoercions;
}

bool DriverSession::initialSimulate() const
{
    return initialOptions_.simulate;
}

void DriverSession::setCache(bool value)
{
    options_.cache = value;
}

void DriverSession::setInterchangeCheck(bool value)
{
    options_.interchangeCheck = value;
}

void DriverSession::setQueryInstrumentStatus(bool value)
{
    options_.queryInstrumentStatus = value;
}

void DriverSession::setRangeCheck(bool value)
{
    options_.rangeCheck = value;
}

void DriverSession::setRecordCoercions(bool value)
{
    options_.recordCoercions = value;
}

void DriverSession::setSimulate(bool value)
{
    options_.simulate = value;
}

const std::string& DriverSession::optionString() const
{
    return optionString_;
}

const std::string& DriverSession::resourceName() const
{
    return resourceName_;
}

bool DriverSession::idQuery() const
{
    return idQuery_;
}

bool DriverSession::reset() const
{
    return reset_;
}

const std::string& DriverSession::logicalName() const
{
    return logicalName_;
}

const std::string& DriverSession::ioResourceDescriptor() const
{
    return ioResourceDescriptor_;
}

const std::string& DriverSession::driverSetup() const
{
    return driverSetup_;
}

const std::string& DriverSession::manufacturer() const
{
    return manufacturer_;
}

const std::string& DriverSession::model() const
{
    return model_;
}

const std::string& DriverSession::serialNumber() const
{
    return serialNumber_;
}

const std::string& DriverSession::firmwareRevision() const
{
    return firmwareRevision_;
}

ViInt32 DriverSession::openTimeoutMs() const
{
    return openTimeoutMs_;
}

ViInt32 DriverSession::ioTimeoutMs() const
{
    return ioTimeoutMs_;
}

ViInt32 DriverSession::closeTimeoutMs() const
{
    return closeTimeoutMs_;
}

bool DriverSession::interchangeCheckSupported() const
{
    return interchangeCheckSupported_;
}

ViInt32 DriverSession::settlingTimeMs() const
{
    return settlingTimeMs_;
}

const NamedValues<bool>& DriverSession::configuredBooleans() const
{
    return configuredBooleans_;
}

const NamedValues<ViInt32>& DriverSession::configuredIntegers() const
{
    return configuredIntegers_;
}

const NamedValues<ViReal64>& DriverSession::configuredReals() const
{
    return configuredReals_;
}

const NamedValues<std::string>& DriverSession::configuredStrings() const
{
    return configuredStrings_;
}

const std::string* DriverSession::configuredString(std::string_view name) const
{
    return find(configuredStrings_, name);
}

const ViInt32* DriverSession::configuredInteger(std::string_view name) const
{
    return find(configuredIntegers_, name);
}

const ViReal64* DriverSession::configuredReal(std::string_view name) const
{
    return find(configuredReals_, name);
}

const bool* DriverSession::configuredBoolean(std::string_view name) const
{
    return find(configuredBooleans_, name);
}

const VirtualNames& DriverSession::virtualNames() const
{
    return virtualNames_;
}

const NamedValues<std::vector<std::string>>& DriverSession::physicalNames() const
{
    return physicalNames_;
}

bool DriverSession::mappedText(std::string_view token, std::string& text) const
{
    return virtualNames_.append(token, text) || appendChannelAlias(token, text);
}

const NamedValues<std::string>& DriverSession::driverSetupOptions() const
{
    return driverSetupOptions_;
}

const NamedValues<std::string>& DriverSession::inherentOptionTable() const
{
    return inherentOptions_;
}

const std::string* DriverSession::driverSetupOption(std::string_view name) const
{
    return find(driverSetupOptions_, name);
}

bool DriverSession::IsModelSupported() const
{
    return !familyOfModel(model_).empty();
}

bool DriverSession::namesStoreEntry() const
{
    return namesStoreEntry_;
}

bool DriverSession::IsModel(std::string_view name) const
{
    return model_ == name;
}

bool DriverSession::IsModelOfFamily(std::string_view model, std::string_view family)
{
    const std::string_view found = familyOfModel(model);
    return !found.empty() && found == family;
}

const std::string& DriverSession::connectionDescriptor() const
{
    return connectionDescriptor_;
}

ViStatus DriverSession::ReportError(ViStatus code, MessageArguments arguments)
{
    return drivekit::ReportError(vi_, code, arguments);
}

ViStatus DriverSession::ReportErrorWithElaboration(ViStatus code, std::string_view elaboration,
                                                   MessageArguments arguments)
{
    return drivekit::ReportErrorWithElaboration(vi_, code, elaboration, arguments);
}

ViStatus DriverSession::ReportErrorText(ViStatus code, std::string_view text, MessageArguments arguments)
{
    return drivekit::ReportErrorText(vi_, code, text, arguments);
}

void DriverSession::InvalidateAllAttributes()
{
    for (const AttributeInfo& attribute : attributes_)
        attribute.invalidate(*this, true, {});
}

void DriverSession::setInstrument(std::shared_ptr<TSRO::InstBase> instrument, bool simulated)
{
    runsSimulated_ = simulated;
    if (const auto previous = std::exchange(instrument_, std::move(instrument)))
        previous->close();
}

} // namespace drivekit
