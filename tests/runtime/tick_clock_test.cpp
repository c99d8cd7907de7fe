#include "runtime/tick_clock.h"

#include "tests/support/driver/scripted_clock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace
{

using kvxtest::ScriptedClock;

TEST(TickClock, ASecondHasTenMillionTicks)
{
    EXPECT_EQ(drivekit::kTicksPerSecond, 10'000'000);
}

TEST(TickClock, AWaitEndsWithTheTickThatCompletesIt)
{
    ScriptedClock clock({100, 100, 100 + 999, 100 + 1000, 5000});
    drivekit::busyWait(1000);
    EXPECT_EQ(ScriptedClock::reads(), 4U);
}

TEST(TickClock, AWaitDoesNotDependOnTheTimeOfItsStart)
{
    ScriptedClock clock({-500, 499, 500, 501});
    drivekit::busyWait(1000);
    EXPECT_EQ(ScriptedClock::reads(), 3U);
}

TEST(TickClock, TheClockInPlaceBeforeIsHandedBack)
{
    const drivekit::TickClock mine = [] { return std::int64_t{7}; };
    const drivekit::TickClock system = drivekit::exchangeTickClock(mine);
    EXPECT_EQ(drivekit::exchangeTickClock(system), mine);
    EXPECT_NE(system, mine);
}

/// What the steady clock of the system shows, in whole ticks.
std::int64_t steadyTicks()
{
    using Tick = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    return std::chrono::floor<Tick>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

TEST(TickClock, TheSystemsClockShowsTheTicksOfItsSteadyOne)
{
    const drivekit::TickClock system = drivekit::exchangeTickClock(nullptr);
    drivekit::exchangeTickClock(system);
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t before = steadyTicks();
        const std::int64_t shown = system();
        EXPECT_LE(before, shown);
        EXPECT_LE(shown, steadyTicks());
    }
}

TEST(TickClock, AWaitTakesItsTicksOfTheSystemsClock)
{
    const std::int64_t start = steadyTicks();
    drivekit::busyWait(drivekit::kTicksPerSecond / 100);
    EXPECT_GE(steadyTicks() - start, 100'000);
}

} // namespace
