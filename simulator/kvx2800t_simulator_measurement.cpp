#include "simulator/kvx2800t_simulator.h"

#include "simulator/simulated_values.h"

namespace TSRO
{

ViStatus KVX2800TSimulator::measureAll(ViInt32 channel, double& volts, double& amperes, double& watts)
{
    volts = simulated::voltage(channelLimits(channel));
    amperes = simulated::current(channelLimits(channel));
    watts = volts * amperes;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measureVoltage(ViInt32 channel, double& volts)
{
    volts = simulated::voltage(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measureCurrent(ViInt32 channel, double& amperes)
{
    amperes = simulated::current(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::measurePower(ViInt32 channel, double& watts)
{
    watts = simulated::power(channelLimits(channel));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentRange(ViInt32 /*channel*/, CurrentRange& range)
{
    range = simulated::oneOf<CurrentRange>(3);
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentRate(ViInt32 /*channel*/, CurrentRate& rate)
{
    rate = simulated::oneOf<CurrentRate>(3);
    return VI_SUCCESS;
}

} // namespace TSRO
