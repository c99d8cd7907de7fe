#include "base/spin_lock.h"

#include <atomic>
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
        for (int i = 0; i < 10000; ++i)
            std::this_thread::yield();
        EXPECT_FALSE(entered);
    }
    other.join();
    EXPECT_TRUE(entered);
}

} // namespace
