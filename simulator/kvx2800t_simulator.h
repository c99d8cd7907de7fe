#pragma once

#include "instrument/inst_base.h"

namespace TSRO
{

/// An instrument without hardware. Settings are accepted and forgotten; queries answer with fixed values or random
/// draws within the limits of the channel. It never calls VISA, and every operation returns 0.
class KVX2800TSimulator : public InstBase
{
public:
    KVX2800TSimulator();

    ViInt32 ioTimeout() override;
    ViStatus setIoTimeout(ViInt32 milliseconds) override;
    ViStatus open(const std::string& resource, const std::string& options) override;
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

    /// Drawn from the channel's voltage limits, as the current protection level is.
    ViStatus currentLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionLevel(ViInt32 channel, double amperes) override;
    ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionEnabled(ViInt32 channel, bool enabled) override;
    ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) override;

    ViStatus setOutputEnabled(ViInt32 channel, bool enabled) override;
    ViStatus outputEnabled(ViInt32 channel, bool& enabled) override;

private:
    ViStatus drawVoltage(ViInt32 channel, double& value);

    bool connected_ = false;
};

} // namespace TSRO
