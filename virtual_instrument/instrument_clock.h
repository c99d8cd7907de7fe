#pragma once

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

    /// Moves the clock forward; `step` is not negative.
    void advance(Duration step) { advanced_ += step; }

private:
    Source source_;
    Duration advanced_{0};
};

} // namespace kvxvirtual
