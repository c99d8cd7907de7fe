#include "virtual_instrument/programs/delay_generator.h"

#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/common/value_range.h"

#include <algorithm>

namespace kvxvirtual
{
namespace
{

bool isOnAt(const DelayGenerator& generator, int index)
{
    const bool beginsOn = static_cast<DelayPattern>(generator.pattern) == DelayPattern::OnOff;
    return beginsOn == (index % 2 == 0);
}

double secondsAt(const DelayGenerator& generator, int index)
{
    const auto mode = static_cast<DelayMode>(generator.mode);
    if (mode == DelayMode::Fixed)
        return isOnAt(generator, index) ? generator.onSeconds : generator.offSeconds;
    // In the clock's steps, so that a sum of times is exact.
    const auto change = index * durationOf(generator.stepSeconds);
    const auto base = durationOf(generator.baseSeconds);
    return secondsOf(mode == DelayMode::Increasing ? base + change : base - change);
}

} // namespace

ErrorCode DelayGenerator::check() const
{
    const auto made = groups();
    const bool allLast = std::all_of(made.begin(), made.end(),
                                     [](const DelayGroup& group) { return ranges::kSeconds.holds(group.seconds); });
    return allLast ? ErrorCode::None : ErrorCode::DataOutOfRange;
}

std::vector<DelayGroup> DelayGenerator::groups() const
{
    std::vector<DelayGroup> made;
    made.reserve(static_cast<std::size_t>(pointCount));
    for (int i = 0; i < pointCount; ++i)
        made.push_back({isOnAt(*this, i), secondsAt(*this, i)});
    return made;
}

} // namespace kvxvirtual
