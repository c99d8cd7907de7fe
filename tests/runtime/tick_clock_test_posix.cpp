#include "runtime/tick_clock.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace
{

/// How often this thread has given the processor away of its own accord, as every call that sleeps does.
long timesSlept()
{
    rusage usage{};
    EXPECT_EQ(::getrusage(RUSAGE_THREAD, &usage), 0);
    return usage.ru_nvcsw;
}

TEST(TickClock, AWaitNeverSleeps)
{
    drivekit::busyWait(1);
    const long before = timesSlept();
    drivekit::busyWait(drivekit::kTicksPerSecond / 100);
    EXPECT_EQ(timesSlept(), before);
}

} // namespace
