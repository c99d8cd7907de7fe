#include "tools/store/argument_texts.h"

#include "tools/store/plain_text.h"
#include "tools/store/values.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace store_tool
{
namespace
{

using Halves = std::pair<std::string_view, std::string_view>;

/// What stands before and behind a character.
std::optional<Halves> split(std::string_view text, std::size_t place)
{
    if (place == std::string_view::npos)
        return std::nullopt;
    return Halves(text.substr(0, place), text.substr(place + 1));
}

std::optional<Halves> splitAtFirst(std::string_view text, char separator)
{
    return split(text, text.find(separator));
}

std::optional<Halves> splitAtLast(std::string_view text, char separator)
{
    return split(text, text.rfind(separator));
}

std::optional<std::int32_t> parseIndex(std::string_view text)
{
    const auto number = parseInteger(text);
    return number && *number >= 0 ? number : std::nullopt;
}

/// Reads 1-3@2.
std::optional<VirtualRange> parseBounds(std::string_view text)
{
    const auto startParts = splitAtFirst(text, '@');
    const auto boundParts = startParts ? splitAtFirst(startParts->first, '-') : std::nullopt;
    if (!boundParts)
        return std::nullopt;
    const auto min = parseIndex(boundParts->first);
    const auto max = parseIndex(boundParts->second);
    const auto start = parseIndex(startParts->second);
    if (!min || !max || !start || *min > *max || *max - *min > std::numeric_limits<std::int32_t>::max() - *start)
        return std::nullopt;
    return VirtualRange{*min, *max, *start};
}

/// White space there would be dropped when the store is read.
bool hasSpaceAtAnEnd(std::string_view text)
{
    return trimmed(text).size() != text.size();
}

} // namespace

std::string complaintAboutText(const std::string& text)
{
    if (!isPlainText(text))
        return "control characters or not UTF-8: " + inQuotes(text);
    if (text.size() > kLongestText)
        return "longer than " + std::to_string(kLongestText) + " bytes: " + inQuotes(text);
    return hasSpaceAtAnEnd(text) ? "white space at an end: " + inQuotes(text) : std::string();
}

std::string complaintAboutName(const std::string& text)
{
    return text.empty() ? "is empty" : complaintAboutText(text);
}

std::optional<VirtualName> parseVirtualName(std::string_view text)
{
    const auto parts = splitAtFirst(text, '=');
    if (!parts || parts->first.empty() || parts->second.empty() || !isIdentifier(parts->first) ||
        hasSpaceAtAnEnd(parts->second))
        return std::nullopt;
    return VirtualName{std::string(parts->first), std::string(parts->second)};
}

std::optional<VirtualName> parseVirtualRange(std::string_view text)
{
    const auto parts = splitAtFirst(text, '=');
    const auto target = parts ? splitAtLast(parts->second, ':') : std::nullopt;
    const auto range = target ? parseBounds(target->second) : std::nullopt;
    if (!range || !isIdentifier(parts->first) || hasSpaceAtAnEnd(target->first))
        return std::nullopt;
    return VirtualName{std::string(parts->first), std::string(target->first), {*range}};
}

std::optional<Setting> parseSetting(std::string_view text)
{
    const auto typed = splitAtFirst(text, ':');
    const auto parts = typed ? splitAtFirst(typed->second, '=') : std::nullopt;
    const SettingType* const type = parts ? settingTypeOf(typed->first) : nullptr;
    if (type == nullptr || parts->first.empty() || hasSpaceAtAnEnd(parts->first))
        return std::nullopt;
    const auto value = type->canonical(std::string(parts->second));
    if (!value)
        return std::nullopt;
    return Setting{type, std::string(parts->first), *value};
}

std::vector<VirtualName> merged(const std::vector<VirtualName>& names)
{
    std::vector<VirtualName> all;
    for (const VirtualName& name : names) {
        const auto same = std::find_if(all.begin(), all.end(), [&name](const VirtualName& other) {
            return !name.ranges.empty() && !other.ranges.empty() && other.name == name.name &&
                   other.mapTo == name.mapTo;
        });
        if (same == all.end())
            all.push_back(name);
        else
            same->ranges.insert(same->ranges.end(), name.ranges.begin(), name.ranges.end());
    }
    return all;
}

} // namespace store_tool
