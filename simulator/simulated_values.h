#pragma once

#include "instrument/channel_limits.h"
#include "simulator/random_source.h"

#include <type_traits>

/// What the simulated instrument answers: random values of the kinds that several of its queries share. Any thread may
/// draw at any time.
namespace TSRO::simulated
{

/// One of the first `count` enumerators of an enumeration that counts from 0.
template <class Enumeration>
requires std::is_enum_v<Enumeration> Enumeration oneOf(std::uint32_t count)
{
    return static_cast<Enumeration>(random::uniformInteger(count));
}

/// Both ends included.
inline ViInt32 integer(ViInt32 least, ViInt32 most)
{
    return least + static_cast<ViInt32>(random::uniformInteger(static_cast<std::uint32_t>(most - least) + 1));
}

inline double voltage(const ChannelLimits& limits)
{
    return random::uniformReal(limits.voltageMin, limits.voltageMax);
}

inline double current(const ChannelLimits& limits)
{
    return random::uniformReal(limits.currentMin, limits.currentMax);
}

inline double power(const ChannelLimits& limits)
{
    return random::uniformReal(limits.currentMin * limits.voltageMin, limits.currentMax * limits.voltageMax);
}

/// From one millisecond to an hour.
inline double seconds()
{
    return random::uniformReal(0.001, 3600.0);
}

/// 0 to 510: the number of groups, and of the group that runs.
inline ViInt32 groups()
{
    return static_cast<ViInt32>(random::uniformReal() * 511.0);
}

/// 0 to 99998.
inline ViInt32 cycles()
{
    return static_cast<ViInt32>(random::uniformReal() * 99999.0);
}

} // namespace TSRO::simulated
