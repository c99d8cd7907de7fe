#pragma once

#include <atomic>

namespace visa
{

/// A mutex that costs two instructions on memory while nobody else wants it: a read and a write of a few bytes are as
/// quick as the host's own mutex. To be used by std::lock_guard and std::unique_lock.
class QuickMutex
{
public:
    QuickMutex() = default;
    ~QuickMutex() = default;
    QuickMutex(const QuickMutex&) = delete;
    QuickMutex& operator=(const QuickMutex&) = delete;

    void lock() noexcept
    {
        if (try_lock())
            return;
        while (state_.exchange(State::Wanted, std::memory_order_acquire) != State::Free)
            state_.wait(State::Wanted, std::memory_order_relaxed);
    }

    bool try_lock() noexcept // NOLINT(readability-identifier-naming): the standard's name
    {
        State expected = State::Free;
        return state_.compare_exchange_strong(expected, State::Taken, std::memory_order_acquire,
                                              std::memory_order_relaxed);
    }

    void unlock() noexcept
    {
        if (state_.exchange(State::Free, std::memory_order_release) == State::Wanted)
            state_.notify_one();
    }

private:
    enum class State : int
    {
        Free,
        Taken,
        Wanted ///< taken, and somebody may be waiting
    };

    std::atomic<State> state_ = State::Free;
};

} // namespace visa
