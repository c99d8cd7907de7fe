#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::outputEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::regulationState(ViInt32 /*channel*/, RegulationState& state)
{
    state = values_.oneOf<RegulationState>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ovpValue(ViInt32 channel, double& volts)
{
    volts = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ovpEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpValue(ViInt32 channel, double& amperes)
{
    amperes = values_.current(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpDelay(ViInt32 /*channel*/, double& seconds)
{
    seconds = values_.uniformReal();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpDelayMode(ViInt32 /*channel*/, ProtectionDelayMode& mode)
{
    mode = values_.oneOf<ProtectionDelayMode>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::powerOnState(ViInt32 /*channel*/, PowerOnState& state)
{
    state = values_.oneOf<PowerOnState>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::pairing(ViInt32 /*channel*/, Pairing& pairing)
{
    pairing = values_.oneOf<Pairing>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::outputSenseEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::trackingEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::outputOffMode(ViInt32 /*channel*/, OutputOffMode& mode)
{
    mode = values_.oneOf<OutputOffMode>(2);
    return VI_SUCCESS;
}

} // namespace TSRO
