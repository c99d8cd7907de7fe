#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::measureAll(ViInt32 channel, double& volts, double& amperes, double& watts)
{
    return port_.getFor(":MEAS:ALL", ChannelName{channel}, volts, amperes, watts);
}

ViStatus KVX2800T::measureVoltage(ViInt32 channel, double& volts)
{
    return port_.getFor(":MEAS:VOLT", ChannelName{channel}, volts);
}

ViStatus KVX2800T::measureCurrent(ViInt32 channel, double& amperes)
{
    return port_.getFor(":MEAS:CURR", ChannelName{channel}, amperes);
}

ViStatus KVX2800T::measurePower(ViInt32 channel, double& watts)
{
    return port_.getFor(":MEAS:POWE", ChannelName{channel}, watts);
}

ViStatus KVX2800T::setCurrentRange(ViInt32 channel, CurrentRange range)
{
    return port_.set(":MEAS:CURR:RANG", ChannelName{channel}, range);
}

ViStatus KVX2800T::currentRange(ViInt32 channel, CurrentRange& range)
{
    return port_.getFor(":MEAS:CURR:RANG", ChannelName{channel}, range);
}

ViStatus KVX2800T::setCurrentRate(ViInt32 channel, CurrentRate rate)
{
    return port_.set(":MEAS:CURR:RATE", ChannelName{channel}, rate);
}

ViStatus KVX2800T::currentRate(ViInt32 channel, CurrentRate& rate)
{
    return port_.getFor(":MEAS:CURR:RATE", ChannelName{channel}, rate);
}

} // namespace TSRO
