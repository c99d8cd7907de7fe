#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::listEnabled(bool& enabled)
{
    enabled = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                                       ViInt32& remainingCycles)
{
    state = values_.oneOf<ListRunState>(4);
    remainingSeconds = values_.seconds();
    group = values_.groups();
    remainingCycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listCycles(ViInt32& cycles)
{
    cycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listEndState(ListEndState& state)
{
    state = values_.oneOf<ListEndState>(2);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listGroupCount(ViInt32& count)
{
    count = values_.groups();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listGroup(ViInt32 /*group*/, double& volts, double& amperes, double& seconds)
{
    const ChannelLimits& limits = channelLimits(1);
    volts = values_.voltage(limits);
    amperes = values_.current(limits);
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateWaveform(ListWaveform& waveform)
{
    waveform = values_.oneOf<ListWaveform>(8);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateObject(ListTemplateObject& object, double& level)
{
    object = values_.oneOf<ListTemplateObject>(2);
    level = values_.uniformReal();
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
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateCycles(ViInt32& cycles)
{
    cycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateInverted(bool& inverted)
{
    inverted = values_.boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePulseWidth(double& seconds)
{
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePulseCount(ViInt32& count)
{
    count = values_.integer(1, 256);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateSymmetry(ViInt32& percent)
{
    percent = values_.integer(0, 100);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateStart(ViInt32& start)
{
    start = values_.integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateExpp(ViInt32& exponent)
{
    exponent = values_.integer(1, 512);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateExpr(ViInt32& exponent)
{
    exponent = values_.integer(0, 10);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplatePoints(ViInt32& points)
{
    points = values_.groups();
    return VI_SUCCESS;
}

} // namespace TSRO
