#pragma once

#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/supply/output_channel.h"

#include <array>
#include <optional>

namespace kvxvirtual
{

enum class SourceMode
{
    Normal,
    Series,
    Parallel
};

/// The power electronics: six channels, and the source mode that decides which of them are live. Channels are 1 to 6.
///
/// What happens by itself as time passes (an over-current delay that runs out, a program that goes on) happens in
/// update(), which is therefore called before and after whatever looks at or changes the supply. A setter that returns
/// an error has changed nothing. One thread at a time.
class PowerSupply
{
public:
    using Duration = InstrumentClock::Duration;

    /// As after *RST, with every power-on state at Reset and no load connected. `clock` must outlive the supply.
    PowerSupply(const InstrumentClock& clock, Duration settleTime);

    /// Lets everything happen that is due by now.
    void update();

    /// *RST: everything but the loads and the power-on states.
    void reset();

    /// Off and on again: each channel comes up as its power-on state says, in source mode Normal, trips cleared.
    void powerCycle();

    SourceMode sourceMode() const { return sourceMode_; }
    /// A change switches outputs 1, 2, 5 and 6 off, ends their programs and lets them settle; the mode that is already
    /// set does nothing.
    void setSourceMode(SourceMode mode);

    bool bleEnabled() const { return bleEnabled_; }
    void setBleEnabled(bool enabled) { bleEnabled_ = enabled; }

    int selectedChannel() const { return selectedChannel_; }
    void selectChannel(int channel) { selectedChannel_ = channel; }

    const ChannelSettings& settings(int channel) const { return at(channel).settings(); }

    /// Sets one of the levels that have a limit: DataOutOfRange outside 0 to the limit, SettingsConflict on a channel
    /// that is not ready.
    ErrorCode setLevel(int channel, double ChannelSettings::*level, double ChannelLimits::*limit, double value);

    /// Sets a switch or a choice of a protection: SettingsConflict on a channel that is not ready.
    template <class Value>
    ErrorCode setProtection(int channel, Value ChannelSettings::*field, Value value)
    {
        if (!ready(channel))
            return ErrorCode::SettingsConflict;
        at(channel).settings().*field = value;
        return ErrorCode::None;
    }

    /// Sets what every channel takes at any time.
    template <class Value>
    void setFreely(int channel, Value ChannelSettings::*field, Value value)
    {
        at(channel).settings().*field = value;
    }

    /// Off is always accepted; on clears the channel's trips and needs a channel that is ready.
    ErrorCode switchOutput(int channel, bool on);

    /// Off: all six. On: those that are live in the present source mode, or none when one of them is not ready.
    ErrorCode switchAllOutputs(bool on);

    /// What the channel's meters show. In a combined mode the meters of outputs 1 and 2 show their part of it.
    Measurement measure(int channel) const;

    unsigned int questionableCondition(int channel) const { return at(channel).questionableCondition(); }
    /// Reads and clears the event register.
    unsigned int takeQuestionableEvent(int channel) { return at(channel).takeQuestionableEvent(); }
    void clearQuestionableEvents();
    /// Whether the event register of some channel is not 0.
    bool hasQuestionableEvent() const;

    /// Whether some channel's list or delay program is active.
    bool programActive() const;

    /// Ohms between the channel's terminals; nothing: open. 0 is a short circuit.
    void setLoad(int channel, std::optional<double> ohms) { at(channel).setLoad(ohms); }

    // Programs of the selected channel. To switch one to what it is already does nothing.

    const ListProgram& list() const { return at(selectedChannel_).list(); }
    ListProgram& list() { return at(selectedChannel_).list(); }
    const DelayProgram& delay() const { return at(selectedChannel_).delay(); }
    DelayProgram& delay() { return at(selectedChannel_).delay(); }

    /// On: SettingsConflict on a channel that is not ready, without groups, or while the other program is active.
    ErrorCode switchList(bool on);
    ErrorCode switchDelay(bool on);

    /// *TRG: starts every list that awaits a trigger with its output on.
    void trigger();

    /// What is left of a run's present group; seconds.
    double remainingSeconds(const ProgramRun& run) const { return secondsOf(run.remaining(updatedAt_)); }

private:
    const OutputChannel& at(int channel) const { return channels_[static_cast<std::size_t>(channel - 1)]; }
    OutputChannel& at(int channel) { return channels_[static_cast<std::size_t>(channel - 1)]; }

    /// Whether the channel exists in the present source mode.
    bool live(int channel) const;
    /// Live and not settling.
    bool ready(int channel) const;

    void resetCommonSettings();

    const InstrumentClock& clock_;
    Duration settleTime_;
    std::array<OutputChannel, kChannelCount> channels_;
    SourceMode sourceMode_ = SourceMode::Normal;
    Duration settledAt_;
    Duration updatedAt_;
    bool bleEnabled_ = false;
    int selectedChannel_ = 1;
};

} // namespace kvxvirtual
