#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::setOutputEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::outputEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::regulationState(ViInt32 channel, RegulationState& state)
{
    return port_.getFor(":OUTP:CVCC", ChannelName{channel}, state);
}

ViStatus KVX2800T::setOvpValue(ViInt32 channel, double volts)
{
    return port_.set(":OUTP:OVP:VAL", ChannelName{channel}, volts);
}

ViStatus KVX2800T::ovpValue(ViInt32 channel, double& volts)
{
    return port_.getFor(":OUTP:OVP:VAL", ChannelName{channel}, volts);
}

ViStatus KVX2800T::setOvpEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:OVP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::ovpEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:OVP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::setOcpValue(ViInt32 channel, double amperes)
{
    return port_.set(":OUTP:OCP:VAL", ChannelName{channel}, amperes);
}

ViStatus KVX2800T::ocpValue(ViInt32 channel, double& amperes)
{
    return port_.getFor(":OUTP:OCP:VAL", ChannelName{channel}, amperes);
}

ViStatus KVX2800T::setOcpEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:OCP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::ocpEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:OCP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::setOcpDelay(ViInt32 channel, double seconds)
{
    return port_.set(":OUTP:OCP:DEL", ChannelName{channel}, seconds);
}

ViStatus KVX2800T::ocpDelay(ViInt32 channel, double& seconds)
{
    return port_.getFor(":OUTP:OCP:DEL", ChannelName{channel}, seconds);
}

ViStatus KVX2800T::setOcpDelayMode(ViInt32 channel, ProtectionDelayMode mode)
{
    return port_.set(":OUTP:OCP:DEL:MODE", ChannelName{channel}, mode);
}

ViStatus KVX2800T::ocpDelayMode(ViInt32 channel, ProtectionDelayMode& mode)
{
    return port_.getFor(":OUTP:OCP:DEL:MODE", ChannelName{channel}, mode);
}

ViStatus KVX2800T::setPowerOnState(ViInt32 channel, PowerOnState state)
{
    return port_.set(":OUTP:PONS:STAT", ChannelName{channel}, state);
}

ViStatus KVX2800T::powerOnState(ViInt32 channel, PowerOnState& state)
{
    return port_.getFor(":OUTP:PONS:STAT", ChannelName{channel}, state);
}

ViStatus KVX2800T::setPairing(ViInt32 channel, Pairing pairing)
{
    return port_.set(":OUTP:PAIR", ChannelName{channel}, pairing);
}

ViStatus KVX2800T::pairing(ViInt32 channel, Pairing& pairing)
{
    return port_.getFor(":OUTP:PAIR", ChannelName{channel}, pairing);
}

ViStatus KVX2800T::setOutputSenseEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:SENS:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::outputSenseEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:SENS:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::setTrackingEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:TRAC:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::trackingEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:TRAC:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::setOutputOffMode(ViInt32 channel, OutputOffMode mode)
{
    return port_.set(":OUTP:OFFM", ChannelName{channel}, mode);
}

ViStatus KVX2800T::outputOffMode(ViInt32 channel, OutputOffMode& mode)
{
    return port_.getFor(":OUTP:OFFM", ChannelName{channel}, mode);
}

ViStatus KVX2800T::setTriggerInputEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":TRIG:IN:ENAB", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::triggerInputEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":TRIG:IN:ENAB", ChannelName{channel}, enabled);
}

} // namespace TSRO
