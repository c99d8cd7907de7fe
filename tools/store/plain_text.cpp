#include "tools/store/plain_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace store_tool
{
namespace
{

/// What a first byte of UTF-8 tells about the bytes after it.
struct Lead
{
    std::uint8_t first;
    std::uint8_t last;
    std::size_t length;
    std::uint32_t bits;     ///< of the code point, in the first byte
    std::uint32_t smallest; ///< code point of this length; smaller ones are overlong
};

constexpr std::array<Lead, 4> kLeads{{
    {0x00, 0x7F, 1, 0x7F, 0},
    {0xC0, 0xDF, 2, 0x1F, 0x80},
    {0xE0, 0xEF, 3, 0x0F, 0x800},
    {0xF0, 0xF7, 4, 0x07, 0x10000},
}};

constexpr std::uint32_t kLargestCodePoint = 0x10FFFF;

bool isShown(std::uint32_t codePoint)
{
    const bool control = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    const bool nonCharacter = (codePoint & 0xFFFE) == 0xFFFE;
    return !control && !surrogate && !nonCharacter && codePoint <= kLargestCodePoint;
}

bool isContinuation(char byte)
{
    return (static_cast<std::uint8_t>(byte) & 0xC0U) == 0x80U;
}

/// How many bytes the character at the front of the text has; 0 when it is none that may be shown.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const auto* const lead = std::find_if(
        kLeads.begin(), kLeads.end(), [&byte](const Lead& row) { return byte(0) >= row.first && byte(0) <= row.last; });
    if (lead == kLeads.end() || text.size() < lead->length)
        return 0;
    std::uint32_t codePoint = byte(0) & lead->bits;
    for (std::size_t i = 1; i < lead->length; ++i) {
        if (!isContinuation(text[i]))
            return 0;
        codePoint = codePoint << 6 | (byte(i) & 0x3FU);
    }
    return codePoint >= lead->smallest && isShown(codePoint) ? lead->length : 0;
}

void appendHexadecimal(std::string& text, char byte)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<std::uint8_t>(byte);
    text += "\\x";
    text += kDigits[value >> 4U];
    text += kDigits[value & 0x0FU];
}

constexpr std::array<std::pair<char, std::string_view>, 4> kReferences{{
    {'&', "&amp;"},
    {'<', "&lt;"},
    {'>', "&gt;"},
    {'"', "&quot;"},
}};

void appendEscaped(std::string& text, char character)
{
    const auto* const row = std::find_if(kReferences.begin(), kReferences.end(),
                                         [character](const auto& entry) { return entry.first == character; });
    if (row == kReferences.end())
        text += character;
    else
        text += row->second;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kSpace);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kSpace) + 1 - begin);
}

bool isPlainText(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string printable(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            appendHexadecimal(shown, text.front());
        else
            shown += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return shown;
}

std::string abridged(std::string_view text, std::size_t longest)
{
    if (text.size() <= longest)
        return printable(text);
    std::size_t end = longest;
    while (end > 0 && isContinuation(text[end]))
        --end;
    return printable(text.substr(0, end)) + "...";
}

std::string inQuotes(std::string_view text)
{
    return "'" + abridged(text) + "'";
}

std::string xmlEscaped(std::string_view text)
{
    std::string escaped;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool atAnEnd = i == 0 || i + 1 == text.size();
        if (text[i] == ' ' && atAnEnd)
            escaped += "&#32;";
        else
            appendEscaped(escaped, text[i]);
    }
    return escaped;
}

} // namespace store_tool
