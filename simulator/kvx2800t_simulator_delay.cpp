#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::delayEnabled(bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                                        ViInt32& remainingCycles)
{
    state = values_.oneOf<DelayRunState>(2);
    remainingSeconds = values_.seconds();
    group = values_.groups();
    remainingCycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayCycles(ViInt32& cycles)
{
    cycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayEndState(DelayEndState& state)
{
    state = values_.oneOf<DelayEndState>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGroupCount(ViInt32& count)
{
    count = values_.integer(0, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGroup(ViInt32 /*group*/, bool& on, double& seconds)
{
    // Part of the sequence of draws, though no value comes of it.
    values_.discard();
    on = values_.boolean();
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGenerateMode(DelayGenerateMode& mode)
{
    mode = values_.oneOf<DelayGenerateMode>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGeneratePattern(DelayPattern& pattern)
{
    pattern = values_.oneOf<DelayPattern>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayGeneratePoints(ViInt32& points)
{
    points = values_.integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayOnTime(double& seconds)
{
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayOffTime(double& seconds)
{
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayBaseTime(double& seconds)
{
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayTimeStep(double& seconds)
{
    seconds = values_.seconds();
    return VI_SUCCESS;
}

} // namespace TSRO
