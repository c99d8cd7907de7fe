#pragma once

#include "error_code.h"
#include "instrument_clock.h"

#include <array>
#include <optional>

namespace kvxvirtual
{

/// Channels 1 to 4 are the outputs, 5 is the series and 6 the parallel combination of outputs 1 and 2.
constexpr int kChannelCount = 6;
constexpr int kSeriesChannel = 5;
constexpr int kParallelChannel = 6;

enum class SourceMode
{
    Normal,
    Series,
    Parallel
};

enum class PowerOnState
{
    Reset,
    Last,
    LastOff
};

/// The largest values a channel takes; the smallest are all 0.
struct ChannelLimits
{
    double volts;
    double amperes;
    double overVoltageLevel;
    double overCurrentLevel;
    double overCurrentDelay;
};

/// `channel` is 1 to 6, here and wherever a channel is named below.
const ChannelLimits& limitsOf(int channel);

/// What a channel is set to. Plain int members are places in the keyword table of the setting.
struct ChannelSettings
{
    double volts = 0.0;
    double amperes = 0.1;
    double overVoltageLevel = 0.0;
    double overCurrentLevel = 0.0;
    /// Seconds.
    double overCurrentDelay = 0.0;
    int overCurrentDelayMode = 0;
    bool overVoltageEnabled = false;
    bool overCurrentEnabled = false;
    bool outputOn = false;
    bool remoteSense = false;
    bool tracking = false;
    bool triggerInput = false;
    int powerOnState = 0;
    int pairing = 0;
    int outputOffMode = 0;
    int currentRange = 0;
    int currentRate = 0;
};

/// What comes out of a channel.
struct Measurement
{
    double volts = 0.0;
    double amperes = 0.0;
    bool constantCurrent = false;

    double watts() const { return volts * amperes; }
};

/// Bits of a channel's questionable condition and event registers.
namespace questionable
{
constexpr unsigned int kConstantCurrent = 1;
constexpr unsigned int kConstantVoltage = 2;
constexpr unsigned int kOverVoltageTrip = 4;
constexpr unsigned int kOverCurrentTrip = 8;
} // namespace questionable

/// The power electronics: settings, source modes, loads, regulation and protection of the six channels.
///
/// What happens by itself as time passes (an over-current delay that runs out) happens in update(), which is therefore
/// called before and after whatever looks at or changes the supply. A setter that returns an error has changed
/// nothing. One thread at a time.
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
    /// A change switches outputs 1, 2, 5 and 6 off and lets them settle; the mode that is already set does nothing.
    void setSourceMode(SourceMode mode);

    bool bleEnabled() const { return bleEnabled_; }
    void setBleEnabled(bool enabled) { bleEnabled_ = enabled; }

    int selectedChannel() const { return selectedChannel_; }
    void selectChannel(int channel) { selectedChannel_ = channel; }

    const ChannelSettings& settings(int channel) const { return at(channel).settings; }

    /// Sets one of the levels that have a limit: DataOutOfRange outside 0 to the limit, SettingsConflict on a channel
    /// that is not ready.
    ErrorCode setLevel(int channel, double ChannelSettings::*level, double ChannelLimits::*limit, double value);

    /// Sets a switch or a choice of a protection: SettingsConflict on a channel that is not ready.
    template <typename Value>
    ErrorCode setProtection(int channel, Value ChannelSettings::*field, Value value)
    {
        if (!ready(channel))
            return ErrorCode::SettingsConflict;
        at(channel).settings.*field = value;
        return ErrorCode::None;
    }

    /// Sets what every channel takes at any time.
    template <typename Value>
    void setFreely(int channel, Value ChannelSettings::*field, Value value)
    {
        at(channel).settings.*field = value;
    }

    /// Off is always accepted; on clears the channel's trips and needs a channel that is ready.
    ErrorCode switchOutput(int channel, bool on);

    /// Off: all six. On: those that are live in the present source mode, or none when one of them is not ready.
    ErrorCode switchAllOutputs(bool on);

    /// What the channel's meters show. In a combined mode the meters of outputs 1 and 2 show their part of it.
    Measurement measure(int channel) const;

    unsigned int questionableCondition(int channel) const;
    /// Reads and clears the event register.
    unsigned int takeQuestionableEvent(int channel);
    void clearQuestionableEvents();

    /// Ohms between the channel's terminals; nothing: open. 0 is a short circuit.
    void setLoad(int channel, std::optional<double> ohms);

private:
    struct Channel
    {
        ChannelSettings settings;
        std::optional<double> loadOhms;
        bool overVoltageTrip = false;
        bool overCurrentTrip = false;
        /// Since when the load has demanded more than the over-current level.
        std::optional<Duration> overCurrentSince;
        unsigned int lastCondition = 0;
        unsigned int event = 0;
    };

    const Channel& at(int channel) const { return channels_[static_cast<std::size_t>(channel - 1)]; }
    Channel& at(int channel) { return channels_[static_cast<std::size_t>(channel - 1)]; }

    /// Whether the channel exists in the present source mode.
    bool live(int channel) const;
    /// Live and not settling.
    bool ready(int channel) const;

    static void restoreDefaults(Channel& channel, int number);
    static double demandOf(const Channel& channel);
    static Measurement regulate(const Channel& channel);
    static unsigned int conditionOf(const Channel& channel);
    void protect(Channel& channel) const;

    const InstrumentClock& clock_;
    Duration settleTime_;
    std::array<Channel, kChannelCount> channels_;
    SourceMode sourceMode_ = SourceMode::Normal;
    Duration settledAt_;
    bool bleEnabled_ = false;
    int selectedChannel_ = 1;
};

} // namespace kvxvirtual
