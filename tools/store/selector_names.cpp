#include "tools/store/selector_names.h"

#include "tools/store/values.h"

#include <algorithm>
#include <utility>

namespace store_tool
{
namespace
{

/// An index as selectors write it: plain decimal, so "01" is none.
std::optional<std::int32_t> indexOf(std::string_view text)
{
    const bool isPlain = text == "0" || (!text.empty() && text.front() >= '1' && text.front() <= '9');
    return isPlain ? parseInteger(text) : std::nullopt;
}

/// Calls action(name, index) for every way to take an identifier for a name and an index.
template <class Action>
void forEachIndex(const std::string& identifier, Action action)
{
    constexpr std::size_t kMostDigits = 10;
    const std::size_t digits = std::min(identifier.size(), kMostDigits);
    for (std::size_t count = 1; count <= digits; ++count) {
        const std::size_t place = identifier.size() - count;
        if (const auto index = indexOf(std::string_view(identifier).substr(place)))
            action(identifier.substr(0, place), *index);
    }
}

} // namespace

std::optional<IndexRange> rangeOf(const XmlElement& element)
{
    const auto min = parseInteger(element.textOf("Min"));
    const auto max = parseInteger(element.textOf("Max"));
    const bool isRange = min && max && *min >= 0 && *max >= *min;
    return isRange ? std::optional(IndexRange{*min, *max}) : std::nullopt;
}

void IndexSet::add(IndexRange range)
{
    ranges_.push_back(range);
}

void IndexSet::finish()
{
    std::sort(ranges_.begin(), ranges_.end(),
              [](const IndexRange& one, const IndexRange& other) { return one.min < other.min; });
    std::vector<IndexRange> apart;
    for (const IndexRange& range : ranges_) {
        if (apart.empty() || range.min > apart.back().max)
            apart.push_back(range);
        else
            apart.back().max = std::max(apart.back().max, range.max);
    }
    ranges_ = std::move(apart);
}

std::optional<std::int32_t> IndexSet::firstIn(IndexRange range) const
{
    const auto next =
        std::lower_bound(ranges_.begin(), ranges_.end(), range.min,
                         [](const IndexRange& candidate, std::int32_t min) { return candidate.max < min; });
    if (next == ranges_.end() || next->min > range.max)
        return std::nullopt;
    return std::max(next->min, range.min);
}

PhysicalNames::PhysicalNames(const XmlElement& softwareModule)
{
    forEach(softwareModule, [this](const XmlElement& element) {
        if (element.name == "IviPhysicalName")
            add(element);
    });
    for (auto& [name, indexes] : indexes_)
        indexes.finish();
}

void PhysicalNames::add(const XmlElement& physicalName)
{
    const std::string name(physicalName.textOf("Name"));
    const auto& ranges = physicalName.itemsOf("PhysicalRanges");
    for (const XmlElement& item : ranges) {
        if (const auto range = rangeOf(item))
            indexes_[name].add(*range);
    }
    if (ranges.empty() && names_.insert(name).second)
        forEachIndex(name, [this](const std::string& beginning, std::int32_t index) {
            indexes_[beginning].add({index, index});
        });
}

bool PhysicalNames::contains(const std::string& identifier) const
{
    bool isThere = names_.contains(identifier);
    forEachIndex(identifier, [&](const std::string& beginning, std::int32_t index) {
        const auto indexes = indexes_.find(beginning);
        isThere = isThere || (indexes != indexes_.end() && indexes->second.firstIn({index, index}));
    });
    return isThere;
}

std::string PhysicalNames::sharedRange(const std::string& name, const XmlElement& virtualName) const
{
    const auto indexes = indexes_.find(name);
    if (indexes == indexes_.end())
        return {};
    for (const XmlElement& item : virtualName.itemsOf("VirtualRanges")) {
        const auto range = rangeOf(item);
        const auto index = range ? indexes->second.firstIn(*range) : std::nullopt;
        if (index)
            return name + std::to_string(*index);
    }
    return {};
}

std::string PhysicalNames::sharedWith(const XmlElement& virtualName) const
{
    const std::string name(virtualName.textOf("Name"));
    if (!virtualName.itemsOf("VirtualRanges").empty())
        return sharedRange(name, virtualName);
    return contains(name) ? name : std::string();
}

} // namespace store_tool
