#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

namespace kvxvirtual
{

/// The time the instrument lives by: that of a source, plus whatever it was advanced by hand. Settling and protection
/// delays read only this clock, so a test decides how much time has passed.
class InstrumentClock
{
public:
    /// Whole nanoseconds, so that equal times compare equal however they were added up.
    using Duration = std::chrono::nanoseconds;
    using Source = std::function<Duration()>;

    /// A source that always returns the same leaves the clock to advance() alone.
    explicit InstrumentClock(Source source) : source_(std::move(source)) {}

    /// Time since some fixed moment; never goes back when the source does not.
    Duration now() const { return source_() + advanced_; }

    /// Moves the clock forward; `step` is not negative. A century in all is as far as it goes.
    void advance(Duration step) { advanced_ += std::min(step, kFarthest - advanced_); }

private:
    /// Nanoseconds overflow after three centuries.
    static constexpr Duration kFarthest = std::chrono::hours(24 * 36'525);

    Source source_;
    Duration advanced_{0};
};

/// Seconds as the instrument is told them, and as it tells them.
inline InstrumentClock::Duration durationOf(double seconds)
{
    return std::chrono::round<InstrumentClock::Duration>(std::chrono::duration<double>(seconds));
}

inline double secondsOf(InstrumentClock::Duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace kvxvirtual
