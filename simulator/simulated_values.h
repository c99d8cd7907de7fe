#pragma once

#include "instrument/channel_limits.h"
#include "instrument/keyword_table.h"
#include "simulator/random_source.h"

#include <span>

namespace TSRO
{

/// What the simulated instrument answers: random values of the kinds that several of its queries share.
class SimulatedValues : public RandomSource
{
public:
    /// One of the values of an enumeration.
    template <class Enumeration>
    Enumeration oneOf()
    {
        const std::span<const KeywordEntry> values = kKeywordTable<Enumeration>.entries();
        return static_cast<Enumeration>(values[uniformInteger(static_cast<std::uint32_t>(values.size()))].value);
    }

    /// Both ends included.
    ViInt32 integer(ViInt32 least, ViInt32 most)
    {
        return least + static_cast<ViInt32>(uniformInteger(static_cast<std::uint32_t>(most - least) + 1));
    }

    double voltage(const ChannelLimits& limits) { return uniformReal(limits.voltageMin, limits.voltageMax); }

    double current(const ChannelLimits& limits) { return uniformReal(limits.currentMin, limits.currentMax); }

    double power(const ChannelLimits& limits)
    {
        return uniformReal(limits.currentMin * limits.voltageMin, limits.currentMax * limits.voltageMax);
    }

    /// From one millisecond to an hour.
    double seconds() { return uniformReal(0.001, 3600.0); }

    /// 0 to 510: the number of groups, and of the group that runs.
    ViInt32 groups() { return static_cast<ViInt32>(uniformReal() * 511.0); }

    /// 0 to 99998.
    ViInt32 cycles() { return static_cast<ViInt32>(uniformReal() * 99999.0); }
};

} // namespace TSRO
