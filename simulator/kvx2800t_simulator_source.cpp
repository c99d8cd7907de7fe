#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::selectedChannel(ViInt32& channel)
{
    channel = values_.integer(1, 6);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::sourceMode(SourceMode& mode)
{
    mode = values_.oneOf<SourceMode>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::bleEnabled(bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::voltageLevel(ViInt32 channel, double& volts)
{
    volts = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::voltageProtectionLevel(ViInt32 channel, double& volts)
{
    volts = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::voltageProtectionEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::remoteSenseEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentLevel(ViInt32 channel, double& amperes)
{
    amperes = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionLevel(ViInt32 channel, double& amperes)
{
    amperes = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionDelay(ViInt32 /*channel*/, double& seconds)
{
    seconds = values_.uniformReal();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionDelayMode(ViInt32 /*channel*/, ProtectionDelayMode& mode)
{
    mode = values_.oneOf<ProtectionDelayMode>(2);
    return VI_SUCCESS;
}

} // namespace TSRO
