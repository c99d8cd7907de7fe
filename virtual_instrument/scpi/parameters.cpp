#include "virtual_instrument/scpi/parameters.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <system_error>

namespace kvxvirtual
{
namespace
{

struct Numeric
{
    ErrorCode error = ErrorCode::None;
    double value = 0.0;
};

/// The spellings of a number that is none, with and without a sign in front.
bool namesNoFiniteNumber(std::string_view text)
{
    constexpr std::array<std::string_view, 5> kNames = {"NAN", "INF", "INFINITY", "NINF", "NINFINITY"};
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return std::any_of(kNames.begin(), kNames.end(),
                       [text](std::string_view name) { return equalIgnoringCase(text, name); });
}

bool beginsLikeNumber(std::string_view text)
{
    const char first = text.front();
    return isDigit(first) || first == '+' || first == '-' || first == '.';
}

Numeric parseNumber(std::string_view text)
{
    if (namesNoFiniteNumber(text))
        return {ErrorCode::DataOutOfRange};
    if (!beginsLikeNumber(text))
        return {ErrorCode::DataTypeError};
    double value = 0.0;
    const auto [stop, status] = decimalInFrontOf(text, value);
    if (stop != text.data() + text.size() || status == std::errc::invalid_argument)
        return {ErrorCode::InvalidCharacterInNumber};
    if (status != std::errc() || !std::isfinite(value))
        return {ErrorCode::DataOutOfRange};
    return {ErrorCode::None, value};
}

/// What to call a word that no keyword of `table` is. A number is the wrong type, unless the table has numbers too.
ErrorCode errorForUnknownKeyword(KeywordTable table, std::string_view sent)
{
    if (!beginsLikeNumber(sent))
        return isLetter(sent.front()) ? ErrorCode::InvalidCharacterData : ErrorCode::DataTypeError;
    const bool hasNumbers =
        std::any_of(table.begin(), table.end(), [](const Keyword& keyword) { return beginsLikeNumber(keyword.usual); });
    return hasNumbers ? ErrorCode::IllegalParameterValue : ErrorCode::DataTypeError;
}

} // namespace

ErrorCode Arguments::add(const Parameter& expected, std::string_view sent)
{
    switch (expected.kind) {
    case Parameter::Kind::Channel:
        return addChannel(sent, false);
    case Parameter::Kind::ChannelOrAll:
        return addChannel(sent, true);
    case Parameter::Kind::Boolean:
        return addBoolean(sent);
    case Parameter::Kind::Integer:
        return addInteger(sent);
    case Parameter::Kind::Number:
        return addNumber(sent);
    case Parameter::Kind::Keyword:
        return addKeyword(expected.keywords, sent);
    }
    return ErrorCode::SyntaxError;
}

ErrorCode Arguments::addChannel(std::string_view sent, bool allowAll)
{
    if (allowAll && equalIgnoringCase(sent, "ALL")) {
        channel = kAllChannels;
        return ErrorCode::None;
    }
    const auto number = channelNamed(sent);
    if (!number)
        return errorForUnknownKeyword(keywords::kChannels, sent);
    channel = *number;
    return ErrorCode::None;
}

ErrorCode Arguments::addBoolean(std::string_view sent)
{
    constexpr std::array<Keyword, 2> kSwitch = {{{"OFF", "0"}, {"ON", "1"}}};
    if (const auto index = keywordIndex(kSwitch, sent)) {
        values_.emplace_back(*index == 1);
        return ErrorCode::None;
    }
    return beginsLikeNumber(sent) ? ErrorCode::IllegalParameterValue : errorForUnknownKeyword(kSwitch, sent);
}

ErrorCode Arguments::addInteger(std::string_view sent)
{
    const auto [error, value] = parseNumber(sent);
    if (error != ErrorCode::None)
        return error;
    // IEEE 488.2: a device that wants an integer rounds what it is sent.
    const auto rounded = std::round(value);
    if (std::abs(rounded) > std::numeric_limits<int>::max())
        return ErrorCode::DataOutOfRange;
    values_.emplace_back(static_cast<int>(rounded));
    return ErrorCode::None;
}

ErrorCode Arguments::addNumber(std::string_view sent)
{
    const auto [error, value] = parseNumber(sent);
    if (error == ErrorCode::None)
        values_.emplace_back(value);
    return error;
}

ErrorCode Arguments::addKeyword(KeywordTable table, std::string_view sent)
{
    const auto index = keywordIndex(table, sent);
    if (!index)
        return errorForUnknownKeyword(table, sent);
    values_.emplace_back(*index);
    return ErrorCode::None;
}

} // namespace kvxvirtual
