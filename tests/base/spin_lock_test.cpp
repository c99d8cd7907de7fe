#include "base/spin_lock.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

namespace
{

TEST(SpinLock, IsHeldByOneThreadAtATime)
{
    base::SpinLock lock;
    std::atomic<int> arrived = 0;
    std::atomic<bool> entered = false;
    std::thread other;
    {
        const std::lock_guard guard(lock);
        other = std::thread([&] {
            ++arrived;
            const std::lock_guard guardOfOther(lock);
            entered = true;
        });
        while (arrived == 0)
            std::this_thread::yield();
        // Time enough to come in where nothing keeps it out.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_FALSE(entered);
    }
    other.join();
    EXPECT_TRUE(entered);
}

} // namespace
