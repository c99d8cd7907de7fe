#include "virtual_instrument/transport/link/device_locks.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace kvxvirtual;
using Answer = DeviceLocks::Answer;
using Released = DeviceLocks::Released;

class Locks : public testing::Test
{
protected:
    int one_ = 1;
    int two_ = 2;
    int three_ = 3;
    DeviceLocks locks_;
};

TEST_F(Locks, UnlockedGrantsEitherAndHasNothingToRelease)
{
    EXPECT_EQ(locks_.release(&one_), Released::None);
    EXPECT_TRUE(locks_.permits(&one_));
    EXPECT_EQ(locks_.request(&one_, ""), Answer::Granted);
    EXPECT_EQ(locks_.release(&one_), Released::Exclusive);
    EXPECT_EQ(locks_.request(&one_, "key"), Answer::Granted);
    EXPECT_EQ(locks_.release(&one_), Released::Shared);
    EXPECT_EQ(locks_.holderCount(), 0U);
}

TEST_F(Locks, ExclusiveRefusesEverybodyElse)
{
    ASSERT_EQ(locks_.request(&one_, ""), Answer::Granted);
    EXPECT_TRUE(locks_.isExclusive());
    EXPECT_EQ(locks_.holderCount(), 1U);
    EXPECT_EQ(locks_.request(&one_, ""), Answer::Held);
    EXPECT_EQ(locks_.request(&one_, "key"), Answer::Held);
    EXPECT_EQ(locks_.request(&two_, ""), Answer::Unavailable);
    EXPECT_EQ(locks_.request(&two_, "key"), Answer::Unavailable);
    EXPECT_EQ(locks_.release(&two_), Released::None);
    EXPECT_TRUE(locks_.permits(&one_));
    EXPECT_FALSE(locks_.permits(&two_));
}

TEST_F(Locks, SharedTakesThoseWithItsKeyAndAnExclusiveOneFromThemOnly)
{
    ASSERT_EQ(locks_.request(&one_, "key"), Answer::Granted);
    EXPECT_EQ(locks_.request(&one_, "key"), Answer::Held);
    EXPECT_EQ(locks_.request(&one_, "another"), Answer::Held);
    EXPECT_EQ(locks_.request(&two_, "another"), Answer::Unavailable);
    EXPECT_EQ(locks_.request(&two_, ""), Answer::Unavailable);
    EXPECT_FALSE(locks_.permits(&two_));
    EXPECT_EQ(locks_.request(&two_, "key"), Answer::Granted);
    EXPECT_TRUE(locks_.permits(&two_));
    EXPECT_FALSE(locks_.isExclusive());
    EXPECT_EQ(locks_.holderCount(), 2U);
    EXPECT_EQ(locks_.release(&one_), Released::Shared);
    EXPECT_EQ(locks_.release(&one_), Released::None);
    EXPECT_FALSE(locks_.permits(&one_));
    EXPECT_EQ(locks_.release(&two_), Released::Shared);
    EXPECT_TRUE(locks_.permits(&one_));
}

TEST_F(Locks, BothLocksLetOnlyTheExclusiveHolderActAndReleaseThatOneFirst)
{
    ASSERT_EQ(locks_.request(&one_, "key"), Answer::Granted);
    ASSERT_EQ(locks_.request(&two_, "key"), Answer::Granted);
    EXPECT_EQ(locks_.request(&one_, ""), Answer::Granted);
    EXPECT_EQ(locks_.holderCount(), 2U);
    EXPECT_FALSE(locks_.permits(&two_));
    EXPECT_EQ(locks_.request(&two_, "key"), Answer::Held);
    EXPECT_EQ(locks_.request(&two_, ""), Answer::Unavailable);
    EXPECT_EQ(locks_.request(&three_, "other"), Answer::Unavailable);
    EXPECT_EQ(locks_.request(&three_, "key"), Answer::Granted);
    EXPECT_EQ(locks_.release(&three_), Released::Shared);
    EXPECT_EQ(locks_.release(&one_), Released::Exclusive);
    EXPECT_TRUE(locks_.permits(&two_));
    EXPECT_EQ(locks_.release(&one_), Released::Shared);
}

TEST_F(Locks, AreAllReleasedAtTheEndOfTheirHolder)
{
    ASSERT_EQ(locks_.request(&one_, "key"), Answer::Granted);
    ASSERT_EQ(locks_.request(&one_, ""), Answer::Granted);
    locks_.releaseAll(&one_);
    EXPECT_EQ(locks_.holderCount(), 0U);
    EXPECT_FALSE(locks_.isExclusive());
    EXPECT_TRUE(locks_.permits(&two_));
}

TEST_F(Locks, GoToThoseWhoWaitInTheOrderOfTheirArrival)
{
    ASSERT_EQ(locks_.request(&one_, ""), Answer::Granted);
    std::string order;
    const auto attempt = [&](const int& holder, char name) {
        return [&, name] {
            const bool granted = locks_.request(&holder, "") == Answer::Granted;
            if (granted)
                order += name;
            return granted;
        };
    };
    locks_.wait(attempt(two_, '2'));
    const auto cancelled = locks_.wait(attempt(two_, 'x'));
    locks_.wait(attempt(three_, '3'));
    locks_.cancel(cancelled);
    EXPECT_EQ(order, "");
    locks_.release(&one_);
    EXPECT_EQ(order, "2");
    locks_.releaseAll(&two_);
    EXPECT_EQ(order, "23");
}

} // namespace
