#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

KVX2800TSimulator::KVX2800TSimulator() : InstBase({"Tessaro Instruments", "KVX2803T", "SN12345678901", "V1.00"}) {}

ViStatus KVX2800TSimulator::open(const std::string& /*resource*/, const std::string& /*options*/)
{
    connected_ = true;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::close()
{
    connected_ = false;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::nextError(ViInt32& code, std::string& message)
{
    code = 0;
    message = "No error";
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measureAll(ViInt32 channel, double& volts, double& amperes, double& watts)
{
    volts = voltage(channel);
    amperes = current(channel);
    watts = volts * amperes;
    return VI_SUCCESS;
}

template <class RunState>
ViStatus KVX2800TSimulator::answerRun(RunState& state, double& seconds, ViInt32& group, ViInt32& cycles)
{
    state = values_.oneOf<RunState>();
    seconds = values_.seconds();
    group = values_.groups();
    cycles = values_.cycles();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group,
                                       ViInt32& remainingCycles)
{
    return answerRun(state, remainingSeconds, group, remainingCycles);
}

ViStatus KVX2800TSimulator::listGroup(ViInt32 /*group*/, double& volts, double& amperes, double& seconds)
{
    volts = voltage(1);
    amperes = current(1);
    seconds = values_.seconds();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::listTemplateObject(ListTemplateObject& object, double& level)
{
    object = values_.oneOf<ListTemplateObject>();
    level = values_.uniformReal();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group,
                                        ViInt32& remainingCycles)
{
    return answerRun(state, remainingSeconds, group, remainingCycles);
}

ViStatus KVX2800TSimulator::delayGroup(ViInt32 /*group*/, bool& on, double& seconds)
{
    // Part of the sequence of draws, though no value comes of it.
    values_.discard();
    on = values_.boolean();
    seconds = values_.seconds();
    return VI_SUCCESS;
}

} // namespace TSRO
