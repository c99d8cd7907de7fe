#include "tools/store/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace store_tool
{
namespace
{

template <class Number>
std::optional<Number> parseNumber(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

char lowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::optional<bool> parseBoolean(std::string_view text)
{
    if (text == "1" || text == "true")
        return true;
    return text == "0" || text == "false" ? std::optional(false) : std::nullopt;
}

std::optional<std::int32_t> parseInteger(std::string_view text)
{
    return parseNumber<std::int32_t>(text);
}

std::optional<double> parseReal(std::string_view text)
{
    const auto number = parseNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

bool sameWord(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

bool isIdentifier(std::string_view text)
{
    constexpr std::string_view kCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!_";
    return text.find_first_not_of(kCharacters) == std::string_view::npos;
}

} // namespace store_tool
