#pragma once

#include "virtual_instrument/common/instrument_clock.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace kvxvirtual
{

/// What a list or delay program is doing, in the order of the instrument's keywords.
enum class RunState
{
    Stopped,
    /// Begun by the user, but still waiting for what lets it run.
    Ready,
    Running,
    Paused
};

/// The course of a program through its groups and cycles, in the time of the instrument's clock. It knows how long each
/// group lasts, not what a group does.
class ProgramRun
{
public:
    using Duration = InstrumentClock::Duration;

    /// In place of a number of cycles: no end.
    static constexpr int kEndless = 0;

    /// What step() has come to.
    enum class Step
    {
        Group,
        Cycle,
        End
    };

    RunState state() const { return state_; }
    bool active() const { return state_ != RunState::Stopped; }

    /// Stands before the first group of the first cycle; `times`, one for each group, is not empty.
    void arm(std::vector<Duration> times, int cycles);

    /// Runs from Ready or Paused.
    void proceed(Duration now);
    void pause(Duration now);
    void stop() { state_ = RunState::Stopped; }

    /// The present group, counted from 0; after the end the last one that was there.
    std::size_t group() const { return group_; }

    /// The cycles to come with the present one, or kEndless.
    int remainingCycles() const { return remainingCycles_; }

    /// How much of the present group is left; 0 when stopped.
    Duration remaining(Duration now) const;

    /// When the present group ends; nothing unless it runs.
    std::optional<Duration> groupEnd() const;

    /// Leaves the present group at its end.
    Step step();

    /// At the beginning of a cycle: leaves out as many whole cycles as end by `now`, but for the last one. Returns how
    /// long they take.
    Duration skipCycles(Duration now);

private:
    RunState state_ = RunState::Stopped;
    std::vector<Duration> times_;
    Duration cycleTime_{0};
    std::size_t group_ = 0;
    int remainingCycles_ = 0;
    /// While it runs.
    Duration groupEnd_{0};
    /// While it does not.
    Duration remaining_{0};
};

} // namespace kvxvirtual
