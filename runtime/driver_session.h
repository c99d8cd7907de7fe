#pragma once

#include "base/option_grammar.h"
#include "instrument/identity.h"
#include "instrument/inst_base.h"
#include "io/message_log.h"
#include "runtime/attribute_cache.h"
#include "runtime/driver_identity.h"
#include "runtime/error_messages.h"
#include "runtime/session_settings.h"
#include "runtime/virtual_names.h"

#include <IviConfigServer.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace drivekit
{

class AttributeRegistry;

/// Values by name.
template <class Value>
using NamedValues = std::map<std::string, Value, std::less<>>;

/// The value of a name; null when there is none.
template <class Value>
const Value* valueOf(const NamedValues<Value>& values, std::string_view name)
{
    const auto found = values.find(name);
    return found == values.end() ? nullptr : &found->second;
}

/// What one resolution of the configuration finds out, and the next one forgets.
struct Configuration
{
    base::InherentOptions options = base::kDefaultOptions;
    std::string connectionDescriptor = {};
    std::string logicalName = {};
    std::string ioResourceDescriptor = {};
    bool namesStoreEntry = false;
    NamedValues<bool> booleans = {};
    NamedValues<ViInt32> integers = {};
    NamedValues<ViReal64> reals = {};
    NamedValues<std::string> strings = {};
    VirtualNames virtualNames = {};
    NamedValues<std::vector<std::string>> physicalNames = {};
};

/// What stands behind a `ViSession`: the session service's data pointer of a session leads here.
class IoSession
{
public:
    explicit IoSession(ViSession vi) : vi_(vi) {}
    IoSession(const IoSession&) = delete;
    IoSession& operator=(const IoSession&) = delete;
    virtual ~IoSession() = default;

protected:
    ViSession vi_;
};

/// One driver session: its options, what it was opened with, and its instrument.
///
/// Used only under the IVI session lock. Every operation returns a status; a negative one has been recorded on the
/// session by the operation that met it. The virtual operations stand in a fixed order: a new one goes behind those
/// that are there.
class DriverSession : public IoSession
{
public:
    /// `attributes` are those of the driver; they outlive the session.
    DriverSession(ViSession vi, const AttributeRegistry& attributes) : IoSession(vi), attributes_(attributes) {}

    /// Creates the instrument object and opens it on the session's connection descriptor.
    virtual ViStatus OpenInstrument() = 0;

    /// Closes the instrument's connection; nothing without an instrument.
    virtual ViStatus CloseInstrument() = 0;

    /// Clears the instrument's status and checks it; nothing when simulating.
    virtual ViStatus InitializeStatus() = 0;

    /// Copies the instrument's identity.
    virtual ViStatus ReadIdentity(std::string& manufacturer, std::string& model, std::string& serialNumber,
                                  std::string& firmwareRevision) = 0;

    /// Reads the standard event status register and reports an error bit (0x3C: query, device-dependent, execution or
    /// command error); nothing when simulating or when status checking is off.
    virtual ViStatus CheckStatus() = 0;

    /// Makes a new object a working session. A failure leaves it to be deleted, with the instrument closed if it had
    /// got as far as that.
    virtual ViStatus Initialize(const std::string& resourceName, bool idQuery, bool reset,
                                const std::string& optionString);

    virtual ViStatus Close() { return CloseInstrument(); }

    virtual ViSession GetViSession() const { return vi_; }

    // The inherent options as they are now.
    virtual bool cache() const { return configuration_.options.cache; }
    virtual bool interchangeCheck() const { return configuration_.options.interchangeCheck; }
    virtual bool queryInstrumentStatus() const { return configuration_.options.queryInstrumentStatus; }
    virtual bool rangeCheck() const { return configuration_.options.rangeCheck; }
    virtual bool recordCoercions() const { return configuration_.options.recordCoercions; }
    virtual bool simulate() const { return configuration_.options.simulate; }

    // The inherent options as they were after initialisation.
    virtual bool initialCache() const { return initialOptions_.cache; }
    virtual bool initialInterchangeCheck() const { return initialOptions_.interchangeCheck; }
    virtual bool initialQueryInstrumentStatus() const { return initialOptions_.queryInstrumentStatus; }
    virtual bool initialRangeCheck() const { return initialOptions_.rangeCheck; }
    virtual bool initialRecordCoercions() const { return initialOptions_.recordCoercions; }
    virtual bool initialSimulate() const { return initialOptions_.simulate; }

    virtual void setCache(bool value) { configuration_.options.cache = value; }
    virtual void setInterchangeCheck(bool value) { configuration_.options.interchangeCheck = value; }
    virtual void setQueryInstrumentStatus(bool value) { configuration_.options.queryInstrumentStatus = value; }
    virtual void setRangeCheck(bool value) { configuration_.options.rangeCheck = value; }
    virtual void setRecordCoercions(bool value) { configuration_.options.recordCoercions = value; }
    virtual void setSimulate(bool value) { configuration_.options.simulate = value; }

    /// The option string as the session was opened with it.
    virtual const std::string& optionString() const { return optionString_; }
    /// The resource or logical name as the session was opened with it.
    virtual const std::string& resourceName() const { return resourceName_; }
    /// Init's IdQuery was VI_TRUE.
    virtual bool idQuery() const { return idQuery_; }
    /// Init's Reset was VI_TRUE.
    virtual bool reset() const { return reset_; }
    /// The resource name, when it named an entry of the configuration store that has a descriptor; otherwise "".
    virtual const std::string& logicalName() const { return configuration_.logicalName; }
    /// The I/O resource descriptor of the hardware asset that the configuration store names; "" when it names none.
    virtual const std::string& ioResourceDescriptor() const { return configuration_.ioResourceDescriptor; }
    /// The DriverSetup text of the option string or, without one there, of the configuration store.
    virtual const std::string& driverSetup() const { return driverSetup_; }

    // The instrument's identity, as Initialize read it.
    virtual const std::string& manufacturer() const { return identity_.manufacturer; }
    virtual const std::string& model() const { return identity_.model; }
    virtual const std::string& serialNumber() const { return identity_.serialNumber; }
    virtual const std::string& firmwareRevision() const { return identity_.firmwareRevision; }

    // Milliseconds. Kept for the session's users; no operation of the session reads them.
    virtual ViInt32 openTimeoutMs() const { return kTimeoutMs; }
    virtual ViInt32 ioTimeoutMs() const { return kTimeoutMs; }
    virtual ViInt32 closeTimeoutMs() const { return kTimeoutMs; }
    virtual bool interchangeCheckSupported() const { return false; }
    virtual ViInt32 settlingTimeMs() const { return kSettlingTimeMs; }

    // The configurable initial settings of the configuration store, by name.
    virtual const NamedValues<bool>& configuredBooleans() const { return configuration_.booleans; }
    virtual const NamedValues<ViInt32>& configuredIntegers() const { return configuration_.integers; }
    virtual const NamedValues<ViReal64>& configuredReals() const { return configuration_.reals; }
    virtual const NamedValues<std::string>& configuredStrings() const { return configuration_.strings; }

    // One setting of a type; null when the store has none of that name.
    virtual const std::string* configuredString(std::string_view name) const
    {
        return valueOf(configuration_.strings, name);
    }
    virtual const ViInt32* configuredInteger(std::string_view name) const
    {
        return valueOf(configuration_.integers, name);
    }
    virtual const ViReal64* configuredReal(std::string_view name) const { return valueOf(configuration_.reals, name); }
    virtual const bool* configuredBoolean(std::string_view name) const
    {
        return valueOf(configuration_.booleans, name);
    }

    /// The virtual names of the store's driver sessions.
    virtual const VirtualNames& virtualNames() const { return configuration_.virtualNames; }
    /// The physical names that the store lists for the driver, by repeated capability.
    virtual const NamedValues<std::vector<std::string>>& physicalNames() const { return configuration_.physicalNames; }
    /// Appends the selector text that a token stands for, as a virtual name or, failing that, as "CH1" to "CH6"; false,
    /// and nothing appended, when it stands for itself. "CH1" to "CH6" in what a virtual name maps to are replaced,
    /// too.
    virtual bool mappedText(std::string_view token, std::string& text) const;

    /// The pairs of the DriverSetup text, and the inherent options that option strings have given.
    virtual const NamedValues<std::string>& driverSetupOptions() const { return driverSetupOptions_; }
    virtual const NamedValues<std::string>& inherentOptionTable() const { return inherentOptions_; }
    /// Null when the DriverSetup text has no such name.
    virtual const std::string* driverSetupOption(std::string_view name) const
    {
        return valueOf(driverSetupOptions_, name);
    }

    /// Whether the supported-model table holds the session's model.
    virtual bool IsModelSupported() const { return !familyOfModel(identity_.model).empty(); }
    /// Whether the resource name named an entry of the configuration store.
    virtual bool namesStoreEntry() const { return configuration_.namesStoreEntry; }
    virtual bool IsModel(std::string_view name) const { return identity_.model == name; }
    static bool IsModelOfFamily(std::string_view model, std::string_view family)
    {
        return !family.empty() && familyOfModel(model) == family;
    }
    /// What the connection is opened on: the descriptor of the store entry that the resource name names, otherwise the
    /// resource name.
    virtual const std::string& connectionDescriptor() const { return configuration_.connectionDescriptor; }

    /// The reporters of error_messages.h, on this session.
    virtual ViStatus ReportError(ViStatus code, MessageArguments arguments = {})
    {
        return drivekit::ReportError(vi_, code, arguments);
    }
    virtual ViStatus ReportErrorWithElaboration(ViStatus code, std::string_view elaboration,
                                                MessageArguments arguments = {})
    {
        return drivekit::ReportErrorWithElaboration(vi_, code, elaboration, arguments);
    }

    /// Records a failure of the configuration server. The server has left its own text in the thread's error record
    /// (IVI-3.5 section 5.2.1).
    virtual ViStatus ReportConfigurationError(ViStatus status) { return ReportError(status); }

    /// Marks every remembered attribute value invalid.
    virtual void InvalidateAllAttributes();

    /// Sets the options: their defaults, then what the configuration store has under the driver's prefix, then what it
    /// has under the resource name, then the option string.
    virtual ViStatus ResolveConfiguration(const std::string& resourceName, const std::string& optionString);

    /// Takes virtual names, descriptor, flags and DriverSetup from a driver session of the configuration store.
    virtual ViStatus ReadDriverSession(IviDriverSessionHandle configured);

    /// Takes the configurable initial settings of a driver session or a software module; a value read later replaces
    /// one of its name.
    virtual ViStatus ReadConfigurableInitialSettings(IviConfigComponentHandle component);

    // Parsing of option strings; an option set before one that fails stays set.

    /// Takes the model from the configured string setting "model", if there is one.
    virtual ViStatus ApplyConfiguredModel();

    /// A whole option string: DriverSetup first, then the inherent options in front of it.
    virtual ViStatus ParseOptionString(const std::string& optionString);
    virtual ViStatus ParseDriverSetup(const std::string& driverSetup);
    /// Acts on "Model" and accepts every other name.
    virtual ViStatus ApplyDriverSetupOption(const std::string& name, const std::string& value);
    virtual ViStatus ParseInherentOptions(const std::string& options);
    virtual ViStatus ParseBooleanOptionValue(const std::string& name, const std::string& value, bool& flag);

    virtual ViStatus ReadVirtualNames(IviDriverSessionHandle configured);
    virtual ViStatus ReadPhysicalNames(IviSoftwareModuleHandle module);

    /// The third reporter.
    virtual ViStatus ReportErrorText(ViStatus code, std::string_view text, MessageArguments arguments = {})
    {
        return drivekit::ReportErrorText(vi_, code, text, arguments);
    }

    /// Lets a simulated instrument take the place of a real one, which is closed.
    virtual ViStatus StartSimulation() = 0;
    /// Whether the instrument is a simulated one, whatever the option says.
    bool runsSimulated() const { return runsSimulated_; }

    /// What the session does differently because its DriverSetup asks for it.
    const SessionSettings& settings() const { return settings_; }

    /// Whether an exception of the call that is going on becomes a recorded status; the frame of each call says it.
    bool recordsExceptions() const { return recordsExceptions_; }
    void setRecordsExceptions(bool records) { recordsExceptions_ = records; }

    /// drivekit::ReportErrorTexts, on this session.
    ViStatus ReportErrorTexts(ViStatus code, const std::array<std::string_view, 3>& texts, MessageArguments arguments)
    {
        return drivekit::ReportErrorTexts(vi_, code, texts, arguments);
    }

    /// Records a failure that the instrument object has returned; with SessionSettings::detailedErrors, a time-out as
    /// such, the resource and what VISA said of it, or the reply that could not be read. `elaboration` stands behind
    /// the message.
    ViStatus ReportInstrumentFailure(ViStatus status, std::string_view elaboration = {});

    /// Records a failure of VISA under its own code, for which the driver has no message; in detail as above.
    ViStatus ReportTransferFailure(ViStatus visaStatus);

    /// Records a reply that cannot be read, quoting it.
    ViStatus ReportUnreadReply();

    AttributeCaches& attributeCaches() { return attributeCaches_; }

    /// The messages of the session; null unless it writes them down.
    const std::shared_ptr<InstLink::MessageLog>& messageLog() const { return settings_.connection.io.messageLog; }

    /// The instrument object; null until OpenInstrument.
    const std::shared_ptr<TSRO::InstBase>& instrument() const { return instrument_; }

protected:
    void setSettings(const SessionSettings& settings) { settings_ = settings; }

    /// Takes the place of the instrument before, whose connection is closed; the status of that does not count.
    void setInstrument(std::shared_ptr<TSRO::InstBase> instrument, bool simulated);

private:
    class StoreReader;

    static constexpr ViInt32 kTimeoutMs = 2000;
    static constexpr ViInt32 kSettlingTimeMs = 1000;

    ViStatus takeSettings();
    ViStatus reportOptionFault(const OptionFault& fault);
    ViStatus openSession();
    ViStatus checkIdentity();

    const AttributeRegistry& attributes_;
    bool idQuery_ = false;
    bool reset_ = false;
    // No option is set before the first resolution.
    Configuration configuration_{.options = {}};
    base::InherentOptions initialOptions_;
    std::string optionString_;
    std::string resourceName_;
    std::string driverSetup_;
    TSRO::Identity identity_;
    NamedValues<std::string> inherentOptions_;
    NamedValues<std::string> driverSetupOptions_;
    SessionSettings settings_;
    bool recordsExceptions_ = false;
    bool runsSimulated_ = false;
    AttributeCaches attributeCaches_;
    std::shared_ptr<TSRO::InstBase> instrument_;
};

} // namespace drivekit
