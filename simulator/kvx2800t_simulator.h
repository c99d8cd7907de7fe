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

    ViInt32 ioTimeout() override { return 0; }
    ViStatus setIoTimeout(ViInt32) override { return VI_SUCCESS; }
    ViStatus open(const std::string& resource, const std::string& options) override;
    ViStatus close() override;
    bool isOpen() override { return connected_; }
    ViStatus writeRaw(const std::string&) override { return VI_SUCCESS; }
    ViStatus queryRaw(const std::string&, std::string&) override { return VI_SUCCESS; }

    ViStatus clearStatus() override { return VI_SUCCESS; }
    ViStatus reset() override { return VI_SUCCESS; }
    ViStatus eventStatus(ViInt32& value) override { return answer(value, 0); }
    ViStatus questionableCondition(ViInt32, ViInt32& value) override { return answer(value, 0); }
    ViStatus questionableEvent(ViInt32, ViInt32& value) override { return answer(value, 0); }
    ViStatus nextError(ViInt32& code, std::string& message) override;

    ViStatus selectChannel(ViInt32) override { return VI_SUCCESS; }
    ViStatus selectedChannel(ViInt32& channel) override { return answer(channel, values_.integer(1, 6)); }
    ViStatus setSourceMode(SourceMode) override { return VI_SUCCESS; }
    ViStatus sourceMode(SourceMode& mode) override { return answerAny(mode); }
    ViStatus setBleEnabled(bool) override { return VI_SUCCESS; }
    ViStatus bleEnabled(bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setVoltageLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus voltageLevel(ViInt32 channel, double& volts) override { return answer(volts, voltage(channel)); }
    ViStatus setVoltageProtectionLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus voltageProtectionLevel(ViInt32 channel, double& volts) override { return answer(volts, voltage(channel)); }
    ViStatus setVoltageProtectionEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus voltageProtectionEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setRemoteSenseEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus remoteSenseEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setCurrentLevel(ViInt32, double) override { return VI_SUCCESS; }

    /// Drawn from the channel's voltage limits, as the current protection level is.
    ViStatus currentLevel(ViInt32 channel, double& amperes) override { return answer(amperes, voltage(channel)); }
    ViStatus setCurrentProtectionLevel(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus currentProtectionLevel(ViInt32 channel, double& level) override { return answer(level, voltage(channel)); }
    ViStatus setCurrentProtectionEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus currentProtectionEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setCurrentProtectionDelay(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus currentProtectionDelay(ViInt32, double& delay) override { return answer(delay, values_.uniformReal()); }
    ViStatus setCurrentProtectionDelayMode(ViInt32, ProtectionDelayMode) override { return VI_SUCCESS; }
    ViStatus currentProtectionDelayMode(ViInt32, ProtectionDelayMode& mode) override { return answerAny(mode); }

    ViStatus setOutputEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus outputEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus regulationState(ViInt32, RegulationState& state) override { return answerAny(state); }
    ViStatus setOvpValue(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ovpValue(ViInt32 channel, double& volts) override { return answer(volts, voltage(channel)); }
    ViStatus setOvpEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus ovpEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setOcpValue(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ocpValue(ViInt32 channel, double& amperes) override { return answer(amperes, current(channel)); }
    ViStatus setOcpEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus ocpEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setOcpDelay(ViInt32, double) override { return VI_SUCCESS; }
    ViStatus ocpDelay(ViInt32, double& seconds) override { return answer(seconds, values_.uniformReal()); }
    ViStatus setOcpDelayMode(ViInt32, ProtectionDelayMode) override { return VI_SUCCESS; }
    ViStatus ocpDelayMode(ViInt32, ProtectionDelayMode& mode) override { return answerAny(mode); }
    ViStatus setPowerOnState(ViInt32, PowerOnState) override { return VI_SUCCESS; }
    ViStatus powerOnState(ViInt32, PowerOnState& state) override { return answerAny(state); }
    ViStatus setPairing(ViInt32, Pairing) override { return VI_SUCCESS; }
    ViStatus pairing(ViInt32, Pairing& pairing) override { return answerAny(pairing); }
    ViStatus setOutputSenseEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus outputSenseEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setTrackingEnabled(ViInt32, bool) override { return VI_SUCCESS; }
    ViStatus trackingEnabled(ViInt32, bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus setOutputOffMode(ViInt32, OutputOffMode) override { return VI_SUCCESS; }
    ViStatus outputOffMode(ViInt32, OutputOffMode& mode) override { return answerAny(mode); }

    ViStatus measureAll(ViInt32 channel, double& volts, double& amperes, double& watts) override;
    ViStatus measureVoltage(ViInt32 channel, double& volts) override { return answer(volts, voltage(channel)); }
    ViStatus measureCurrent(ViInt32 channel, double& amperes) override { return answer(amperes, current(channel)); }
    ViStatus measurePower(ViInt32 channel, double& watts) override { return answer(watts, power(channel)); }
    ViStatus setCurrentRange(ViInt32, CurrentRange) override { return VI_SUCCESS; }
    ViStatus currentRange(ViInt32, CurrentRange& range) override { return answerAny(range); }
    ViStatus setCurrentRate(ViInt32, CurrentRate) override { return VI_SUCCESS; }
    ViStatus currentRate(ViInt32, CurrentRate& rate) override { return answerAny(rate); }

    ViStatus setListEnabled(bool) override { return VI_SUCCESS; }
    ViStatus listEnabled(bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                        ViInt32& remainingCycles) override;
    ViStatus setListCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus listCycles(ViInt32& cycles) override { return answer(cycles, values_.cycles()); }
    ViStatus setListEndState(ListEndState) override { return VI_SUCCESS; }
    ViStatus listEndState(ListEndState& state) override { return answerAny(state); }
    ViStatus listGroupCount(ViInt32& count) override { return answer(count, values_.groups()); }
    ViStatus insertListGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus deleteListGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus clearListGroups() override { return VI_SUCCESS; }
    ViStatus setListGroup(ViInt32, double, double, double) override { return VI_SUCCESS; }

    /// Drawn from the limits of channel 1, whatever the group.
    ViStatus listGroup(ViInt32 group, double& volts, double& amperes, double& seconds) override;
    ViStatus setListTemplateWaveform(ListWaveform) override { return VI_SUCCESS; }
    ViStatus listTemplateWaveform(ListWaveform& waveform) override { return answerAny(waveform); }
    ViStatus setListTemplateObject(ListTemplateObject, double) override { return VI_SUCCESS; }
    ViStatus listTemplateObject(ListTemplateObject& object, double& level) override;
    ViStatus setListTemplateMaximum(double) override { return VI_SUCCESS; }

    /// 0, and the minimum 1: the wrong way round.
    ViStatus listTemplateMaximum(double& level) override { return answer(level, 0.0); }
    ViStatus setListTemplateMinimum(double) override { return VI_SUCCESS; }
    ViStatus listTemplateMinimum(double& level) override { return answer(level, 1.0); }
    ViStatus setListTemplatePeriod(double) override { return VI_SUCCESS; }

    /// Leaves the period as it was.
    ViStatus listTemplatePeriod(double&) override { return VI_SUCCESS; }

    ViStatus setListTemplateInterval(double) override { return VI_SUCCESS; }
    ViStatus listTemplateInterval(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus setListTemplateCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateCycles(ViInt32& cycles) override { return answer(cycles, values_.cycles()); }
    ViStatus setListTemplateInverted(bool) override { return VI_SUCCESS; }
    ViStatus listTemplateInverted(bool& inverted) override { return answer(inverted, values_.boolean()); }
    ViStatus setListTemplatePulseWidth(double) override { return VI_SUCCESS; }
    ViStatus listTemplatePulseWidth(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus setListTemplatePulseCount(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplatePulseCount(ViInt32& count) override { return answer(count, values_.integer(1, 256)); }
    ViStatus setListTemplateSymmetry(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateSymmetry(ViInt32& percent) override { return answer(percent, values_.integer(0, 100)); }
    ViStatus setListTemplateStart(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateStart(ViInt32& start) override { return answer(start, values_.integer(1, 512)); }
    ViStatus setListTemplateExpp(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateExpp(ViInt32& exponent) override { return answer(exponent, values_.integer(1, 512)); }
    ViStatus setListTemplateExpr(ViInt32) override { return VI_SUCCESS; }
    ViStatus listTemplateExpr(ViInt32& exponent) override { return answer(exponent, values_.integer(0, 10)); }
    ViStatus listTemplatePoints(ViInt32& points) override { return answer(points, values_.groups()); }
    ViStatus constructList(ViInt32) override { return VI_SUCCESS; }

    ViStatus setDelayEnabled(bool) override { return VI_SUCCESS; }
    ViStatus delayEnabled(bool& enabled) override { return answer(enabled, values_.boolean()); }
    ViStatus delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                         ViInt32& remainingCycles) override;
    ViStatus setDelayCycles(ViInt32) override { return VI_SUCCESS; }
    ViStatus delayCycles(ViInt32& cycles) override { return answer(cycles, values_.cycles()); }
    ViStatus setDelayEndState(DelayEndState) override { return VI_SUCCESS; }
    ViStatus delayEndState(DelayEndState& state) override { return answerAny(state); }
    ViStatus delayGroupCount(ViInt32& count) override { return answer(count, values_.integer(0, 512)); }
    ViStatus insertDelayGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus deleteDelayGroup(ViInt32) override { return VI_SUCCESS; }
    ViStatus clearDelayGroups() override { return VI_SUCCESS; }
    ViStatus setDelayGroup(ViInt32, bool, double) override { return VI_SUCCESS; }
    ViStatus delayGroup(ViInt32 group, bool& on, double& seconds) override;
    ViStatus setDelayGenerateMode(DelayGenerateMode) override { return VI_SUCCESS; }
    ViStatus delayGenerateMode(DelayGenerateMode& mode) override { return answerAny(mode); }
    ViStatus setDelayGeneratePattern(DelayPattern) override { return VI_SUCCESS; }
    ViStatus delayGeneratePattern(DelayPattern& pattern) override { return answerAny(pattern); }
    ViStatus setDelayGeneratePoints(ViInt32) override { return VI_SUCCESS; }
    ViStatus delayGeneratePoints(ViInt32& points) override { return answer(points, values_.integer(1, 512)); }
    ViStatus setDelayOnTime(double) override { return VI_SUCCESS; }
    ViStatus delayOnTime(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus setDelayOffTime(double) override { return VI_SUCCESS; }
    ViStatus delayOffTime(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus setDelayBaseTime(double) override { return VI_SUCCESS; }
    ViStatus delayBaseTime(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus setDelayTimeStep(double) override { return VI_SUCCESS; }
    ViStatus delayTimeStep(double& seconds) override { return answer(seconds, values_.seconds()); }
    ViStatus constructDelay(ViInt32) override { return VI_SUCCESS; }

    ViStatus setTriggerInputEnabled(ViInt32, bool) override { return VI_SUCCESS; }

    /// Leaves the state as it was.
    ViStatus triggerInputEnabled(ViInt32, bool&) override { return VI_SUCCESS; }

    /// How many 32-bit draws its answers have used.
    std::uint64_t drawCount() const { return values_.drawCount(); }

private:
    // An answer is drawn before its output changes: a channel without limits leaves the output as it was.
    template <class Output, class Value>
    static ViStatus answer(Output& output, const Value& value)
    {
        output = value;
        return VI_SUCCESS;
    }

    template <class Enumeration>
    ViStatus answerAny(Enumeration& setting)
    {
        return answer(setting, values_.oneOf<Enumeration>());
    }

    /// What a run has left: the state, the group's time, the group, the cycles.
    template <class RunState>
    ViStatus answerRun(RunState& state, double& seconds, ViInt32& group, ViInt32& cycles);

    double voltage(ViInt32 channel) { return values_.voltage(channelLimits(channel)); }
    double current(ViInt32 channel) { return values_.current(channelLimits(channel)); }
    double power(ViInt32 channel) { return values_.power(channelLimits(channel)); }

    bool connected_ = false;
    SimulatedValues values_;
};

} // namespace TSRO
