#pragma once

#include "instrument/command_port.h"
#include "instrument/inst_base.h"

namespace TSRO
{

/// The instrument at the other end of a VISA connection.
class KVX2800T : public InstBase
{
public:
    KVX2800T() = default;

    /// An instrument on a port that has its connection already; it has not been identified.
    explicit KVX2800T(CommandPort port) : port_(std::move(port)) {}

    ViInt32 ioTimeout() override;
    ViStatus setIoTimeout(ViInt32 milliseconds) override;

    /// kIoError when the connection cannot be opened, which leaves the previous one in place, and when the
    /// identification fails. An identification reply that has not exactly four fields leaves the identity as it was.
    ViStatus open(const std::string& resource, const std::string& options) override;

    /// The connection's own status when it refuses to close, VI_ERROR_INV_OBJECT when there is none.
    ViStatus close() override;
    bool isOpen() override;
    ViStatus writeRaw(const std::string& command) override;
    ViStatus queryRaw(const std::string& command, std::string& reply) override;

    ViStatus clearStatus() override;
    ViStatus reset() override;
    ViStatus eventStatus(ViInt32& value) override;
    ViStatus questionableCondition(ViInt32 channel, ViInt32& value) override;
    ViStatus questionableEvent(ViInt32 channel, ViInt32& value) override;
    ViStatus nextError(ViInt32& code, std::string& message) override;

    ViStatus setSourceMode(SourceMode mode) override;
    ViStatus sourceMode(SourceMode& mode) override;
    ViStatus setVoltageLevel(ViInt32 channel, double volts) override;
    ViStatus voltageLevel(ViInt32 channel, double& volts) override;
    ViStatus setCurrentLevel(ViInt32 channel, double amperes) override;
    ViStatus currentLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionLevel(ViInt32 channel, double amperes) override;
    ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionEnabled(ViInt32 channel, bool enabled) override;
    ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) override;

    ViStatus setOutputEnabled(ViInt32 channel, bool enabled) override;
    ViStatus outputEnabled(ViInt32 channel, bool& enabled) override;

private:
    ViStatus identify();

    CommandPort port_;
};

} // namespace TSRO
