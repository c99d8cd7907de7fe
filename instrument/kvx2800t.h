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

    /// base::kErrorIo when the connection cannot be opened, which leaves the previous one in place, and when the
    /// identification fails. An identification reply that has not exactly four fields leaves the identity as it was.
    ViStatus open(const std::string& resource, const std::string& options) override;

    /// The connection's own status, a warning included; VI_ERROR_INV_OBJECT when there is none. A negative one keeps
    /// it.
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

    ViStatus selectChannel(ViInt32 channel) override;
    ViStatus selectedChannel(ViInt32& channel) override;
    ViStatus setSourceMode(SourceMode mode) override;
    ViStatus sourceMode(SourceMode& mode) override;
    ViStatus setBleEnabled(bool enabled) override;
    ViStatus bleEnabled(bool& enabled) override;
    ViStatus setVoltageLevel(ViInt32 channel, double volts) override;
    ViStatus voltageLevel(ViInt32 channel, double& volts) override;
    ViStatus setVoltageProtectionLevel(ViInt32 channel, double volts) override;
    ViStatus voltageProtectionLevel(ViInt32 channel, double& volts) override;
    ViStatus setVoltageProtectionEnabled(ViInt32 channel, bool enabled) override;
    ViStatus voltageProtectionEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setRemoteSenseEnabled(ViInt32 channel, bool enabled) override;
    ViStatus remoteSenseEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setCurrentLevel(ViInt32 channel, double amperes) override;
    ViStatus currentLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionLevel(ViInt32 channel, double amperes) override;
    ViStatus currentProtectionLevel(ViInt32 channel, double& amperes) override;
    ViStatus setCurrentProtectionEnabled(ViInt32 channel, bool enabled) override;
    ViStatus currentProtectionEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setCurrentProtectionDelay(ViInt32 channel, double seconds) override;
    ViStatus currentProtectionDelay(ViInt32 channel, double& seconds) override;
    ViStatus setCurrentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode mode) override;
    ViStatus currentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode& mode) override;

    ViStatus setOutputEnabled(ViInt32 channel, bool enabled) override;
    ViStatus outputEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus regulationState(ViInt32 channel, RegulationState& state) override;
    ViStatus setOvpValue(ViInt32 channel, double volts) override;
    ViStatus ovpValue(ViInt32 channel, double& volts) override;
    ViStatus setOvpEnabled(ViInt32 channel, bool enabled) override;
    ViStatus ovpEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOcpValue(ViInt32 channel, double amperes) override;
    ViStatus ocpValue(ViInt32 channel, double& amperes) override;
    ViStatus setOcpEnabled(ViInt32 channel, bool enabled) override;
    ViStatus ocpEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOcpDelay(ViInt32 channel, double seconds) override;
    ViStatus ocpDelay(ViInt32 channel, double& seconds) override;
    ViStatus setOcpDelayMode(ViInt32 channel, ProtectionDelayMode mode) override;
    ViStatus ocpDelayMode(ViInt32 channel, ProtectionDelayMode& mode) override;
    ViStatus setPowerOnState(ViInt32 channel, PowerOnState state) override;
    ViStatus powerOnState(ViInt32 channel, PowerOnState& state) override;
    ViStatus setPairing(ViInt32 channel, Pairing pairing) override;
    ViStatus pairing(ViInt32 channel, Pairing& pairing) override;
    ViStatus setOutputSenseEnabled(ViInt32 channel, bool enabled) override;
    ViStatus outputSenseEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setTrackingEnabled(ViInt32 channel, bool enabled) override;
    ViStatus trackingEnabled(ViInt32 channel, bool& enabled) override;
    ViStatus setOutputOffMode(ViInt32 channel, OutputOffMode mode) override;
    ViStatus outputOffMode(ViInt32 channel, OutputOffMode& mode) override;

    ViStatus measureAll(ViInt32 channel, double& volts, double& amperes, double& watts) override;
    ViStatus measureVoltage(ViInt32 channel, double& volts) override;
    ViStatus measureCurrent(ViInt32 channel, double& amperes) override;
    ViStatus measurePower(ViInt32 channel, double& watts) override;
    ViStatus setCurrentRange(ViInt32 channel, CurrentRange range) override;
    ViStatus currentRange(ViInt32 channel, CurrentRange& range) override;
    ViStatus setCurrentRate(ViInt32 channel, CurrentRate rate) override;
    ViStatus currentRate(ViInt32 channel, CurrentRate& rate) override;

    ViStatus setListEnabled(bool enabled) override;
    ViStatus listEnabled(bool& enabled) override;
    ViStatus listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                        ViInt32& remainingCycles) override;
    ViStatus setListCycles(ViInt32 cycles) override;
    ViStatus listCycles(ViInt32& cycles) override;
    ViStatus setListEndState(ListEndState state) override;
    ViStatus listEndState(ListEndState& state) override;
    ViStatus listGroupCount(ViInt32& count) override;
    ViStatus insertListGroup(ViInt32 group) override;
    ViStatus deleteListGroup(ViInt32 group) override;
    ViStatus clearListGroups() override;
    ViStatus setListGroup(ViInt32 group, double volts, double amperes, double seconds) override;
    ViStatus listGroup(ViInt32 group, double& volts, double& amperes, double& seconds) override;
    ViStatus setListTemplateWaveform(ListWaveform waveform) override;
    ViStatus listTemplateWaveform(ListWaveform& waveform) override;
    ViStatus setListTemplateObject(ListTemplateObject object, double level) override;
    ViStatus listTemplateObject(ListTemplateObject& object, double& level) override;
    ViStatus setListTemplateMaximum(double level) override;
    ViStatus listTemplateMaximum(double& level) override;
    ViStatus setListTemplateMinimum(double level) override;
    ViStatus listTemplateMinimum(double& level) override;
    ViStatus setListTemplatePeriod(double seconds) override;
    ViStatus listTemplatePeriod(double& seconds) override;
    ViStatus setListTemplateInterval(double seconds) override;
    ViStatus listTemplateInterval(double& seconds) override;
    ViStatus setListTemplateCycles(ViInt32 cycles) override;
    ViStatus listTemplateCycles(ViInt32& cycles) override;
    ViStatus setListTemplateInverted(bool inverted) override;
    ViStatus listTemplateInverted(bool& inverted) override;
    ViStatus setListTemplatePulseWidth(double seconds) override;
    ViStatus listTemplatePulseWidth(double& seconds) override;
    ViStatus setListTemplatePulseCount(ViInt32 count) override;
    ViStatus listTemplatePulseCount(ViInt32& count) override;
    ViStatus setListTemplateSymmetry(ViInt32 percent) override;
    ViStatus listTemplateSymmetry(ViInt32& percent) override;
    ViStatus setListTemplateStart(ViInt32 start) override;
    ViStatus listTemplateStart(ViInt32& start) override;
    ViStatus setListTemplateExpp(ViInt32 exponent) override;
    ViStatus listTemplateExpp(ViInt32& exponent) override;
    ViStatus setListTemplateExpr(ViInt32 exponent) override;
    ViStatus listTemplateExpr(ViInt32& exponent) override;
    ViStatus listTemplatePoints(ViInt32& points) override;
    ViStatus constructList(ViInt32 argument) override;

    ViStatus setDelayEnabled(bool enabled) override;
    ViStatus delayEnabled(bool& enabled) override;
    ViStatus delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                         ViInt32& remainingCycles) override;
    ViStatus setDelayCycles(ViInt32 cycles) override;
    ViStatus delayCycles(ViInt32& cycles) override;
    ViStatus setDelayEndState(DelayEndState state) override;
    ViStatus delayEndState(DelayEndState& state) override;
    ViStatus delayGroupCount(ViInt32& count) override;
    ViStatus insertDelayGroup(ViInt32 group) override;
    ViStatus deleteDelayGroup(ViInt32 group) override;
    ViStatus clearDelayGroups() override;
    ViStatus setDelayGroup(ViInt32 group, bool on, double seconds) override;
    ViStatus delayGroup(ViInt32 group, bool& on, double& seconds) override;
    ViStatus setDelayGenerateMode(DelayGenerateMode mode) override;
    ViStatus delayGenerateMode(DelayGenerateMode& mode) override;
    ViStatus setDelayGeneratePattern(DelayPattern pattern) override;
    ViStatus delayGeneratePattern(DelayPattern& pattern) override;
    ViStatus setDelayGeneratePoints(ViInt32 points) override;
    ViStatus delayGeneratePoints(ViInt32& points) override;
    ViStatus setDelayOnTime(double seconds) override;
    ViStatus delayOnTime(double& seconds) override;
    ViStatus setDelayOffTime(double seconds) override;
    ViStatus delayOffTime(double& seconds) override;
    ViStatus setDelayBaseTime(double seconds) override;
    ViStatus delayBaseTime(double& seconds) override;
    ViStatus setDelayTimeStep(double seconds) override;
    ViStatus delayTimeStep(double& seconds) override;
    ViStatus constructDelay(ViInt32 argument) override;

    ViStatus setTriggerInputEnabled(ViInt32 channel, bool enabled) override;
    ViStatus triggerInputEnabled(ViInt32 channel, bool& enabled) override;

    std::string_view lastReply() const override { return port_.lastReply(); }
    ViStatus writeMessage(std::string_view message) override { return port_.writeMessage(message); }
    ViStatus readMessage(std::span<ViByte> buffer, std::size_t& count) override
    {
        return port_.readMessage(buffer, count);
    }
    void configureConnection(const ConnectionSetup& setup) override { port_.configure(setup); }
    ViStatus connectionStatus() const override { return port_.connectionStatus(); }

protected:
    /// The step of open() that connects. On a negative status the previous connection stays.
    virtual ViStatus connect(const std::string& resource);

    CommandPort& port() { return port_; }

private:
    ViStatus identify();

    CommandPort port_;
};

} // namespace TSRO
