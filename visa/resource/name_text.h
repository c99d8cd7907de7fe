#pragma once

#include <visa.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace visa
{

/// How the parts of resource names are written, whatever the locale.

constexpr char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool equalsIgnoringCase(std::string_view text, std::string_view keyword)
{
    return std::equal(text.begin(), text.end(), keyword.begin(), keyword.end(),
                      [](char a, char b) { return upper(a) == upper(b); });
}

constexpr bool startsIgnoringCase(std::string_view text, std::string_view keyword)
{
    return text.size() >= keyword.size() && equalsIgnoringCase(text.substr(0, keyword.size()), keyword);
}

/// All of the text as a number without a sign.
inline std::optional<ViUInt16> parseNumber(std::string_view digits, int base, ViUInt16 largest = 0xFFFF)
{
    ViUInt16 value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value, base);
    if (error != std::errc{} || stopped != end || value > largest)
        return std::nullopt;
    return value;
}

inline std::optional<ViUInt16> parseDecimal(std::string_view digits, ViUInt16 largest = 0xFFFF)
{
    return parseNumber(digits, 10, largest);
}

/// What a name has between "::"; the interface and its number first.
using NameParts = std::vector<std::string_view>;

} // namespace visa
