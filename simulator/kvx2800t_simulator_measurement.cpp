#include "simulator/kvx2800t_simulator.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::measureAll(ViInt32 channel, double& volts, double& amperes, double& watts)
{
    volts = values_.voltage(channelLimits(channel));
    amperes = values_.current(channelLimits(channel));
    watts = volts * amperes;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measureVoltage(ViInt32 channel, double& volts)
{
    volts = values_.voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measureCurrent(ViInt32 channel, double& amperes)
{
    amperes = values_.current(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measurePower(ViInt32 channel, double& watts)
{
    watts = values_.power(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentRange(ViInt32 /*channel*/, CurrentRange& range)
{
    range = values_.oneOf<CurrentRange>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentRate(ViInt32 /*channel*/, CurrentRate& rate)
{
    rate = values_.oneOf<CurrentRate>(3);
    return VI_SUCCESS;
}

} // namespace TSRO
