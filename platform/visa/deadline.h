#pragma once

#include <visa.h>

#include <algorithm>
#include <chrono>

namespace visa
{

/// The point in time up to which one whole operation may wait, from a VISA timeout in milliseconds:
/// VI_TMO_IMMEDIATE never waits, VI_TMO_INFINITE has no limit.
class Deadline
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(ViUInt32 timeoutMs) : timeoutMs_(timeoutMs)
    {
        if (timeoutMs != VI_TMO_IMMEDIATE && timeoutMs != VI_TMO_INFINITE)
            end_ = Clock::now() + std::chrono::milliseconds(timeoutMs);
    }

    /// Milliseconds left, rounded up and cut at limit; 0 when the time is over, limit when there is no end.
    int remainingMs(int limit) const
    {
        if (timeoutMs_ == VI_TMO_INFINITE)
            return limit;
        if (timeoutMs_ == VI_TMO_IMMEDIATE)
            return 0;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()).count();
        return static_cast<int>(std::clamp<decltype(left)>(left, 0, limit));
    }

private:
    ViUInt32 timeoutMs_;
    Clock::time_point end_{};
};

} // namespace visa
