#include "runtime/driver_session.h"

#include "base/visa_statuses.h"
#include "runtime/attribute_registry.h"
#include "runtime/repeated_capability.h"
#include "runtime/selector_grammar.h"

#include <utility>

namespace drivekit
{
namespace
{

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

/// Appends what a virtual name maps to, with the short names of channels in it replaced. Virtual names in it are none.
void appendMapped(std::string_view mapped, std::string& text)
{
    std::string_view rest = mapped;
    while (!rest.empty()) {
        const std::string_view token = selector::nextToken(rest);
        text += mapped.substr(0, static_cast<std::size_t>(token.data() - mapped.data()));
        if (!appendChannelAlias(token, text))
            text += token;
        mapped = rest;
    }
}

/// What VISA has said of a transfer, for a record: a text with a place for the resource, then for name and meaning.
struct Cause
{
    std::string_view text;
    std::string_view name;
    std::string_view meaning;
};

Cause causeOf(ViStatus visaStatus, std::string_view number)
{
    if (visaStatus == base::kErrorIo)
        return {elaborations::kAnotherInstrument, "", ""};
    const base::VisaStatus* const known = base::visaStatus(visaStatus);
    return known == nullptr ? Cause{elaborations::kTransfer, number, ""}
                            : Cause{elaborations::kVisaStatus, known->name, known->meaning};
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
    if (status >= 0)
        status = takeSettings();
    if (status < 0)
        return status;
    if (interchangeCheck() && !interchangeCheckSupported())
        return ReportErrorWithElaboration(base::kErrorBadOptionValue, elaborations::kNoInterchangeCheck, {"True"});
    status = openSession();
    if (status < 0)
        CloseInstrument();
    return status;
}

ViStatus DriverSession::takeSettings()
{
    if (const auto fault = drivekit::takeSettings(driverSetup_, settings_))
        return reportOptionFault(*fault);
    if (settings_.messageLog > 0)
        settings_.connection.io.messageLog =
            std::make_shared<InstLink::MessageLog>(static_cast<std::size_t>(settings_.messageLog));
    if (!settings_.checkedOptions)
        return VI_SUCCESS;
    const auto fault = findOptionFault(optionString_, driverSetup_);
    return fault ? reportOptionFault(*fault) : VI_SUCCESS;
}

ViStatus DriverSession::reportOptionFault(const OptionFault& fault)
{
    const bool isRepeated = fault.status == base::kErrorCannotRecover;
    return ReportErrorWithElaboration(fault.status, isRepeated ? elaborations::kRepeatedDriverSetup : "",
                                      {fault.quoted});
}

/// What init does with the instrument; after a failure the caller closes it.
ViStatus DriverSession::openSession()
{
    ViStatus status = OpenInstrument();
    if (status >= 0 && queryInstrumentStatus())
        status = InitializeStatus();
    if (status >= 0)
        status =
            ReadIdentity(identity_.manufacturer, identity_.model, identity_.serialNumber, identity_.firmwareRevision);
    return status < 0 ? status : checkIdentity();
}

ViStatus DriverSession::checkIdentity()
{
    if (settings_.checkedOptions && model().empty())
        return ReportErrorWithElaboration(base::kErrorIdQueryFailed, elaborations::kUnreadReply,
                                          {QuotedReply(instrument_->lastReply())});
    if (!idQuery_ || IsModelSupported())
        return VI_SUCCESS;
    // The message has no place for the model, so the description does not name it.
    return ReportError(base::kErrorIdQueryFailed, {"Unrecognized model: " + model()});
}

ViStatus DriverSession::ReportInstrumentFailure(ViStatus status, std::string_view elaboration)
{
    if (settings_.detailedErrors && status == base::kErrorUnexpectedResponse)
        return ReportUnreadReply();
    const ViStatus cause = instrument_ ? instrument_->connectionStatus() : VI_SUCCESS;
    if (!settings_.detailedErrors || status != base::kErrorIo || cause >= 0)
        return ReportErrorWithElaboration(status, elaboration);
    const ViStatus code = cause == base::kVisaTimeout ? base::kErrorIoTimeout : status;
    const HexadecimalArgument number(cause);
    const Cause detail = causeOf(cause, number);
    return ReportErrorTexts(code, {GetErrorMessage(code), elaboration, detail.text},
                            {connectionDescriptor(), detail.name, detail.meaning});
}

ViStatus DriverSession::ReportTransferFailure(ViStatus visaStatus)
{
    if (visaStatus == base::kErrorIo)
        return ReportInstrumentFailure(visaStatus);
    const HexadecimalArgument number(visaStatus);
    if (!settings_.detailedErrors)
        return ReportErrorText(visaStatus, kTransferFailed, {number});
    const Cause detail = causeOf(visaStatus, number);
    return ReportErrorTexts(visaStatus, {kTransferFailed, detail.text, ""},
                            {number, connectionDescriptor(), detail.name, detail.meaning});
}

ViStatus DriverSession::ReportUnreadReply()
{
    return ReportErrorWithElaboration(base::kErrorUnexpectedResponse, elaborations::kUnreadReply,
                                      {QuotedReply(instrument_ ? instrument_->lastReply() : "")});
}

bool DriverSession::mappedText(std::string_view token, std::string& text) const
{
    std::string mapped;
    if (!virtualNames().append(token, mapped))
        return appendChannelAlias(token, text);
    appendMapped(mapped, text);
    return true;
}

void DriverSession::InvalidateAllAttributes()
{
    for (const AttributeInfo& attribute : attributes_)
        attribute.invalidate(attributeCaches_, true, {});
}

void DriverSession::setInstrument(std::shared_ptr<TSRO::InstBase> instrument, bool simulated)
{
    runsSimulated_ = simulated;
    if (const auto previous = std::exchange(instrument_, std::move(instrument)))
        previous->close();
}

} // namespace drivekit
