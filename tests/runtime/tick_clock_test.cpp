#include "runtime/tick_clock.h"

#include "tests/support/driver/scripted_clock.h"

#include <gtest/gtest.h>

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

TEST(TickClock, TheSystemsClockMovesAndNeverGoesBack)
{
    const drivekit::TickClock system = drivekit::exchangeTickClock(nullptr);
    drivekit::exchangeTickClock(system);
    const std::int64_t start = system();
    std::int64_t last = start;
    while (last == start) {
        const std::int64_t now = system();
        ASSERT_GE(now, last);
        last = now;
    }
    drivekit::busyWait(1);
    EXPECT_GT(system(), start);
}

} // namespace
