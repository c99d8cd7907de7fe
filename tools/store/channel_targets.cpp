#include "tools/store/channel_targets.h"

#include "runtime/repeated_capability.h"
#include "runtime/selector_grammar.h"
#include "tools/store/plain_text.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace store_tool
{
namespace
{

namespace selector = drivekit::selector;
using Outputs = drivekit::RepCapBase<drivekit::OutputChannel>;

/// The physical name that "CH1" to "CH6" stand for; of other names, these.
std::string_view physicalName(std::string_view token)
{
    constexpr std::string_view kPrefix = "CH";
    if (token.size() != kPrefix.size() + 1 || !token.starts_with(kPrefix))
        return token;
    const auto position = static_cast<std::size_t>(token.back() - '1');
    return position < Outputs::kCount ? Outputs::physicalName(position).text() : token;
}

/// An item of a selector without short names.
std::string spelledOut(std::string_view item)
{
    std::string text;
    std::string_view copied = item;
    for (std::string_view rest = item; !rest.empty(); copied = rest) {
        const std::string_view token = selector::nextToken(rest);
        text += copied.substr(0, static_cast<std::size_t>(token.data() - copied.data()));
        text += physicalName(token);
    }
    return text += copied;
}

std::optional<selector::NameRange> rangeIn(std::string_view item)
{
    try {
        const auto range = selector::parseRange(item);
        return range && range->first < range->last ? range : std::nullopt;
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

using Positions = std::vector<std::size_t>;

/// The channels from one to another one; none when a name in between is no channel.
Positions positionsIn(const selector::NameRange& range)
{
    Positions positions;
    for (ViInt32 number = range.first; number <= range.last; ++number) {
        const auto position = Outputs::position(std::string(range.base) + std::to_string(number));
        if (!position)
            return {};
        positions.push_back(*position);
    }
    return positions;
}

/// The channels of an item; none when it names anything else.
Positions positionsOf(std::string_view item)
{
    const std::string text = spelledOut(item);
    if (selector::isRange(text)) {
        const auto range = rangeIn(text);
        return range ? positionsIn(*range) : Positions();
    }
    const auto position = Outputs::position(text);
    return position ? Positions{*position} : Positions();
}

} // namespace

std::string problemOfChannels(std::string_view text)
{
    if (!selector::isWellFormed(text) || selector::levelCount(text) > 1)
        return inQuotes(text) + ", which is no selector of channels";
    std::array<bool, Outputs::kCount> taken{};
    std::string_view level = text;
    while (const auto item = selector::nextItem(level)) {
        const Positions positions = positionsOf(*item);
        if (positions.empty())
            return inQuotes(*item) +
                   (selector::isRange(*item) ? ", which is no range of channels" : ", which is no channel");
        for (const std::size_t position : positions) {
            if (std::exchange(taken[position], true))
                return inQuotes(text) + ", which has a channel twice";
        }
    }
    return {};
}

} // namespace store_tool
