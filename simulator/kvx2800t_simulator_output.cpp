#include "simulator/kvx2800t_simulator.h"

#include "simulator/random_source.h"
#include "simulator/simulated_values.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::outputEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::regulationState(ViInt32 /*channel*/, RegulationState& state)
{
    state = simulated::oneOf<RegulationState>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ovpValue(ViInt32 channel, double& volts)
{
    volts = simulated::voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ovpEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpValue(ViInt32 channel, double& amperes)
{
    amperes = simulated::current(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpDelay(ViInt32 /*channel*/, double& seconds)
{
    seconds = random::uniformReal();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::ocpDelayMode(ViInt32 /*channel*/, ProtectionDelayMode& mode)
{
    mode = simulated::oneOf<ProtectionDelayMode>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::powerOnState(ViInt32 /*channel*/, PowerOnState& state)
{
    state = simulated::oneOf<PowerOnState>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::pairing(ViInt32 /*channel*/, Pairing& pairing)
{
    pairing = simulated::oneOf<Pairing>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::outputSenseEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::trackingEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::outputOffMode(ViInt32 /*channel*/, OutputOffMode& mode)
{
    mode = simulated::oneOf<OutputOffMode>(2);
    return VI_SUCCESS;
}

} // namespace TSRO
