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
    {TSRO::statusCode(0xBFFA4214U), "I/O error."},
    {TSRO::statusCode(0xBFFA4215U), "I/O timeout error."},
    {TSRO::statusCode(0xBFFA0000U), "Failure cannot recover."},
    {TSRO::statusCode(0xBFFA0001U), "Instrument error detected.  Use ErrorQuery() to determine the error(s)."},
    {TSRO::statusCode(0xBFFA0002U), "Cannot open file."},
    {TSRO::statusCode(0xBFFA0003U), "Error reading file."},
    {TSRO::statusCode(0xBFFA0004U), "Error writing file."},
    {TSRO::statusCode(0xBFFA000BU), "The pathname is invalid."},
    {TSRO::statusCode(0xBFFA000CU), "Attribute ID '%s' not recognized."},
    {TSRO::statusCode(0xBFFA000DU), "Attribute '%s' is read-only."},
    {TSRO::statusCode(0xBFFA000EU), "Attribute '%s' is write-only."},
    {TSRO::statusCode(0xBFFA0010U), "Invalid value '%s' for function '%s', parameter '%s'."},
    {TSRO::statusCode(0xBFFA0011U), "Does not support this class-compliant feature: function '%s'"},
    {TSRO::statusCode(0xBFFA0012U), "Does not support this class-compliant feature: attribute '%s'."},
    {TSRO::statusCode(0xBFFA0013U), "Does not support this class-compliant feature:  Enumeration value '%s' passed as "
                                    "the value for parameter '%s' in function '%s'."},
    {TSRO::statusCode(0xBFFA0015U), "%sAttribute%s called for attribute '%s' of type '%s'."},
    {TSRO::statusCode(0xBFFA001DU), "A connection to the instrument has not been established."},
    {TSRO::statusCode(0xBFFA0020U), "Unknown channel name."},
    {TSRO::statusCode(0xBFFA0023U), "Too many files are open."},
    {TSRO::statusCode(0xBFFA0044U), "A channel name is required."},
    {TSRO::statusCode(0xBFFA0049U), "The option string is missing an option name."},
    {TSRO::statusCode(0xBFFA004AU), "The option string is missing an option value."},
    {TSRO::statusCode(0xBFFA004BU), "The '%s' name in the option string is unknown."},
    {TSRO::statusCode(0xBFFA004CU), "The '%s' value in the option string is unknown."},
    {TSRO::statusCode(0xBFFA0056U), "Could not allocate necessary memory."},
    {TSRO::statusCode(0xBFFA0057U), "Operation in progress."},
    {TSRO::statusCode(0xBFFA0058U), "Null pointer passed for function '%s', parameter '%s'."},
    {TSRO::statusCode(0xBFFA0059U), "Unexpected response from instrument."},
    {TSRO::statusCode(0xBFFA005BU), "File not found."},
    {TSRO::statusCode(0xBFFA005CU), "Invalid file format."},
    {TSRO::statusCode(0xBFFA005DU), "The instrument status is not available."},
    {TSRO::statusCode(0xBFFA005EU), "Instrument ID query failed."},
    {TSRO::statusCode(0xBFFA005FU), "Instrument reset failed."},
    {TSRO::statusCode(0xBFFA0060U), "Unknown resource."},
    {TSRO::statusCode(0xBFFA0061U), "The driver is already initialized."},
    {TSRO::statusCode(0xBFFA0062U), "The simulation state cannot be changed."},
    {TSRO::statusCode(0xBFFA0063U),
     "The number of levels in the selector is not valid for the '%s' repeated capability."},
    {TSRO::statusCode(0xBFFA0064U), "The range '%s' is not valid for the repeated capability '%s'."},
    {TSRO::statusCode(0xBFFA0065U), "Unknown name in selector."},
    {TSRO::statusCode(0xBFFA0066U), "The repeated capability selector is badly-formed."},
    {TSRO::statusCode(0xBFFA0067U), "Unknown physical repeated capability selector."},
    {TSRO::statusCode(0xBFFA1190U), "Invalid session handle."},
    {TSRO::statusCode(0xBFFA4216U), "The operation (attribute or function) is not supported."},
    {TSRO::statusCode(0xBFFA4217U),
     "Attribute or function parameter value is invalid (out of range or not supported)."},
    {TSRO::statusCode(0xBFFA1001U), "The trigger source is not set to software trigger."},
    {TSRO::statusCode(0x00000000U), "Success."},
    {TSRO::statusCode(0x3FFA0065U), "ID Query is not supported by this instrument."},
    {TSRO::statusCode(0x3FFA0066U), "Reset is not supported by this instrument."},
    {TSRO::statusCode(0x3FFA0067U), "Self test is not supported by this instrument."},
    {TSRO::statusCode(0x3FFA0068U), "Error query is not supported by this instrument."},
    {TSRO::statusCode(0x3FFA0069U), "Firmware revision query is not supported by this instrument."},
    {TSRO::statusCode(0x3FFA4001U), "Array data truncated. Parameter not large enough for data. Required size:"},
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

} // namespace drivekit
