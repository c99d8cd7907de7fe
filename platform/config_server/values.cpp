#include "platform/config_server/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace config_server
{
namespace
{

struct FlagWord
{
    std::string_view word;
    ViBoolean value;
};

constexpr std::array<FlagWord, 5> kFlagWords{{
    {"", VI_FALSE},
    {"0", VI_FALSE},
    {"1", VI_TRUE},
    {"false", VI_FALSE},
    {"true", VI_TRUE},
}};

/// A number that takes up the whole text.
template <class Number>
std::optional<Number> parseNumber(std::string_view text)
{
    Number number{};
    if (text.empty())
        return number;
    // std::from_chars knows no plus sign, but would read a minus sign behind one.
    const bool plus = text.starts_with('+') && !text.starts_with("+-");
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + (plus ? 1 : 0), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<ViBoolean> parseFlag(std::string_view text)
{
    const auto* const found = std::ranges::find(kFlagWords, text, &FlagWord::word);
    return found == kFlagWords.end() ? std::nullopt : std::optional(found->value);
}

std::optional<ViInt32> parseInteger(std::string_view text)
{
    return parseNumber<ViInt32>(text);
}

std::optional<ViReal64> parseReal(std::string_view text)
{
    const auto number = parseNumber<ViReal64>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

} // namespace config_server
