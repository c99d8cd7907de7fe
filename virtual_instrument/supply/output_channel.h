#pragma once

#include "virtual_instrument/common/channel_limits.h"
#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/programs/delay_program.h"
#include "virtual_instrument/programs/list_program.h"

#include <optional>

namespace kvxvirtual
{

enum class PowerOnState
{
    Reset,
    Last,
    LastOff
};

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
    /// A list waits for a trigger before it runs.
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
inline constexpr unsigned int kConstantCurrent = 1;
inline constexpr unsigned int kConstantVoltage = 2;
inline constexpr unsigned int kOverVoltageTrip = 4;
inline constexpr unsigned int kOverCurrentTrip = 8;
} // namespace questionable

/// One channel of the power supply: its settings, its load, regulation, protection and programs.
///
/// What changes by itself (a protection that trips, a program that goes on) changes in advance(), which sees every
/// moment at which something is due, however far apart two calls are. Everything else happens at the time that was
/// last advanced to.
class OutputChannel
{
public:
    using Duration = InstrumentClock::Duration;

    /// As after reset() and with nothing connected. `limits` must outlive the channel.
    explicit OutputChannel(const ChannelLimits& limits);

    /// Lets everything happen that is due after `from`, up to and at `to`.
    void advance(Duration from, Duration to);

    /// *RST: everything but the load and the power-on state.
    void reset();

    /// Off and on again, as the power-on state says. The output stays off when it is not `live`.
    void powerCycle(bool live);

    const ChannelSettings& settings() const { return settings_; }
    ChannelSettings& settings() { return settings_; }

    /// Clears the trips.
    void switchOn();
    /// Stops the delay program. The list pauses.
    void switchOff();

    /// Ohms between the terminals; nothing: open. 0 is a short circuit.
    void setLoad(std::optional<double> ohms) { loadOhms_ = ohms; }

    Measurement measure() const;
    unsigned int questionableCondition() const;
    /// Reads and clears the event register.
    unsigned int takeQuestionableEvent();
    void clearQuestionableEvent() { event_ = 0; }
    bool hasQuestionableEvent() const { return event_ != 0; }

    bool programActive() const { return list_.run().active() || delay_.run().active(); }

    const ListProgram& list() const { return list_; }
    ListProgram& list() { return list_; }
    const DelayProgram& delay() const { return delay_; }
    DelayProgram& delay() { return delay_; }

    // To start a program that is active already, or to stop one that is not, does nothing. SettingsConflict when the
    // other one is active or there are no groups. Stopping a program that had begun brings its end state about.

    /// The list runs as soon as the output is on and, with the trigger input enabled, trigger() comes.
    ErrorCode startList();
    void stopList();
    ErrorCode startDelay(Duration now);
    void stopDelay();
    /// Ends both as they stand, without their end states.
    void abandonPrograms();

    void trigger(Duration now);

private:
    struct Levels
    {
        double volts;
        double amperes;
    };
    /// How a cycle of a program begins. One that begins as the last one did goes the same way.
    struct CycleStart
    {
        std::optional<Duration> overCurrentAge;
        unsigned int condition;

        bool operator==(const CycleStart&) const = default;
    };

    Levels levels() const;
    double demand() const;

    std::optional<Duration> nextEvent() const;
    void settle(Duration now);
    void followOutput(Duration now);
    void protect(Duration now);
    void trip(bool& latch);
    void latchEvents();

    ProgramRun& activeRun() { return list_.run().active() ? list_.run() : delay_.run(); }
    const ProgramRun& activeRun() const { return list_.run().active() ? list_.run() : delay_.run(); }
    /// Takes the step that is due now, if one is. Whether it has begun a cycle.
    bool step(Duration now);
    ProgramRun::Step stepList();
    ProgramRun::Step stepDelay();
    void skipCycles(Duration now);
    void endList();
    void endDelay();
    void setOutput(bool on);

    const ChannelLimits* limits_;
    ChannelSettings settings_;
    std::optional<double> loadOhms_;
    ListProgram list_;
    DelayProgram delay_;
    bool overVoltageTrip_ = false;
    bool overCurrentTrip_ = false;
    /// Since when the load has demanded more than the over-current level.
    std::optional<Duration> overCurrentSince_;
    unsigned int lastCondition_ = 0;
    unsigned int event_ = 0;
};

} // namespace kvxvirtual
