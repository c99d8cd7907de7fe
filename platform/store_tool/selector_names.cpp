#include "selector_names.h"

#include "values.h"

#include <algorithm>

namespace store_tool
{

namespace
{

SelectorName selectorName(const XmlElement& element, std::string_view collection)
{
    const auto& items = element.itemsOf(collection);
    SelectorName name{std::string(element.textOf("Name")), !items.empty(), {}};
    for (const XmlElement& item : items) {
        if (const auto range = rangeOf(item))
            name.ranges.push_back(*range);
    }
    return name;
}

/// Indexes are plain decimals, so "01" is none.
bool isIndexWithin(std::string_view text, const IndexRange& range)
{
    const auto index = parseInteger(text);
    return index && *index >= range.min && *index <= range.max && std::to_string(*index) == text;
}

bool standsFor(const SelectorName& ranged, std::string_view identifier)
{
    if (!identifier.starts_with(ranged.name))
        return false;
    const std::string_view index = identifier.substr(ranged.name.size());
    return std::any_of(ranged.ranges.begin(), ranged.ranges.end(),
                       [index](const IndexRange& range) { return isIndexWithin(index, range); });
}

/// The first index that is in ranges of both.
std::optional<std::int32_t> sharedIndex(const SelectorName& one, const SelectorName& other)
{
    for (const IndexRange& first : one.ranges) {
        for (const IndexRange& second : other.ranges) {
            if (first.min <= second.max && second.min <= first.max)
                return std::max(first.min, second.min);
        }
    }
    return std::nullopt;
}

std::string sharedIdentifier(const SelectorName& virtualName, const SelectorName& rangedPhysicalName)
{
    if (!virtualName.isRanged)
        return standsFor(rangedPhysicalName, virtualName.name) ? virtualName.name : std::string();
    if (virtualName.name != rangedPhysicalName.name)
        return {};
    const auto index = sharedIndex(virtualName, rangedPhysicalName);
    return index ? virtualName.name + std::to_string(*index) : std::string();
}

} // namespace

std::optional<IndexRange> rangeOf(const XmlElement& element)
{
    const auto min = parseInteger(element.textOf("Min"));
    const auto max = parseInteger(element.textOf("Max"));
    const bool isRange = min && max && *min >= 0 && *max >= *min;
    return isRange ? std::optional(IndexRange{*min, *max}) : std::nullopt;
}

PhysicalNames::PhysicalNames(const XmlElement& softwareModule)
{
    forEach(softwareModule, [this](const XmlElement& element) {
        if (element.name != "IviPhysicalName")
            return;
        SelectorName name = selectorName(element, "PhysicalRanges");
        if (name.isRanged)
            ranged_.push_back(std::move(name));
        else if (plainSet_.insert(name.name).second)
            plain_.push_back(std::move(name.name));
    });
}

std::string PhysicalNames::sharedWithPlain(const SelectorName& virtualName) const
{
    if (!virtualName.isRanged)
        return plainSet_.contains(virtualName.name) ? virtualName.name : std::string();
    const auto shared = std::find_if(plain_.begin(), plain_.end(), [&virtualName](const std::string& identifier) {
        return standsFor(virtualName, identifier);
    });
    return shared == plain_.end() ? std::string() : *shared;
}

std::string PhysicalNames::sharedWith(const XmlElement& virtualName) const
{
    const SelectorName name = selectorName(virtualName, "VirtualRanges");
    std::string shared = sharedWithPlain(name);
    for (auto physical = ranged_.begin(); shared.empty() && physical != ranged_.end(); ++physical)
        shared = sharedIdentifier(name, *physical);
    return shared;
}

} // namespace store_tool
