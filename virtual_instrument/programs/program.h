#pragma once

#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/common/value_range.h"
#include "virtual_instrument/programs/program_run.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace kvxvirtual
{

/// What list and delay programs have in common: numbered groups, a number of cycles, an end state and a run. `Group`
/// has a member `seconds`, and a default that an inserted group begins with.
///
/// Nothing of it can be edited during a run: SettingsConflict. A setter that returns an error has changed nothing.
template <class Group>
class Program
{
public:
    static constexpr std::size_t kMostGroups = 512;

    int cycles() const { return cycles_; }
    /// ProgramRun::kEndless for no end.
    ErrorCode setCycles(int cycles)
    {
        if (!ranges::kCycles.holds(cycles))
            return ErrorCode::DataOutOfRange;
        return edit([&] { cycles_ = cycles; });
    }

    /// A place in the keyword table of the program's end states.
    int endState() const { return endState_; }
    ErrorCode setEndState(int endState)
    {
        return edit([&] { endState_ = endState; });
    }

    const std::vector<Group>& groups() const { return groups_; }

    // Groups are numbered from 1.

    bool hasGroup(int number) const { return number >= 1 && number <= count(); }

    /// Puts an empty group before group `number`, or behind the last one.
    ErrorCode insertGroup(int number)
    {
        if (!hasPlace(number))
            return ErrorCode::DataOutOfRange;
        return edit([&] { groups_.insert(place(number), Group()); }, groups_.size() + 1);
    }

    ErrorCode deleteGroup(int number)
    {
        if (!hasGroup(number))
            return ErrorCode::DataOutOfRange;
        return edit([&] { groups_.erase(place(number)); });
    }

    ErrorCode clearGroups()
    {
        return edit([&] { groups_.clear(); });
    }

    const ProgramRun& run() const { return run_; }
    ProgramRun& run() { return run_; }

    /// Stands ready to run: SettingsConflict without groups.
    ErrorCode arm()
    {
        if (groups_.empty())
            return ErrorCode::SettingsConflict;
        std::vector<InstrumentClock::Duration> times;
        times.reserve(groups_.size());
        for (const auto& group : groups_)
            times.push_back(durationOf(group.seconds));
        run_.arm(std::move(times), cycles_);
        return ErrorCode::None;
    }

    /// The group that the run has come to.
    const Group& presentGroup() const { return groups_[run_.group()]; }

protected:
    /// A group whose values are known to be right; the number behind the last one appends it.
    ErrorCode putGroup(int number, const Group& group)
    {
        if (!hasPlace(number))
            return ErrorCode::DataOutOfRange;
        if (hasGroup(number))
            return edit([&] { *place(number) = group; });
        return edit([&] { groups_.push_back(group); }, groups_.size() + 1);
    }

    /// Leaves the groups before `number` and puts what `source.groups()` gives behind them, `source.points()` groups.
    template <class Source>
    ErrorCode putGroupsFrom(int number, const Source& source)
    {
        if (!hasPlace(number))
            return ErrorCode::DataOutOfRange;
        const auto kept = static_cast<std::size_t>(number - 1);
        return edit(
            [&] {
                const auto added = source.groups();
                groups_.resize(kept);
                groups_.insert(groups_.end(), added.begin(), added.end());
            },
            kept + static_cast<std::size_t>(source.points()));
    }

private:
    int count() const { return static_cast<int>(groups_.size()); }
    bool hasPlace(int number) const { return number >= 1 && number <= count() + 1; }
    auto place(int number) { return groups_.begin() + (number - 1); }

    /// Makes a change that leaves `newCount` groups.
    template <class Change>
    ErrorCode edit(Change change, std::size_t newCount = 0)
    {
        if (run_.active())
            return ErrorCode::SettingsConflict;
        if (newCount > kMostGroups)
            return ErrorCode::TooMuchData;
        change();
        return ErrorCode::None;
    }

    std::vector<Group> groups_;
    int cycles_ = 1;
    int endState_ = 0;
    ProgramRun run_;
};

} // namespace kvxvirtual
