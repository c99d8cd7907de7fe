#pragma once

#include "base/option_grammar.h"
#include "base/status_codes.h"
#include "instrument/channel_limits.h"
#include "instrument/connection_setup.h"
#include "instrument/enumerations.h"
#include "instrument/identity.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace TSRO
{

/// The command that switches all outputs off at once, for writeRaw(): no operation of a channel spells "ALL".
inline constexpr const char* kAllOutputsOff = ":OUTPut:STATe ALL,OFF";

/// What an instrument takes from a session's option string.
struct InstrumentOptions : base::InherentOptions
{
    /// The model that DriverSetup names; "" when it names none. The instrument's own is in its identity.
    std::string model = {};
};

/// A KVX2800T power supply, real or simulated: one operation for each SCPI command.
///
/// Channels are numbered 1 to 4 for the outputs, 5 for the series and 6 for the parallel combination of outputs 1
/// and 2. Volts, amperes, seconds.
///
/// Operations return a VISA status: 0, or a negative code; close() and those for whole messages return warnings, too. A
/// setting outside its keyword table, a channel without a name or limits and a reply that cannot be read leave as
/// standard exceptions. After a failure of either kind the outputs are as they were, except that a reply of several
/// fields has stored those before the first that is missing or cannot be read. The class records nothing and takes no
/// lock; its caller serialises the calls.
class InstBase
{
public:
    InstBase() = default;
    InstBase(const InstBase&) = delete;
    InstBase& operator=(const InstBase&) = delete;
    virtual ~InstBase() = default;

    // Connection

    /// The connection's time-out in milliseconds, or the one stored for the next connection.
    virtual ViInt32 ioTimeout() = 0;

    /// Stores the time-out, and applies it at once when a connection is open.
    virtual ViStatus setIoTimeout(ViInt32 milliseconds) = 0;

    /// Connects to a VISA resource and reads the identity. `options` is the session's option string.
    virtual ViStatus open(const std::string& resource, const std::string& options) = 0;

    virtual ViStatus close() = 0;

    virtual bool isOpen() = 0;

    /// Sends a command as given. Always 0, whatever the connection says.
    virtual ViStatus writeRaw(const std::string& command) = 0;

    /// Sends a command as given and reads one reply. Always 0; `reply` changes only when bytes arrived.
    virtual ViStatus queryRaw(const std::string& command, std::string& reply) = 0;

    // Identification and status

    /// The identity as it was read last. Every holder of the record sees a later refresh.
    virtual std::shared_ptr<const Identity> identity() { return identity_; }

    /// "*CLS"
    virtual ViStatus clearStatus() = 0;

    /// "*RST"
    virtual ViStatus reset() = 0;

    /// "*ESR?": the standard event status register of IEEE 488.2, which reading clears.
    virtual ViStatus eventStatus(ViInt32& value) = 0;

    virtual const ChannelLimits& channelLimits(ViInt32 channel) { return channelLimitsOf(channel); }

    virtual ViStatus questionableCondition(ViInt32 channel, ViInt32& value) = 0;
    virtual ViStatus questionableEvent(ViInt32 channel, ViInt32& value) = 0;

    /// One entry of the error queue; the message keeps its quotes. A reply that has not exactly two fields leaves both
    /// outputs as they were, with status 0.
    virtual ViStatus nextError(ViInt32& code, std::string& message) = 0;

    // Source. The OVP and OCP settings here and those of the output are two spellings of the instrument's own.

    /// The channel that the list and delay operations act on.
    virtual ViStatus selectChannel(ViInt32 channel) = 0;
    virtual ViStatus selectedChannel(ViInt32& channel) = 0;

    virtual ViStatus setSourceMode(SourceMode mode) = 0;
    virtual ViStatus sourceMode(SourceMode& mode) = 0;

    /// The bleeder, which discharges the outputs.
    virtual ViStatus setBleEnabled(bool enabled) = 0;
    virtual ViStatus bleEnabled(bool& enabled) = 0;

    /// A level outside the channel's limits, or none at all (NaN), is refused with base::kErrorValueOutOfRange; nothing
    /// is sent.
    virtual ViStatus setVoltageLevel(ViInt32 channel, double volts) = 0;
    virtual ViStatus voltageLevel(ViInt32 channel, double& volts) = 0;

    virtual ViStatus setVoltageProtectionLevel(ViInt32 channel, double volts) = 0;
    virtual ViStatus voltageProtectionLevel(ViInt32 channel, double& volts) = 0;
    virtual ViStatus setVoltageProtectionEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus voltageProtectionEnabled(ViInt32 channel, bool& enabled) = 0;
    virtual ViStatus setRemoteSenseEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus remoteSenseEnabled(ViInt32 channel, bool& enabled) = 0;

    /// Checked as setVoltageLevel().
    virtual ViStatus setCurrentLevel(ViInt32 channel, double amperes) = 0;
    virtual ViStatus currentLevel(ViInt32 channel, double& amperes) = 0;

    virtual ViStatus setCurrentProtectionLevel(ViInt32 channel, double amperes) = 0;
    virtual ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) = 0;
    virtual ViStatus setCurrentProtectionEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) = 0;

    /// How long an over-current lasts before the output trips.
    virtual ViStatus setCurrentProtectionDelay(ViInt32 channel, double seconds) = 0;
    virtual ViStatus currentProtectionDelay(ViInt32 channel, double& seconds) = 0;
    virtual ViStatus setCurrentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode mode) = 0;
    virtual ViStatus currentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode& mode) = 0;

    // Output

    virtual ViStatus setOutputEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus outputEnabled(ViInt32 channel, bool& enabled) = 0;

    virtual ViStatus regulationState(ViInt32 channel, RegulationState& state) = 0;

    virtual ViStatus setOvpValue(ViInt32 channel, double volts) = 0;
    virtual ViStatus ovpValue(ViInt32 channel, double& volts) = 0;
    virtual ViStatus setOvpEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus ovpEnabled(ViInt32 channel, bool& enabled) = 0;

    virtual ViStatus setOcpValue(ViInt32 channel, double amperes) = 0;
    virtual ViStatus ocpValue(ViInt32 channel, double& amperes) = 0;
    virtual ViStatus setOcpEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus ocpEnabled(ViInt32 channel, bool& enabled) = 0;
    virtual ViStatus setOcpDelay(ViInt32 channel, double seconds) = 0;
    virtual ViStatus ocpDelay(ViInt32 channel, double& seconds) = 0;
    virtual ViStatus setOcpDelayMode(ViInt32 channel, ProtectionDelayMode mode) = 0;
    virtual ViStatus ocpDelayMode(ViInt32 channel, ProtectionDelayMode& mode) = 0;

    virtual ViStatus setPowerOnState(ViInt32 channel, PowerOnState state) = 0;
    virtual ViStatus powerOnState(ViInt32 channel, PowerOnState& state) = 0;
    virtual ViStatus setPairing(ViInt32 channel, Pairing pairing) = 0;
    virtual ViStatus pairing(ViInt32 channel, Pairing& pairing) = 0;
    virtual ViStatus setOutputSenseEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus outputSenseEnabled(ViInt32 channel, bool& enabled) = 0;
    virtual ViStatus setTrackingEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus trackingEnabled(ViInt32 channel, bool& enabled) = 0;

    /// What the bleeder does while the output is off.
    virtual ViStatus setOutputOffMode(ViInt32 channel, OutputOffMode mode) = 0;
    virtual ViStatus outputOffMode(ViInt32 channel, OutputOffMode& mode) = 0;

    // Measurement

    virtual ViStatus measureAll(ViInt32 channel, double& volts, double& amperes, double& watts) = 0;
    virtual ViStatus measureVoltage(ViInt32 channel, double& volts) = 0;
    virtual ViStatus measureCurrent(ViInt32 channel, double& amperes) = 0;
    virtual ViStatus measurePower(ViInt32 channel, double& watts) = 0;
    virtual ViStatus setCurrentRange(ViInt32 channel, CurrentRange range) = 0;
    virtual ViStatus currentRange(ViInt32 channel, CurrentRange& range) = 0;
    virtual ViStatus setCurrentRate(ViInt32 channel, CurrentRate rate) = 0;
    virtual ViStatus currentRate(ViInt32 channel, CurrentRate& rate) = 0;

    // List mode of the selected channel: a sequence of groups, each a voltage and a current for a time. Groups are
    // entered one by one, or constructed from a template.

    virtual ViStatus setListEnabled(bool enabled) = 0;
    virtual ViStatus listEnabled(bool& enabled) = 0;

    /// How far a run has come: what is left of the group's time, the group, and the cycles left.
    virtual ViStatus listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                                ViInt32& remainingCycles) = 0;

    virtual ViStatus setListCycles(ViInt32 cycles) = 0;
    virtual ViStatus listCycles(ViInt32& cycles) = 0;

    /// What the output does once the last cycle has run.
    virtual ViStatus setListEndState(ListEndState state) = 0;
    virtual ViStatus listEndState(ListEndState& state) = 0;

    virtual ViStatus listGroupCount(ViInt32& count) = 0;
    virtual ViStatus insertListGroup(ViInt32 group) = 0;
    virtual ViStatus deleteListGroup(ViInt32 group) = 0;
    virtual ViStatus clearListGroups() = 0;
    virtual ViStatus setListGroup(ViInt32 group, double volts, double amperes, double seconds) = 0;
    virtual ViStatus listGroup(ViInt32 group, double& volts, double& amperes, double& seconds) = 0;

    virtual ViStatus setListTemplateWaveform(ListWaveform waveform) = 0;
    virtual ViStatus listTemplateWaveform(ListWaveform& waveform) = 0;

    /// The quantity that the waveform shapes, and the level of the other one: volts or amperes.
    virtual ViStatus setListTemplateObject(ListTemplateObject object, double level) = 0;
    virtual ViStatus listTemplateObject(ListTemplateObject& object, double& level) = 0;

    /// The ends of the waveform, in the unit of its quantity.
    virtual ViStatus setListTemplateMaximum(double level) = 0;
    virtual ViStatus listTemplateMaximum(double& level) = 0;
    virtual ViStatus setListTemplateMinimum(double level) = 0;
    virtual ViStatus listTemplateMinimum(double& level) = 0;

    virtual ViStatus setListTemplatePeriod(double seconds) = 0;
    virtual ViStatus listTemplatePeriod(double& seconds) = 0;
    virtual ViStatus setListTemplateInterval(double seconds) = 0;
    virtual ViStatus listTemplateInterval(double& seconds) = 0;
    virtual ViStatus setListTemplateCycles(ViInt32 cycles) = 0;
    virtual ViStatus listTemplateCycles(ViInt32& cycles) = 0;
    virtual ViStatus setListTemplateInverted(bool inverted) = 0;
    virtual ViStatus listTemplateInverted(bool& inverted) = 0;
    virtual ViStatus setListTemplatePulseWidth(double seconds) = 0;
    virtual ViStatus listTemplatePulseWidth(double& seconds) = 0;
    virtual ViStatus setListTemplatePulseCount(ViInt32 count) = 0;
    virtual ViStatus listTemplatePulseCount(ViInt32& count) = 0;

    /// Percent.
    virtual ViStatus setListTemplateSymmetry(ViInt32 percent) = 0;
    virtual ViStatus listTemplateSymmetry(ViInt32& percent) = 0;

    virtual ViStatus setListTemplateStart(ViInt32 start) = 0;
    virtual ViStatus listTemplateStart(ViInt32& start) = 0;

    /// The two exponents of the instrument's exponential waveforms, "EXPP" and "EXPR".
    virtual ViStatus setListTemplateExpp(ViInt32 exponent) = 0;
    virtual ViStatus listTemplateExpp(ViInt32& exponent) = 0;
    virtual ViStatus setListTemplateExpr(ViInt32 exponent) = 0;
    virtual ViStatus listTemplateExpr(ViInt32& exponent) = 0;

    /// How many groups the template makes.
    virtual ViStatus listTemplatePoints(ViInt32& points) = 0;
    virtual ViStatus constructList(ViInt32 argument) = 0;

    // Delay mode of the selected channel: a sequence of groups, each the output on or off for a time. Groups are
    // entered one by one, or constructed from a pattern.

    virtual ViStatus setDelayEnabled(bool enabled) = 0;
    virtual ViStatus delayEnabled(bool& enabled) = 0;

    /// As listStatus().
    virtual ViStatus delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                                 ViInt32& remainingCycles) = 0;

    virtual ViStatus setDelayCycles(ViInt32 cycles) = 0;
    virtual ViStatus delayCycles(ViInt32& cycles) = 0;
    virtual ViStatus setDelayEndState(DelayEndState state) = 0;
    virtual ViStatus delayEndState(DelayEndState& state) = 0;
    virtual ViStatus delayGroupCount(ViInt32& count) = 0;
    virtual ViStatus insertDelayGroup(ViInt32 group) = 0;
    virtual ViStatus deleteDelayGroup(ViInt32 group) = 0;
    virtual ViStatus clearDelayGroups() = 0;
    virtual ViStatus setDelayGroup(ViInt32 group, bool on, double seconds) = 0;
    virtual ViStatus delayGroup(ViInt32 group, bool& on, double& seconds) = 0;

    virtual ViStatus setDelayGenerateMode(DelayGenerateMode mode) = 0;
    virtual ViStatus delayGenerateMode(DelayGenerateMode& mode) = 0;
    virtual ViStatus setDelayGeneratePattern(DelayPattern pattern) = 0;
    virtual ViStatus delayGeneratePattern(DelayPattern& pattern) = 0;
    virtual ViStatus setDelayGeneratePoints(ViInt32 points) = 0;
    virtual ViStatus delayGeneratePoints(ViInt32& points) = 0;

    /// The times of fixed patterns.
    virtual ViStatus setDelayOnTime(double seconds) = 0;
    virtual ViStatus delayOnTime(double& seconds) = 0;
    virtual ViStatus setDelayOffTime(double seconds) = 0;
    virtual ViStatus delayOffTime(double& seconds) = 0;

    /// The times of patterns that grow or shrink.
    virtual ViStatus setDelayBaseTime(double seconds) = 0;
    virtual ViStatus delayBaseTime(double& seconds) = 0;
    virtual ViStatus setDelayTimeStep(double seconds) = 0;
    virtual ViStatus delayTimeStep(double& seconds) = 0;

    virtual ViStatus constructDelay(ViInt32 argument) = 0;

    // Trigger input

    virtual ViStatus setTriggerInputEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus triggerInputEnabled(ViInt32 channel, bool& enabled) = 0;

    // For messages that no operation has, and for who asks what went wrong. The simulator has none of these.

    /// The reply that the last query has read, "" when nothing came. A view of what the next query replaces.
    virtual std::string_view lastReply() const { return {}; }

    /// Sends a message, ended by the termination character unless it ends with it already. Reports the connection's own
    /// status.
    virtual ViStatus writeMessage(std::string_view /*message*/) { return base::kErrorOperationNotSupported; }

    /// Reads one whole message as it came, termination character included. Of one that is longer than the buffer the
    /// rest is read and dropped, and base::kWarnArrayTruncated returned; otherwise the connection's own status.
    /// `count` tells the bytes in the buffer, also after a failure.
    virtual ViStatus readMessage(std::span<ViByte> /*buffer*/, std::size_t& count)
    {
        count = 0;
        return base::kErrorOperationNotSupported;
    }

    /// For connections that open() makes from now on.
    virtual void configureConnection(const ConnectionSetup& /*setup*/) {}

    /// What the connection said of the last transfer or opening: a completion code, a failure of VISA, or
    /// base::kErrorIo when another instrument answers than before.
    virtual ViStatus connectionStatus() const { return VI_SUCCESS; }

    /// The instrument's own copy of the options, as open() found them in the option string.
    const InstrumentOptions& options() const { return options_; }

protected:
    explicit InstBase(Identity identity) : identity_(std::make_shared<Identity>(std::move(identity))) {}

    Identity& mutableIdentity() { return *identity_; }
    void setOptions(InstrumentOptions options) { options_ = std::move(options); }

private:
    InstrumentOptions options_{base::kDefaultOptions};
    std::shared_ptr<Identity> identity_ = std::make_shared<Identity>();
};

} // namespace TSRO
