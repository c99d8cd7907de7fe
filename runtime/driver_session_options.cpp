#include "base/ascii.h"
#include "runtime/driver_session.h"

namespace drivekit
{

ViStatus DriverSession::ApplyConfiguredModel()
{
    if (const std::string* const model = configuredString("model"))
        identity_.model = *model;
    return VI_SUCCESS;
}

ViStatus DriverSession::ParseOptionString(const std::string& optionString)
{
    const base::OptionText text = base::splitOptionString(optionString);
    if (text.driverSetup) {
        const ViStatus status = ParseDriverSetup(std::string(*text.driverSetup));
        if (status < 0)
            return status;
    }
    return ParseInherentOptions(std::string(text.inherent));
}

ViStatus DriverSession::ParseDriverSetup(const std::string& driverSetup)
{
    driverSetupOptions_.clear();
    driverSetup_ = driverSetup;
    std::string_view rest = driverSetup;
    while (const auto option = base::nextDriverSetupOption(rest)) {
        const ViStatus status = ApplyDriverSetupOption(std::string(option->name), std::string(option->value));
        if (status < 0)
            return status;
        // The option has taken effect by now, a second one too.
        if (!driverSetupOptions_.emplace(option->name, option->value).second)
            return ReportErrorWithElaboration(base::kErrorCannotRecover, elaborations::kRepeatedDriverSetup,
                                              {option->name});
    }
    return VI_SUCCESS;
}

ViStatus DriverSession::ApplyDriverSetupOption(const std::string& name, const std::string& value)
{
    if (base::ascii::equalIgnoringCase(name, base::kModelKey))
        identity_.model = value;
    return VI_SUCCESS;
}

ViStatus DriverSession::ParseInherentOptions(const std::string& options)
{
    const std::string text = base::lowerCased(options);
    std::string_view rest = text;
    while (const auto option = base::nextInherentOption(rest)) {
        const auto flag = base::inherentOption(option->name);
        if (flag == nullptr)
            return ReportError(base::kErrorBadOptionName, {option->name});
        const ViStatus status = ParseBooleanOptionValue(std::string(option->name), std::string(option->value),
                                                        configuration_.options.*flag);
        if (status < 0)
            return status;
        // As with DriverSetup, the repeated option has taken effect.
        if (!inherentOptions_.emplace(option->name, option->value).second)
            return ReportErrorWithElaboration(base::kErrorCannotRecover, elaborations::kRepeatedInherentOption,
                                              {option->name});
    }
    return VI_SUCCESS;
}

ViStatus DriverSession::ParseBooleanOptionValue(const std::string& /*name*/, const std::string& value, bool& flag)
{
    const auto parsed = base::parseOptionValue(value);
    if (!parsed)
        return ReportError(base::kErrorBadOptionValue, {value});
    flag = *parsed;
    return VI_SUCCESS;
}

} // namespace drivekit
