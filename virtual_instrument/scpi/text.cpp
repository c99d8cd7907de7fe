#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <system_error>

namespace kvxvirtual
{
namespace
{

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::optional<char> byteOfHex(std::string_view twoDigits)
{
    unsigned int value = 0;
    const auto* const end = twoDigits.data() + twoDigits.size();
    const auto result = std::from_chars(twoDigits.data(), end, value, 16);
    if (twoDigits.size() != 2 || result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return static_cast<char>(value);
}

std::string_view withoutPlus(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    return text;
}

/// Of a number that no double represents: whether it is too close to zero, rather than too far from it.
bool isTooSmall(std::string_view number)
{
    const auto mark = std::min(number.find_first_of("eE"), number.size());
    const auto mantissa = number.substr(0, mark);
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    const auto firstDigit = mantissa.find_first_of("123456789");
    const auto placesBeforePoint = static_cast<std::ptrdiff_t>(point) - static_cast<std::ptrdiff_t>(firstDigit);
    if (mark == number.size())
        return placesBeforePoint < 0;
    const auto exponentText = number.substr(mark + 1);
    const auto exponent = integerIn(exponentText);
    return exponent ? *exponent + placesBeforePoint < 0 : exponentText.starts_with('-');
}

} // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return toUpper(a) == toUpper(b); });
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

WordAndRest splitWord(std::string_view text)
{
    const auto* const end = std::find_if(text.begin(), text.end(), isBlank);
    const auto length = static_cast<std::size_t>(end - text.begin());
    return {text.substr(0, length), trimmed(text.substr(length))};
}

std::string fixedText(double value, int decimals)
{
    // The longest double has 309 digits before the point.
    std::array<char, 512> digits{};
    const auto result =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    std::string text(digits.data(), result.ptr);
    if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos)
        text.erase(0, 1);
    return text;
}

std::optional<int> integerIn(std::string_view text)
{
    text = withoutPlus(text);
    int value = 0;
    const auto* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

std::from_chars_result decimalInFrontOf(std::string_view text, double& value)
{
    text = withoutPlus(text);
    auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto length = static_cast<std::size_t>(result.ptr - text.data());
    if (result.ec == std::errc::result_out_of_range && isTooSmall(text.substr(0, length))) {
        value = 0.0;
        result.ec = std::errc();
    }
    return result;
}

std::optional<double> finiteNumberIn(std::string_view text)
{
    double value = 0.0;
    const auto result = decimalInFrontOf(text, value);
    const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::string escaped(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        if (c == '\\')
            text += "\\\\";
        else if (c == '\r')
            text += "\\r";
        else if (c == '\n')
            text += "\\n";
        else if (c >= 0x20 && c < 0x7F)
            text += c;
        else {
            const auto byte = static_cast<unsigned char>(c);
            text += {'\\', 'x', kHexDigits[byte >> 4U], kHexDigits[byte & 0xFU]};
        }
    }
    return text;
}

std::optional<std::string> unescaped(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) {
        const auto plain = std::min(text.find('\\'), text.size());
        bytes += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            break;
        if (text.size() < 2)
            return std::nullopt;
        const char kind = text[1];
        text.remove_prefix(2);
        if (kind == '\\')
            bytes += '\\';
        else if (kind == 'r')
            bytes += '\r';
        else if (kind == 'n')
            bytes += '\n';
        else if (const auto byte = byteOfHex(text.substr(0, 2)); kind == 'x' && byte) {
            bytes += *byte;
            text.remove_prefix(2);
        } else
            return std::nullopt;
    }
    return bytes;
}

} // namespace kvxvirtual
