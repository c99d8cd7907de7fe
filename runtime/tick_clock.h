#pragma once

#include <cstdint>

namespace drivekit
{

/// Ticks of 100 ns on a clock that never goes back.
using TickClock = std::int64_t (*)();

inline constexpr std::int64_t kTicksPerSecond = 10'000'000;

/// Puts another clock in place of the system's, so that tests need not wait; returns the one in place before.
TickClock exchangeTickClock(TickClock clock);

/// Polls the clock until `ticks` have passed, without sleeping.
void busyWait(std::int64_t ticks);

} // namespace drivekit
