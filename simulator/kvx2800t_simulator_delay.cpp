#include "simulator/kvx2800t_simulator.h"

#include "simulator/random_source.h"
#include "simulator/simulated_values.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::delayEnabled(bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                                        ViInt32& remainingCycles)
{
    state = simulated::oneOf<DelayRunState>(2);
    remainingSeconds = simulated::seconds();
    group = simulated::groups();
    remainingCycles = simulated::cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayCycles(ViInt32& cycles)
{
    cycles = simulated::cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayEndState(DelayEndState& state)
{
    state = simulated::oneOf<DelayEndState>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGroupCount(ViInt32& count)
{
    count = simulated::integer(0, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGroup(ViInt32 /*group*/, bool& on, double& seconds)
{
    // Part of the sequence of draws, though no value comes of it.
    random::discard();
    on = random::boolean();
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGenerateMode(DelayGenerateMode& mode)
{
    mode = simulated::oneOf<DelayGenerateMode>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGeneratePattern(DelayPattern& pattern)
{
    pattern = simulated::oneOf<DelayPattern>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGeneratePoints(ViInt32& points)
{
    points = simulated::integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayOnTime(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayOffTime(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayBaseTime(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayTimeStep(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

} // namespace TSRO
