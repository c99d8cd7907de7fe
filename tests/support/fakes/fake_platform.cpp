#include "tests/support/fakes/fake_platform.h"

namespace kvxtest
{

Platform& platform()
{
    static Platform instance;
    return instance;
}

// Texts of the log

std::string quoted(std::string_view bytes)
{
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string text = "\"";
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else if (c == '\\' || c == '"')
            (text += '\\') += c;
        else if (code < 0x20 || code > 0x7E)
            ((text += "\\x") += kHexDigits[code / 16]) += kHexDigits[code % 16];
        else
            text += c;
    }
    return text += '"';
}

std::ostream& operator<<(std::ostream& stream, Quoted value)
{
    return stream << quoted(value.text);
}

std::string textArgument(ViConstString text)
{
    return text == nullptr ? "null" : quoted(text);
}

std::string hexArgument(ViUInt32 number)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << number;
    return text.str();
}

// Failures

namespace
{

/// Whether `failure` strikes this call of `function`; counts the call if it might have.
bool strikes(Failure& failure, std::string_view function)
{
    if (!failure.function.empty() && failure.function != function)
        return false;
    return failure.callsToGo == 0 || --failure.callsToGo == 0;
}

} // namespace

std::optional<ViStatus> plannedStatus(Platform& fakes, std::string_view function)
{
    std::optional<ViStatus> status;
    std::vector<Failure> remaining;
    fakes.lie = Lie::None;
    for (Failure& failure : fakes.failures) {
        const bool forEver = failure.callsToGo == 0;
        const bool strikesNow = strikes(failure, function);
        if (strikesNow) {
            status = failure.status;
            fakes.lie = failure.lie;
        }
        if (forEver || !strikesNow)
            remaining.push_back(failure);
        else
            fakes.failureHappened = true;
    }
    fakes.failures = std::move(remaining);
    return status;
}

// Error records and texts

namespace
{

int severity(ViStatus code)
{
    if (code < 0)
        return 2;
    return code > 0 ? 1 : 0;
}

} // namespace

void updateError(ErrorEntry& entry, ViStatus code, ViConstString text)
{
    const bool replaces = severity(code) > severity(entry.code) || (code == entry.code && entry.text.empty());
    if (replaces)
        entry = {code, text == nullptr ? "" : text};
}

ErrorEntry& threadError(Platform& fakes)
{
    return fakes.threadErrors[std::this_thread::get_id()];
}

ViStatus putText(const std::string& text, ViInt32 bufferSize, ViChar* buffer)
{
    if (bufferSize != 0 && buffer == nullptr)
        return IVI_ERROR_NULL_POINTER;
    const std::size_t needed = text.size() + 1;
    if (bufferSize == 0)
        return static_cast<ViStatus>(needed);
    const std::size_t size = bufferSize < 0 ? needed : static_cast<std::size_t>(bufferSize);
    const std::size_t length = text.copy(buffer, size - 1);
    buffer[length] = '\0';
    return size < needed ? static_cast<ViStatus>(needed) : VI_SUCCESS;
}

ViStatus takeError(ErrorEntry& error, ViInt32 bufferSize, ViStatus* code, ViChar* description)
{
    if (code != nullptr)
        *code = error.code;
    const ViStatus status = putText(error.text, bufferSize, description);
    if (bufferSize != 0 && status >= 0)
        error = {};
    return status;
}

} // namespace kvxtest
