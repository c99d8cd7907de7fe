#include "runtime/virtual_names.h"

#include "base/ascii.h"
#include "runtime/error_messages.h"
#include "runtime/selector_grammar.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace drivekit
{
namespace
{

// Of a 32-bit number.
constexpr std::size_t kMostDigits = 10;

} // namespace

void VirtualNames::add(const std::string& name, std::string mapTo)
{
    names_.insert_or_assign(name, Name{std::move(mapTo), count_++});
}

void VirtualNames::addRange(const std::string& name, std::string mapTo, ViInt32 minimum, ViInt32 maximum,
                            ViInt32 startingPhysicalIndex)
{
    const std::int64_t first = std::min(minimum, maximum);
    const std::int64_t last = std::max(minimum, maximum);
    Ranges& ranges = ranges_[name];
    splitAt(ranges, first);
    splitAt(ranges, last + 1);
    ranges.erase(ranges.lower_bound(first), ranges.upper_bound(last));
    ranges.emplace(first, Range{std::move(mapTo), last, startingPhysicalIndex, count_++});
}

/// Cuts the range that holds an index in front of it, if there is one.
void VirtualNames::splitAt(Ranges& ranges, std::int64_t index)
{
    const auto behind = ranges.lower_bound(index);
    if (behind == ranges.begin())
        return;
    auto& [minimum, front] = *std::prev(behind);
    if (front.maximum < index)
        return;
    Range back = front;
    back.physicalIndex += index - minimum;
    front.maximum = index - 1;
    ranges.emplace(index, std::move(back));
}

bool VirtualNames::append(std::string_view token, std::string& text) const
{
    const auto name = names_.find(token);
    const RangeMatch match = findRange(token);
    const bool isName = name != names_.end();
    if (match.range != nullptr && !(isName && name->second.order > match.range->order)) {
        text += match.range->mapTo;
        text += DecimalArgument(match.range->physicalIndex + (match.index - match.minimum));
        return true;
    }
    if (isName)
        text += name->second.mapTo;
    return isName;
}

/// Every split of the token into a name and an index is tried: "Rail12" may be "Rail" and 12, or "Rail1" and 2.
VirtualNames::RangeMatch VirtualNames::findRange(std::string_view token) const
{
    RangeMatch best;
    if (ranges_.empty())
        return best;
    for (std::size_t digits = 1; digits <= std::min(kMostDigits, token.size()); ++digits) {
        const std::size_t split = token.size() - digits;
        if (!base::ascii::isDigit(token[split]))
            break;
        const auto index = selector::plainDecimal(token.substr(split));
        const auto named = index ? ranges_.find(token.substr(0, split)) : ranges_.end();
        if (named == ranges_.end())
            continue;
        const auto behind = named->second.upper_bound(*index);
        if (behind == named->second.begin())
            continue;
        const auto& [minimum, range] = *std::prev(behind);
        if (range.maximum >= *index && (best.range == nullptr || range.order > best.range->order))
            best = {&range, minimum, *index};
    }
    return best;
}

} // namespace drivekit
