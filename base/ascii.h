#pragma once

#include <algorithm>
#include <string_view>

/// Character classes and letter case of the SCPI and IVI texts: ASCII, whatever locale the process has chosen.
namespace base::ascii
{

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char toUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// A letter, a digit or an underscore: `\w` of a regular expression.
constexpr bool isWord(char c)
{
    return isDigit(c) || c == '_' || (toLower(c) >= 'a' && toLower(c) <= 'z');
}

constexpr bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return toLower(a) == toLower(b); });
}

/// `text` without the blanks it begins with.
constexpr std::string_view skipBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

/// `text` without the blanks that it begins and ends with.
constexpr std::string_view trimmed(std::string_view text)
{
    text = skipBlanks(text);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace base::ascii
