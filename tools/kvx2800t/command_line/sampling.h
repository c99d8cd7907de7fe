#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// When a log takes its readings, and what it has missed: times in seconds since its start, by a clock that nobody
/// sets.
namespace command_line
{

/// Times at equal distances: what takes long does not shift those behind it, but those that it covers are missed.
class Schedule
{
public:
    explicit Schedule(double period) : period_(period) {}

    /// When the next reading is due.
    double due() const { return static_cast<double>(next_) * period_; }

    /// Goes on to the next time that is not over at `now`. @return how many were over, beside the one that was due
    std::int64_t advance(double now);

private:
    double period_;
    std::int64_t next_ = 0;
};

/// Readings that are missing in a row.
struct Gap
{
    double from = 0.0; ///< of the last reading in front of it, or of the start
    double to = 0.0;   ///< of the first reading behind it, or of the end
    std::int64_t missed = 0;
    std::string reason; ///< the first
};

/// Tells gaps apart.
class GapWatch
{
public:
    void miss(std::int64_t count, const std::string& reason);

    /// There is a reading of this time. @return the gap that it ends
    std::optional<Gap> read(double time);

    /// The log ends. @return the gap that is open
    std::optional<Gap> end(double time) { return close(time); }

    std::int64_t gaps() const { return gaps_; }
    std::int64_t missed() const { return missed_; }

private:
    std::optional<Gap> close(double time);

    std::optional<Gap> open_;
    double last_ = 0.0;
    std::int64_t gaps_ = 0;
    std::int64_t missed_ = 0;
};

} // namespace command_line
