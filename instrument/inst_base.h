#pragma once

#include "instrument/channel_limits.h"
#include "instrument/enumerations.h"
#include "instrument/identity.h"
#include "instrument/option_grammar.h"

#include <memory>
#include <string>
#include <utility>

namespace TSRO
{

/// A KVX2800T power supply, real or simulated: one operation for each SCPI command.
///
/// Channels are numbered 1 to 4 for the outputs, 5 for the series and 6 for the parallel combination of outputs 1
/// and 2. Volts, amperes, seconds.
///
/// Operations return a VISA status: 0, or a negative code after which the outputs are as they were. A setting outside
/// its keyword table, a channel without limits and a reply that cannot be read leave as standard exceptions. The class
/// records nothing and takes no lock; its caller serialises the calls.
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

    // Source

    virtual ViStatus setSourceMode(SourceMode mode) = 0;
    virtual ViStatus sourceMode(SourceMode& mode) = 0;

    /// A level outside the channel's limits, or none at all (NaN), is refused with kValueOutOfRange; nothing is sent.
    virtual ViStatus setVoltageLevel(ViInt32 channel, double volts) = 0;
    virtual ViStatus voltageLevel(ViInt32 channel, double& volts) = 0;

    /// Checked as setVoltageLevel().
    virtual ViStatus setCurrentLevel(ViInt32 channel, double amperes) = 0;
    virtual ViStatus currentLevel(ViInt32 channel, double& amperes) = 0;

    virtual ViStatus setCurrentProtectionLevel(ViInt32 channel, double amperes) = 0;
    virtual ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) = 0;
    virtual ViStatus setCurrentProtectionEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) = 0;

    // Output

    virtual ViStatus setOutputEnabled(ViInt32 channel, bool enabled) = 0;
    virtual ViStatus outputEnabled(ViInt32 channel, bool& enabled) = 0;

    /// The instrument's own copy of the inherent options, as open() found them in the option string.
    const InherentOptions& options() const { return options_; }

protected:
    explicit InstBase(Identity identity) : identity_(std::make_shared<Identity>(std::move(identity))) {}

    Identity& mutableIdentity() { return *identity_; }
    void setOptions(const InherentOptions& options) { options_ = options; }

private:
    InherentOptions options_ = kDefaultOptions;
    std::shared_ptr<Identity> identity_ = std::make_shared<Identity>();
};

} // namespace TSRO
