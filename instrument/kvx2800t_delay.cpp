#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::setDelayEnabled(bool enabled)
{
    return port_.set(":DELAY:STATe", enabled);
}

ViStatus KVX2800T::delayEnabled(bool& enabled)
{
    return port_.get(":DELAY:STATe?", enabled);
}

ViStatus KVX2800T::delayStatus(DelayRunState& state, double& remainingSeconds, ViInt32& group, ViInt32& remainingCycles)
{
    return port_.get(":DELAY:STATUS?", state, remainingSeconds, group, remainingCycles);
}

ViStatus KVX2800T::setDelayCycles(ViInt32 cycles)
{
    return port_.set(":DELAY:CYCLEs", cycles);
}

ViStatus KVX2800T::delayCycles(ViInt32& cycles)
{
    return port_.get(":DELAY:CYCLEs?", cycles);
}

ViStatus KVX2800T::setDelayEndState(DelayEndState state)
{
    return port_.set(":DELAY:ENDState", state);
}

ViStatus KVX2800T::delayEndState(DelayEndState& state)
{
    return port_.get(":DELAY:ENDState?", state);
}

ViStatus KVX2800T::delayGroupCount(ViInt32& count)
{
    return port_.get(":DELAY:GROUP:NUM?", count);
}

ViStatus KVX2800T::insertDelayGroup(ViInt32 group)
{
    return port_.set(":DELAY:GROUP:INSert", group);
}

ViStatus KVX2800T::deleteDelayGroup(ViInt32 group)
{
    return port_.set(":DELAY:GROUP:DELete", group);
}

ViStatus KVX2800T::clearDelayGroups()
{
    return port_.send(":DELAY:GROUP:CLEar");
}

ViStatus KVX2800T::setDelayGroup(ViInt32 group, bool on, double seconds)
{
    return port_.set(":DELAY:GROUP:PARAmeter", group, on, seconds);
}

ViStatus KVX2800T::delayGroup(ViInt32 group, bool& on, double& seconds)
{
    return port_.getFor(":DELAY:GROUP:PARAmeter", group, on, seconds);
}

ViStatus KVX2800T::setDelayGenerateMode(DelayGenerateMode mode)
{
    return port_.set(":DELAY:GENerate:SELect", mode);
}

ViStatus KVX2800T::delayGenerateMode(DelayGenerateMode& mode)
{
    return port_.get(":DELAY:GENerate:SELect?", mode);
}

ViStatus KVX2800T::setDelayGeneratePattern(DelayPattern pattern)
{
    return port_.set(":DELAY:GENerate:PATT", pattern);
}

ViStatus KVX2800T::delayGeneratePattern(DelayPattern& pattern)
{
    return port_.get(":DELAY:GENerate:PATT?", pattern);
}

ViStatus KVX2800T::setDelayGeneratePoints(ViInt32 points)
{
    return port_.set(":DELAY:GENerate:POINTs", points);
}

ViStatus KVX2800T::delayGeneratePoints(ViInt32& points)
{
    return port_.get(":DELAY:GENerate:POINTs?", points);
}

ViStatus KVX2800T::setDelayOnTime(double seconds)
{
    return port_.set(":DELAY:GENerate:TIMe:ON", seconds);
}

ViStatus KVX2800T::delayOnTime(double& seconds)
{
    return port_.get(":DELAY:GENerate:TIMe:ON?", seconds);
}

ViStatus KVX2800T::setDelayOffTime(double seconds)
{
    return port_.set(":DELAY:GENerate:TIMe:OFF", seconds);
}

ViStatus KVX2800T::delayOffTime(double& seconds)
{
    return port_.get(":DELAY:GENerate:TIMe:OFF?", seconds);
}

ViStatus KVX2800T::setDelayBaseTime(double seconds)
{
    return port_.set(":DELAY:GENerate:TIMe:BASE", seconds);
}

ViStatus KVX2800T::delayBaseTime(double& seconds)
{
    return port_.get(":DELAY:GENerate:TIMe:BASE?", seconds);
}

ViStatus KVX2800T::setDelayTimeStep(double seconds)
{
    return port_.set(":DELAY:GENerate:TIMe:STEP", seconds);
}

ViStatus KVX2800T::delayTimeStep(double& seconds)
{
    return port_.get(":DELAY:GENerate:TIMe:STEP?", seconds);
}

ViStatus KVX2800T::constructDelay(ViInt32 argument)
{
    return port_.set(":DELAY:GENerate:CONSTruct", argument);
}

} // namespace TSRO
