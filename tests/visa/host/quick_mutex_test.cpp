#include "visa/host/quick_mutex.h"

#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using visa::QuickMutex;

TEST(QuickMutexTest, IsTakenByOneAtATime)
{
    QuickMutex mutex;
    EXPECT_TRUE(mutex.try_lock());
    EXPECT_FALSE(mutex.try_lock());
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST(QuickMutexTest, KeepsThreadsApartAndWakesThoseThatWait)
{
    QuickMutex mutex;
    long counter = 0;
    constexpr int kThreads = 4;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&] {
            for (int round = 0; round < 20000; ++round) {
                const std::lock_guard guard(mutex);
                ++counter;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, 80000);
}

TEST(QuickMutexTest, WaitsForAHolderThatSleeps)
{
    QuickMutex mutex;
    int value = 0;
    std::unique_lock holder(mutex);
    std::thread waiter([&] {
        const std::lock_guard guard(mutex);
        value = 2 * value;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    value = 21;
    holder.unlock();
    waiter.join();
    EXPECT_EQ(value, 42);
}

} // namespace
