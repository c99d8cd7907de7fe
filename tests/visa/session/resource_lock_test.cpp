#include "visa/session/resource_lock.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::Ne;
using testing::SizeIs;
using visa::Deadline;
using visa::ResourceLock;

constexpr ViUInt32 kShortMs = 20;
constexpr ViUInt32 kLongMs = 60000;

class ResourceLockTest : public testing::Test
{
protected:
    ViStatus exclusive(ViSession session, ViUInt32 timeoutMs = VI_TMO_IMMEDIATE)
    {
        return lock_.acquireExclusive(session, Deadline(timeoutMs), isClosing_);
    }

    ViStatus shared(ViSession session, std::optional<std::string> key, ViUInt32 timeoutMs = VI_TMO_IMMEDIATE)
    {
        const ViStatus status = lock_.acquireShared(session, Deadline(timeoutMs), isClosing_, key);
        key_ = key.value_or("none");
        return status;
    }

    ViStatus release(ViSession session) { return lock_.release(session).status; }

    ResourceLock lock_;
    std::atomic<bool> isClosing_ = false;
    std::string key_;
};

TEST_F(ResourceLockTest, AdmitsEverySessionWhileNobodyHoldsIt)
{
    EXPECT_TRUE(lock_.admits(1));
    EXPECT_TRUE(lock_.admits(2));
    EXPECT_EQ(lock_.state(), VI_NO_LOCK);
    EXPECT_EQ(release(1), VI_ERROR_SESN_NLOCKED);
}

TEST_F(ResourceLockTest, ExclusiveLockAdmitsItsHolderAlone)
{
    EXPECT_EQ(exclusive(1), VI_SUCCESS);
    EXPECT_EQ(lock_.state(), VI_EXCLUSIVE_LOCK);
    EXPECT_TRUE(lock_.admits(1));
    EXPECT_FALSE(lock_.admits(2));
    EXPECT_EQ(exclusive(2), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(exclusive(2, kShortMs), VI_ERROR_TMO);
    EXPECT_EQ(shared(2, "key"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(shared(2, std::nullopt, kShortMs), VI_ERROR_TMO);
    EXPECT_EQ(release(2), VI_ERROR_SESN_NLOCKED);
    EXPECT_EQ(release(1), VI_SUCCESS);
    EXPECT_TRUE(lock_.admits(2));
}

TEST_F(ResourceLockTest, LocksNestAndAreTakenBackOneByOne)
{
    EXPECT_EQ(exclusive(1), VI_SUCCESS);
    EXPECT_EQ(exclusive(1), VI_SUCCESS_NESTED_EXCLUSIVE);
    EXPECT_EQ(exclusive(1), VI_SUCCESS_NESTED_EXCLUSIVE);
    EXPECT_EQ(release(1), VI_SUCCESS_NESTED_EXCLUSIVE);
    EXPECT_EQ(release(1), VI_SUCCESS_NESTED_EXCLUSIVE);
    EXPECT_FALSE(lock_.admits(2));
    EXPECT_EQ(release(1), VI_SUCCESS);
    EXPECT_EQ(release(1), VI_ERROR_SESN_NLOCKED);
}

TEST_F(ResourceLockTest, SharedLockAdmitsWhoeverHasItsKey)
{
    EXPECT_EQ(shared(1, "bench"), VI_SUCCESS);
    EXPECT_EQ(key_, "bench");
    EXPECT_EQ(lock_.state(), VI_SHARED_LOCK);
    EXPECT_FALSE(lock_.admits(2));
    EXPECT_EQ(shared(2, "other"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(shared(2, std::nullopt), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(shared(2, "bench"), VI_SUCCESS);
    EXPECT_TRUE(lock_.admits(1));
    EXPECT_TRUE(lock_.admits(2));
    EXPECT_FALSE(lock_.admits(3));
    EXPECT_EQ(release(1), VI_SUCCESS);
    EXPECT_FALSE(lock_.admits(1));
    EXPECT_EQ(release(2), VI_SUCCESS);
    EXPECT_EQ(shared(1, "other"), VI_SUCCESS);
}

TEST_F(ResourceLockTest, NestedSharedLockKeepsItsKey)
{
    EXPECT_EQ(shared(1, "bench"), VI_SUCCESS);
    EXPECT_EQ(shared(1, std::nullopt), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(key_, "bench");
    EXPECT_EQ(shared(1, "bench"), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(shared(1, "other"), VI_ERROR_INV_ACCESS_KEY);
    EXPECT_EQ(release(1), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(release(1), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(release(1), VI_SUCCESS);
}

TEST_F(ResourceLockTest, GeneratedKeysDiffer)
{
    EXPECT_EQ(shared(1, std::nullopt), VI_SUCCESS);
    const std::string first = key_;
    EXPECT_THAT(first, SizeIs(39));
    EXPECT_EQ(release(1), VI_SUCCESS);
    EXPECT_EQ(shared(1, std::nullopt), VI_SUCCESS);
    EXPECT_THAT(key_, Ne(first));
}

TEST_F(ResourceLockTest, HolderOfASharedLockMayAskForTheExclusiveOneToo)
{
    EXPECT_EQ(shared(1, "bench"), VI_SUCCESS);
    EXPECT_EQ(shared(2, "bench"), VI_SUCCESS);
    EXPECT_EQ(exclusive(1), VI_SUCCESS);
    EXPECT_EQ(lock_.state(), VI_EXCLUSIVE_LOCK);
    EXPECT_TRUE(lock_.admits(1));
    EXPECT_FALSE(lock_.admits(2));
    EXPECT_EQ(exclusive(2), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(shared(3, "bench"), VI_SUCCESS);
    EXPECT_EQ(shared(1, "bench"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(release(1), VI_SUCCESS_NESTED_SHARED);
    EXPECT_TRUE(lock_.admits(2));
    EXPECT_TRUE(lock_.admits(3));
}

TEST_F(ResourceLockTest, ExclusiveLockCannotBecomeShared)
{
    EXPECT_EQ(exclusive(1), VI_SUCCESS);
    EXPECT_EQ(shared(1, "bench", kLongMs), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(release(1), VI_SUCCESS);
}

TEST_F(ResourceLockTest, ReleaseTellsWhichLockItWas)
{
    shared(1, "bench");
    exclusive(1);
    exclusive(1);
    const auto expectReleased = [this](bool isShared, bool isLast) {
        const auto released = lock_.release(1);
        EXPECT_EQ(released.isShared, isShared);
        EXPECT_EQ(released.isLastOfItsKind, isLast);
    };
    expectReleased(false, false);
    expectReleased(false, true);
    expectReleased(true, true);
}

TEST_F(ResourceLockTest, ClosedSessionHoldsNothing)
{
    shared(1, "bench");
    exclusive(1);
    exclusive(1);
    lock_.releaseAll(1);
    EXPECT_EQ(lock_.state(), VI_NO_LOCK);
    EXPECT_EQ(exclusive(2), VI_SUCCESS);
}

TEST_F(ResourceLockTest, WaitsUntilTheHolderIsDone)
{
    ASSERT_EQ(exclusive(1), VI_SUCCESS);
    std::atomic<ViStatus> waited = VI_ERROR_SYSTEM_ERROR;
    std::thread waiter([&] { waited = exclusive(2, kLongMs); });
    std::this_thread::sleep_for(std::chrono::milliseconds(kShortMs));
    EXPECT_EQ(release(1), VI_SUCCESS);
    waiter.join();
    EXPECT_EQ(waited, VI_SUCCESS);
    EXPECT_FALSE(lock_.admits(1));
}

TEST_F(ResourceLockTest, ClosingEndsAWait)
{
    ASSERT_EQ(exclusive(1), VI_SUCCESS);
    std::atomic<ViStatus> waited = VI_SUCCESS;
    std::thread waiter([&] { waited = exclusive(2, VI_TMO_INFINITE); });
    std::this_thread::sleep_for(std::chrono::milliseconds(kShortMs));
    isClosing_ = true;
    lock_.wake();
    waiter.join();
    EXPECT_EQ(waited, VI_ERROR_INV_OBJECT);
    EXPECT_FALSE(lock_.admits(2));
}

TEST_F(ResourceLockTest, LetsOneThreadAtATimeThrough)
{
    int counter = 0;
    std::vector<std::thread> threads;
    for (ViSession session = 1; session <= 4; ++session)
        threads.emplace_back([this, session, &counter] {
            for (int round = 0; round < 200; ++round) {
                ASSERT_EQ(exclusive(session, kLongMs), VI_SUCCESS);
                ++counter;
                ASSERT_EQ(release(session), VI_SUCCESS);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, 800);
}

} // namespace
