#include "runtime/error_messages.h"

#include <IviCShared.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace drivekit
{
namespace
{

struct Message
{
    ViStatus code;
    std::string_view text;
};

// Texts as callers know them: double blanks, a missing full stop and an open end included.
constexpr std::array<Message, 52> kMessages = {{
    {base::kErrorIo, "I/O error."},
    {base::kErrorIoTimeout, "I/O timeout error."},
    {base::kErrorCannotRecover, "Failure cannot recover."},
    {base::kErrorInstrumentStatus, "Instrument error detected.  Use ErrorQuery() to determine the error(s)."},
    {base::kErrorCannotOpenFile, "Cannot open file."},
    {base::kErrorReadingFile, "Error reading file."},
    {base::kErrorWritingFile, "Error writing file."},
    {base::kErrorInvalidPathname, "The pathname is invalid."},
    {base::kErrorInvalidAttribute, "Attribute ID '%s' not recognized."},
    {base::kErrorIviAttrNotWritable, "Attribute '%s' is read-only."},
    {base::kErrorIviAttrNotReadable, "Attribute '%s' is write-only."},
    {base::kErrorInvalidValue, "Invalid value '%s' for function '%s', parameter '%s'."},
    {base::kErrorFunctionNotSupported, "Does not support this class-compliant feature: function '%s'"},
    {base::kErrorAttributeNotSupported, "Does not support this class-compliant feature: attribute '%s'."},
    {base::kErrorValueNotSupported, "Does not support this class-compliant feature:  Enumeration value '%s' passed as "
                                    "the value for parameter '%s' in function '%s'."},
    {base::kErrorTypesDoNotMatch, "%sAttribute%s called for attribute '%s' of type '%s'."},
    {base::kErrorNotInitialized, "A connection to the instrument has not been established."},
    {base::kErrorUnknownChannelName, "Unknown channel name."},
    {base::kErrorTooManyOpenFiles, "Too many files are open."},
    {base::kErrorChannelNameRequired, "A channel name is required."},
    {base::kErrorMissingOptionName, "The option string is missing an option name."},
    {base::kErrorMissingOptionValue, "The option string is missing an option value."},
    {base::kErrorBadOptionName, "The '%s' name in the option string is unknown."},
    {base::kErrorBadOptionValue, "The '%s' value in the option string is unknown."},
    {base::kErrorOutOfMemory, "Could not allocate necessary memory."},
    {base::kErrorOperationPending, "Operation in progress."},
    {base::kErrorNullPointer, "Null pointer passed for function '%s', parameter '%s'."},
    {base::kErrorUnexpectedResponse, "Unexpected response from instrument."},
    {base::kErrorFileNotFound, "File not found."},
    {base::kErrorInvalidFileFormat, "Invalid file format."},
    {base::kErrorStatusNotAvailable, "The instrument status is not available."},
    {base::kErrorIdQueryFailed, "Instrument ID query failed."},
    {base::kErrorResetFailed, "Instrument reset failed."},
    {base::kErrorResourceUnknown, "Unknown resource."},
    {base::kErrorAlreadyInitialized, "The driver is already initialized."},
    {base::kErrorCannotChangeSimulationState, "The simulation state cannot be changed."},
    {base::kErrorInvalidNumberOfLevelsInSelector,
     "The number of levels in the selector is not valid for the '%s' repeated capability."},
    {base::kErrorInvalidRangeInSelector, "The range '%s' is not valid for the repeated capability '%s'."},
    {base::kErrorUnknownNameInSelector, "Unknown name in selector."},
    {base::kErrorBadlyFormedSelector, "The repeated capability selector is badly-formed."},
    {base::kErrorUnknownPhysicalIdentifier, "Unknown physical repeated capability selector."},
    {base::kErrorInvalidSessionHandle, "Invalid session handle."},
    {base::kErrorOperationNotSupported, "The operation (attribute or function) is not supported."},
    {base::kErrorValueOutOfRange, "Attribute or function parameter value is invalid (out of range or not supported)."},
    {base::kErrorTriggerNotSoftware, "The trigger source is not set to software trigger."},
    {base::kSuccess, "Success."},
    {base::kWarnNsupIdQuery, "ID Query is not supported by this instrument."},
    {base::kWarnNsupReset, "Reset is not supported by this instrument."},
    {base::kWarnNsupSelfTest, "Self test is not supported by this instrument."},
    {base::kWarnNsupErrorQuery, "Error query is not supported by this instrument."},
    {base::kWarnNsupRevQuery, "Firmware revision query is not supported by this instrument."},
    {base::kWarnArrayTruncated, "Array data truncated. Parameter not large enough for data. Required size:"},
}};

/// A description under construction; what does not fit is dropped.
class Description
{
public:
    void append(std::string_view text)
    {
        const std::size_t count = std::min(text.size(), text_.size() - 1 - length_);
        std::copy_n(text.begin(), count, text_.begin() + static_cast<std::ptrdiff_t>(length_));
        length_ += count;
    }

    const char* c_str() const { return text_.data(); }

private:
    std::array<char, 1024> text_{};
    std::size_t length_ = 0;
};

/// The arguments of a message, handed out one after the other.
class Arguments
{
public:
    explicit Arguments(std::span<const std::string_view> arguments) : rest_(arguments) {}

    std::string_view next()
    {
        if (rest_.empty())
            return {};
        const std::string_view argument = rest_.front();
        rest_ = rest_.subspan(1);
        return argument;
    }

private:
    std::span<const std::string_view> rest_;
};

void appendFormatted(Description& description, std::string_view format, Arguments& arguments)
{
    constexpr std::string_view kPlace = "%s";
    for (std::size_t at = 0; (at = format.find(kPlace)) != std::string_view::npos;) {
        description.append(format.substr(0, at));
        description.append(arguments.next());
        format.remove_prefix(at + kPlace.size());
    }
    description.append(format);
}

/// Records `code` with the parts, one after the other, as its description.
ViStatus record(ViSession vi, ViStatus code, std::initializer_list<std::string_view> formats, MessageArguments values)
{
    Description description;
    Arguments arguments({values.begin(), values.size()});
    for (const std::string_view format : formats)
        appendFormatted(description, format, arguments);
    const ViStatus status = IviSession_SetError(vi, code, description.c_str());
    return status < 0 ? status : code;
}

} // namespace

std::string_view GetErrorMessage(ViStatus code)
{
    const auto message =
        std::find_if(kMessages.begin(), kMessages.end(), [code](const Message& row) { return row.code == code; });
    return message == kMessages.end() ? std::string_view() : message->text;
}

ViStatus ReportError(ViSession vi, ViStatus code, MessageArguments arguments)
{
    return record(vi, code, {GetErrorMessage(code)}, arguments);
}

ViStatus ReportErrorWithElaboration(ViSession vi, ViStatus code, std::string_view elaboration,
                                    MessageArguments arguments)
{
    if (elaboration.empty())
        return ReportError(vi, code, arguments);
    return record(vi, code, {GetErrorMessage(code), "  ", elaboration}, arguments);
}

ViStatus ReportErrorText(ViSession vi, ViStatus code, std::string_view text, MessageArguments arguments)
{
    return record(vi, code, {text}, arguments);
}

ViStatus ReportErrorTexts(ViSession vi, ViStatus code, const std::array<std::string_view, 3>& texts,
                          MessageArguments arguments)
{
    const auto gapBefore = [](std::string_view text) { return std::string_view(text.empty() ? "" : "  "); };
    return record(vi, code, {texts[0], gapBefore(texts[1]), texts[1], gapBefore(texts[2]), texts[2]}, arguments);
}

} // namespace drivekit
