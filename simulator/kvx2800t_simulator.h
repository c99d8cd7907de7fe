#pragma once

#include "instrument/inst_base.h"
#include "simulator/simulated_values.h"

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

    ViStatus selectChannel(ViInt32) override { return VI_SUCCESS; }
    ViStatus selectedChannel(ViInt32& channel) override;
    ViStatus setSourceMode(SourceMode) override { return VI_SUCCESS; }
    ViStatus sourceMode(SourceMode& mode) override;
    ViStatus setBleEnabled(bool) override { return VI_SUCCESS; }
    ViStatus bleEnabled(bool& enabled) override;
    ViStatus setVoltageLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus voltageLevel(ViInt32 channel, double& volts) override;
    ViStatus setVoltageProtectionLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus voltageProtectionLevel(ViInt32 channel, double& volts) override;
    ViStatus setVoltageProtectionEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus voltageProtectionEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setRemoteSenseEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus remoteSenseEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setCurrentLevel(ViInt32, double) override { return VI_SUCCESS; }

    /// Drawn from the channel's voltage limits, as the current protection level is.
    ViStatus currentLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setCurrentProtectionDelay(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus currentProtectionDelay(ViInt32 channel, double& seconds) override;
    ViStatus setCurrentProtectionDelayMode(ViInt32, ProtectionDelayMode) override { return VI_SUCCESS; }
    ViStatus currentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode& mode) override;

    ViStatus setOutputEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus outputEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus regulationState(ViInt32 channel, RegulationState& state) override;
    ViStatus setOvpValue(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ovpValue(ViInt32 channel, double& volts) override;
    ViStatus setOvpEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus ovpEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOcpValue(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ocpValue(ViInt32 channel, double& amperes) override;
    ViStatus setOcpEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus ocpEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOcpDelay(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ocpDelay(ViInt32 channel, double& seconds) override;
    ViStatus setOcpDelayMode(ViInt32, ProtectionDelayMode) override { return VI_SUCCESS; }
    ViStatus ocpDelayMode(ViInt32 channel, ProtectionDelayMode& mode) override;
    ViStatus setPowerOnState(ViInt32, PowerOnState) override { return VI_SUCCESS; }
    ViStatus powerOnState(ViInt32 channel, PowerOnState& state) override;
    ViStatus setPairing(ViInt32, Pairing) override { return VI_SUCCESS; }
    ViStatus pairing(ViInt32 channel, Pairing& pairing) override;
    ViStatus setOutputSenseEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus outputSenseEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setTrackingEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus trackingEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOutputOffMode(ViInt32, OutputOffMode) override { return VI_SUCCESS; }
    ViStatus outputOffMode(ViInt32 channel, OutputOffMode& mode) override;

    ViStatus measureAll(ViInt32 channel, double& volts, double& amperes, double& watts) override;
    ViStatus measureVoltage(ViInt32 channel, double& volts) override;
    ViStatus measureCurrent(ViInt32 channel, double& amperes) override;
    ViStatus measurePower(ViInt32 channel, double& watts) override;
    ViStatus setCurrentRange(ViInt32, CurrentRange) override { return VI_SUCCESS; }
    ViStatus currentRange(ViInt32 channel, CurrentRange& range) override;
    ViStatus setCurrentRate(ViInt32, CurrentRate) override { return VI_SUCCESS; }
    ViStatus currentRate(ViInt32 channel, CurrentRate& rate) override;

    ViStatus setListEnabled(bool) override { return VI_SUCCESS; }
    ViStatus listEnabled(bool& enabled) override;
    ViStatus listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                        ViInt32& remainingCycles) override;
    ViStatus setListCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus listCycles(ViInt32& cycles) override;
    ViStatus setListEndState(ListEndState) override { return VI_SUCCESS; }
    ViStatus listEndState(ListEndState& state) override;
    ViStatus listGroupCount(ViInt32& count) override;
    ViStatus insertListGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus deleteListGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus clearListGroups() override { return VI_SUCCESS; }
    ViStatus setListGroup(ViInt32, double, double, double) override { return VI_SUCCESS; }

    /// Drawn from the limits of channel 1, whatever the group.
    ViStatus listGroup(ViInt32 group, double& volts, double& amperes, double& seconds) override;
    ViStatus setListTemplateWaveform(ListWaveform) override { return VI_SUCCESS; }
    ViStatus listTemplateWaveform(ListWaveform& waveform) override;
    ViStatus setListTemplateObject(ListTemplateObject, double) override { return VI_SUCCESS; }
    ViStatus listTemplateObject(ListTemplateObject& object, double& level) override;
    ViStatus setListTemplateMaximum(double) override { return VI_SUCCESS; }

    /// 0, and the minimum 1: the wrong way round.
    ViStatus listTemplateMaximum(double& level) override;
    ViStatus setListTemplateMinimum(double) override { return VI_SUCCESS; }
    ViStatus listTemplateMinimum(double& level) override;
    ViStatus setListTemplatePeriod(double) override { return VI_SUCCESS; }

    /// Leaves the period as it was.
    ViStatus listTemplatePeriod(double&) override { return VI_SUCCESS; }

    ViStatus setListTemplateInterval(double) override { return VI_SUCCESS; }
    ViStatus listTemplateInterval(double& seconds) override;
    ViStatus setListTemplateCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateCycles(ViInt32& cycles) override;
    ViStatus setListTemplateInverted(bool) override { return VI_SUCCESS; }
    ViStatus listTemplateInverted(bool& inverted) override;
    ViStatus setListTemplatePulseWidth(double) override { return VI_SUCCESS; }
    ViStatus listTemplatePulseWidth(double& seconds) override;
    ViStatus setListTemplatePulseCount(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplatePulseCount(ViInt32& count) override;
    ViStatus setListTemplateSymmetry(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateSymmetry(ViInt32& percent) override;
    ViStatus setListTemplateStart(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateStart(ViInt32& start) override;
    ViStatus setListTemplateExpp(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateExpp(ViInt32& exponent) override;
    ViStatus setListTemplateExpr(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateExpr(ViInt32& exponent) override;
    ViStatus listTemplatePoints(ViInt32& points) override;
    ViStatus constructList(ViInt32) override { return VI_SUCCESS; }

    ViStatus setDelayEnabled(bool) override { return VI_SUCCESS; }
    ViStatus delayEnabled(bool& enabled) override;
    ViStatus delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                         ViInt32& remainingCycles) override;
    ViStatus setDelayCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus delayCycles(ViInt32& cycles) override;
    ViStatus setDelayEndState(DelayEndState) override { return VI_SUCCESS; }
    ViStatus delayEndState(DelayEndState& state) override;
    ViStatus delayGroupCount(ViInt32& count) override;
    ViStatus insertDelayGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus deleteDelayGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus clearDelayGroups() override { return VI_SUCCESS; }
    ViStatus setDelayGroup(ViInt32, bool, double) override { return VI_SUCCESS; }
    ViStatus delayGroup(ViInt32 group, bool& on, double& seconds) override;
    ViStatus setDelayGenerateMode(DelayGenerateMode) override { return VI_SUCCESS; }
    ViStatus delayGenerateMode(DelayGenerateMode& mode) override;
    ViStatus setDelayGeneratePattern(DelayPattern) override { return VI_SUCCESS; }
    ViStatus delayGeneratePattern(DelayPattern& pattern) override;
    ViStatus setDelayGeneratePoints(ViInt32) override { return VI_SUCCESS; }
    ViStatus delayGeneratePoints(ViInt32& points) override;
    ViStatus setDelayOnTime(double) override { return VI_SUCCESS; }
    ViStatus delayOnTime(double& seconds) override;
    ViStatus setDelayOffTime(double) override { return VI_SUCCESS; }
    ViStatus delayOffTime(double& seconds) override;
    ViStatus setDelayBaseTime(double) override { return VI_SUCCESS; }
    ViStatus delayBaseTime(double& seconds) override;
    ViStatus setDelayTimeStep(double) override { return VI_SUCCESS; }
    ViStatus delayTimeStep(double& seconds) override;
    ViStatus constructDelay(ViInt32) override { return VI_SUCCESS; }

    ViStatus setTriggerInputEnabled(ViInt32, bool) override { return VI_SUCCESS; }

    /// Leaves the state as it was.
    ViStatus triggerInputEnabled(ViInt32, bool&) override { return VI_SUCCESS; }

    /// How many 32-bit draws its answers have used.
    std::uint64_t drawCount() const { return values_.drawCount(); }

private:
    bool connected_ = false;
    SimulatedValues values_;
};

} // namespace TSRO
