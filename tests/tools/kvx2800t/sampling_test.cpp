#include "tools/kvx2800t/command_line/sampling.h"

#include <gtest/gtest.h>

namespace command_line
{
namespace
{

TEST(Schedule, DelaysDoNotAddUp)
{
    Schedule schedule(0.5);
    EXPECT_EQ(schedule.due(), 0.0);
    EXPECT_EQ(schedule.advance(0.4), 0);
    EXPECT_EQ(schedule.due(), 0.5);
    EXPECT_EQ(schedule.advance(0.99), 0);
    EXPECT_EQ(schedule.due(), 1.0);
}

TEST(Schedule, CountsTheTimesThatWereOver)
{
    Schedule schedule(0.5);
    EXPECT_EQ(schedule.advance(2.1), 4);
    EXPECT_EQ(schedule.due(), 2.5);
    EXPECT_EQ(schedule.advance(3.0), 0);
    EXPECT_EQ(schedule.due(), 3.0);
}

TEST(GapWatch, TellsAGapWhenReadingsAreThereAgain)
{
    GapWatch watch;
    EXPECT_FALSE(watch.read(1.0));
    watch.miss(1, "first");
    watch.miss(2, "second");
    const auto gap = watch.read(5.0);
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->from, 1.0);
    EXPECT_EQ(gap->to, 5.0);
    EXPECT_EQ(gap->missed, 3);
    EXPECT_EQ(gap->reason, "first");
    EXPECT_FALSE(watch.read(6.0));
    EXPECT_EQ(watch.gaps(), 1);
    EXPECT_EQ(watch.missed(), 3);
}

TEST(GapWatch, ALogMayEndInAGap)
{
    GapWatch watch;
    watch.miss(1, "lost");
    const auto gap = watch.end(9.0);
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->from, 0.0);
    EXPECT_EQ(gap->to, 9.0);
    EXPECT_FALSE(watch.end(10.0));
}

TEST(GapWatch, MissingNothingIsNoGap)
{
    GapWatch watch;
    watch.miss(0, "nothing");
    EXPECT_FALSE(watch.read(1.0));
    EXPECT_EQ(watch.gaps(), 0);
}

} // namespace
} // namespace command_line
