#pragma once

#include <visa.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>

namespace visa
{

/// Moves on when the operations under way are to end.
using Aborts = std::atomic<unsigned>;

/// How long one whole operation may still wait, from a VISA timeout in milliseconds: VI_TMO_IMMEDIATE never waits,
/// VI_TMO_INFINITE has no limit. The time runs from the first look at it, so that an operation which never waits need
/// not look at a clock. For one thread.
///
/// Whoever waits on behalf of the operation does so for kLookMs at a time, and in between looks whether it has been
/// aborted: some waits of a host have no other end than their time.
class Deadline
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int kLookMs = 50;

    explicit Deadline(ViUInt32 timeoutMs) : timeoutMs_(timeoutMs) {}
    /// Of an operation that another thread may abort.
    Deadline(ViUInt32 timeoutMs, const Aborts& aborts)
        : timeoutMs_(timeoutMs), abortsBefore_(aborts.load(std::memory_order_relaxed)), aborts_(&aborts)
    {
    }

    bool isAborted() const { return aborts_ != nullptr && aborts_->load(std::memory_order_relaxed) != abortsBefore_; }

    /// Milliseconds left, rounded up and cut at limit; 0 when the time is over, limit when there is no end.
    int remainingMs(int limit) const
    {
        if (timeoutMs_ == VI_TMO_INFINITE)
            return limit;
        if (timeoutMs_ == VI_TMO_IMMEDIATE)
            return 0;
        const auto now = Clock::now();
        if (!end_)
            end_ = now + std::chrono::milliseconds(timeoutMs_);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end_ - now).count();
        return static_cast<int>(std::clamp<decltype(left)>(left, 0, limit));
    }

private:
    ViUInt32 timeoutMs_;
    unsigned abortsBefore_ = 0;
    const Aborts* aborts_ = nullptr;
    mutable std::optional<Clock::time_point> end_;
};

} // namespace visa
