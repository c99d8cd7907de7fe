#include "virtual_instrument/programs/program_run.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kvxvirtual
{

void ProgramRun::arm(std::vector<Duration> times, int cycles)
{
    times_ = std::move(times);
    cycleTime_ = std::accumulate(times_.begin(), times_.end(), Duration(0));
    state_ = RunState::Ready;
    group_ = 0;
    remainingCycles_ = cycles;
    remaining_ = times_.front();
}

void ProgramRun::proceed(Duration now)
{
    state_ = RunState::Running;
    groupEnd_ = now + remaining_;
}

void ProgramRun::pause(Duration now)
{
    remaining_ = remaining(now);
    state_ = RunState::Paused;
}

ProgramRun::Duration ProgramRun::remaining(Duration now) const
{
    switch (state_) {
    case RunState::Stopped:
        return Duration(0);
    case RunState::Running:
        return groupEnd_ - now;
    default:
        return remaining_;
    }
}

std::optional<ProgramRun::Duration> ProgramRun::groupEnd() const
{
    return state_ == RunState::Running ? std::optional(groupEnd_) : std::nullopt;
}

ProgramRun::Step ProgramRun::step()
{
    if (group_ + 1 < times_.size()) {
        groupEnd_ += times_[++group_];
        return Step::Group;
    }
    if (remainingCycles_ == 1) {
        stop();
        return Step::End;
    }
    if (remainingCycles_ != kEndless)
        --remainingCycles_;
    group_ = 0;
    groupEnd_ += times_.front();
    return Step::Cycle;
}

ProgramRun::Duration ProgramRun::skipCycles(Duration now)
{
    const auto cycleStart = groupEnd_ - times_.front();
    auto count = (now - cycleStart) / cycleTime_;
    if (remainingCycles_ != kEndless) {
        count = std::min<decltype(count)>(count, remainingCycles_ - 1);
        remainingCycles_ -= static_cast<int>(count);
    }
    groupEnd_ += count * cycleTime_;
    return count * cycleTime_;
}

} // namespace kvxvirtual
