#include "runtime/tick_clock.h"

#include <atomic>
#include <chrono>

namespace drivekit
{
namespace
{

std::int64_t steadyTicks()
{
    using Tick = std::chrono::duration<std::int64_t, std::ratio<1, kTicksPerSecond>>;
    return std::chrono::duration_cast<Tick>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Constant-initialised: usable before any static constructor has run.
constinit std::atomic<TickClock> currentClock = steadyTicks;

} // namespace

TickClock exchangeTickClock(TickClock clock)
{
    return currentClock.exchange(clock);
}

void busyWait(std::int64_t ticks)
{
    const TickClock clock = currentClock;
    const std::int64_t start = clock();
    while (clock() - start < ticks) {
    }
}

} // namespace drivekit
