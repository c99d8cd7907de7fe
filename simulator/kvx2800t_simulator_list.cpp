#include "simulator/kvx2800t_simulator.h"

#include "simulator/random_source.h"
#include "simulator/simulated_values.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::listEnabled(bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                                       ViInt32& remainingCycles)
{
    state = simulated::oneOf<ListRunState>(4);
    remainingSeconds = simulated::seconds();
    group = simulated::groups();
    remainingCycles = simulated::cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listCycles(ViInt32& cycles)
{
    cycles = simulated::cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listEndState(ListEndState& state)
{
    state = simulated::oneOf<ListEndState>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listGroupCount(ViInt32& count)
{
    count = simulated::groups();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listGroup(ViInt32 /*group*/, double& volts, double& amperes, double& seconds)
{
    const ChannelLimits& limits = channelLimits(1);
    volts = simulated::voltage(limits);
    amperes = simulated::current(limits);
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateWaveform(ListWaveform& waveform)
{
    waveform = simulated::oneOf<ListWaveform>(8);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateObject(ListTemplateObject& object, double& level)
{
    object = simulated::oneOf<ListTemplateObject>(2);
    level = random::uniformReal();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateMaximum(double& level)
{
    level = 0.0;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateMinimum(double& level)
{
    level = 1.0;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateInterval(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateCycles(ViInt32& cycles)
{
    cycles = simulated::cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateInverted(bool& inverted)
{
    inverted = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePulseWidth(double& seconds)
{
    seconds = simulated::seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePulseCount(ViInt32& count)
{
    count = simulated::integer(1, 256);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateSymmetry(ViInt32& percent)
{
    percent = simulated::integer(0, 100);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateStart(ViInt32& start)
{
    start = simulated::integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateExpp(ViInt32& exponent)
{
    exponent = simulated::integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateExpr(ViInt32& exponent)
{
    exponent = simulated::integer(0, 10);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePoints(ViInt32& points)
{
    points = simulated::groups();
    return VI_SUCCESS;
}

} // namespace TSRO
