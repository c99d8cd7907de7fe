#pragma once

#include <atomic>
#include <thread>

namespace base
{

/// A lock for work that never waits, to be used by std::lock_guard. It owns nothing, so that it may be a
/// constant-initialised global, and nothing is left behind when the library is unloaded; a mutex of the host's thread
/// library may leave memory and handles.
class SpinLock
{
public:
    constexpr SpinLock() = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;
    ~SpinLock() = default;

    void lock()
    {
        if (isTaken_.test_and_set(std::memory_order_acquire)) [[unlikely]]
            wait();
    }
    void unlock() { isTaken_.clear(std::memory_order_release); }

private:
    void wait()
    {
        do
            std::this_thread::yield();
        while (isTaken_.test_and_set(std::memory_order_acquire));
    }

    std::atomic_flag isTaken_;
};

} // namespace base
