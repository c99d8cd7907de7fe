#include "instrument/kvx2800t.h"

namespace TSRO
{
namespace
{

/// False for NaN, too.
bool within(double value, double minimum, double maximum)
{
    return value >= minimum && value <= maximum;
}

} // namespace

ViStatus KVX2800T::selectChannel(ViInt32 channel)
{
    return port_.set(":INST:SELE", ChannelName{channel});
}

ViStatus KVX2800T::selectedChannel(ViInt32& channel)
{
    ChannelName selected{};
    const ViStatus status = port_.get(":INST:SELE?", selected);
    if (status >= 0)
        channel = selected.channel;
    return status;
}

ViStatus KVX2800T::setSourceMode(SourceMode mode)
{
    return port_.set(":SOUR:Mode", mode);
}

ViStatus KVX2800T::sourceMode(SourceMode& mode)
{
    return port_.get(":SOUR:Mode?", mode);
}

ViStatus KVX2800T::setBleEnabled(bool enabled)
{
    return port_.set(":SOUR:BLE", enabled);
}

ViStatus KVX2800T::bleEnabled(bool& enabled)
{
    return port_.get(":SOUR:BLE?", enabled);
}

ViStatus KVX2800T::setVoltageLevel(ViInt32 channel, double volts)
{
    const ChannelLimits& limits = channelLimits(channel);
    if (!within(volts, limits.voltageMin, limits.voltageMax))
        return base::kErrorValueOutOfRange;
    return port_.set(Header::ofSource(":SOUR:VOLT", channel), volts);
}

ViStatus KVX2800T::voltageLevel(ViInt32 channel, double& volts)
{
    return port_.get(Header::ofSource(":SOUR:VOLT", channel), volts);
}

ViStatus KVX2800T::setVoltageProtectionLevel(ViInt32 channel, double volts)
{
    return port_.set(Header::ofSource(":SOUR:VOLT:PROT", channel), volts);
}

ViStatus KVX2800T::voltageProtectionLevel(ViInt32 channel, double& volts)
{
    return port_.get(Header::ofSource(":SOUR:VOLT:PROT", channel), volts);
}

ViStatus KVX2800T::setVoltageProtectionEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(Header::ofSource(":SOUR:VOLT:PROT:STAT", channel), enabled);
}

ViStatus KVX2800T::voltageProtectionEnabled(ViInt32 channel, bool& enabled)
{
    return port_.get(Header::ofSource(":SOUR:VOLT:PROT:STAT", channel), enabled);
}

ViStatus KVX2800T::setRemoteSenseEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(Header::ofSource(":SOUR:VOLT:SENS", channel), enabled);
}

ViStatus KVX2800T::remoteSenseEnabled(ViInt32 channel, bool& enabled)
{
    return port_.get(Header::ofSource(":SOUR:VOLT:SENS", channel), enabled);
}

ViStatus KVX2800T::setCurrentLevel(ViInt32 channel, double amperes)
{
    const ChannelLimits& limits = channelLimits(channel);
    if (!within(amperes, limits.currentMin, limits.currentMax))
        return base::kErrorValueOutOfRange;
    return port_.set(Header::ofSource(":SOUR:CURR", channel), amperes);
}

ViStatus KVX2800T::currentLevel(ViInt32 channel, double& amperes)
{
    return port_.get(Header::ofSource(":SOUR:CURR", channel), amperes);
}

ViStatus KVX2800T::setCurrentProtectionLevel(ViInt32 channel, double amperes)
{
    return port_.set(Header::ofSource(":SOUR:CURR:PROT", channel), amperes);
}

ViStatus KVX2800T::currentProtectionLevel(ViInt32 channel, double& amperes)
{
    return port_.get(Header::ofSource(":SOUR:CURR:PROT", channel), amperes);
}

ViStatus KVX2800T::setCurrentProtectionEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(Header::ofSource(":SOUR:CURR:PROT:STAT", channel), enabled);
}

ViStatus KVX2800T::currentProtectionEnabled(ViInt32 channel, bool& enabled)
{
    return port_.get(Header::ofSource(":SOUR:CURR:PROT:STAT", channel), enabled);
}

ViStatus KVX2800T::setCurrentProtectionDelay(ViInt32 channel, double seconds)
{
    return port_.set(Header::ofSource(":SOUR:CURR:PROT:DEL", channel), seconds);
}

ViStatus KVX2800T::currentProtectionDelay(ViInt32 channel, double& seconds)
{
    return port_.get(Header::ofSource(":SOUR:CURR:PROT:DEL", channel), seconds);
}

ViStatus KVX2800T::setCurrentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode mode)
{
    return port_.set(Header::ofSource(":SOUR:CURR:PROT:DEL:MODE", channel), mode);
}

ViStatus KVX2800T::currentProtectionDelayMode(ViInt32 channel, ProtectionDelayMode& mode)
{
    return port_.get(Header::ofSource(":SOUR:CURR:PROT:DEL:MODE", channel), mode);
}

} // namespace TSRO
