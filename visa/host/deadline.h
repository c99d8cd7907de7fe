#pragma once

#include <visa.h>

#include <algorithm>
#include <chrono>
#include <optional>

namespace visa
{

/// How long one whole operation may still wait, from a VISA timeout in milliseconds: VI_TMO_IMMEDIATE never waits,
/// VI_TMO_INFINITE has no limit. The time runs from the first look at it, so that an operation which never waits need
/// not look at a clock. For one thread.
class Deadline
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(ViUInt32 timeoutMs) : timeoutMs_(timeoutMs) {}

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
    mutable std::optional<Clock::time_point> end_;
};

} // namespace visa
