#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::setListEnabled(bool enabled)
{
    return port_.set(":LIST:STAT", enabled);
}

ViStatus KVX2800T::listEnabled(bool& enabled)
{
    return port_.get(":LIST:STAT?", enabled);
}

ViStatus KVX2800T::listStatus(ListRunState& state, double& remainingSeconds, ViInt32& group, ViInt32& remainingCycles)
{
    return port_.get(":LIST:STATUS?", state, remainingSeconds, group, remainingCycles);
}

ViStatus KVX2800T::setListCycles(ViInt32 cycles)
{
    return port_.set(":LIST:CYCLE", cycles);
}

ViStatus KVX2800T::listCycles(ViInt32& cycles)
{
    return port_.get(":LIST:CYCLE?", cycles);
}

ViStatus KVX2800T::setListEndState(ListEndState state)
{
    return port_.set(":LIST:ENDS", state);
}

ViStatus KVX2800T::listEndState(ListEndState& state)
{
    return port_.get(":LIST:ENDS?", state);
}

ViStatus KVX2800T::listGroupCount(ViInt32& count)
{
    return port_.get(":LIST:GROUP:NUM?", count);
}

ViStatus KVX2800T::insertListGroup(ViInt32 group)
{
    return port_.set(":LIST:GROUP:INS", group);
}

ViStatus KVX2800T::deleteListGroup(ViInt32 group)
{
    return port_.set(":LIST:GROUP:DEL", group);
}

ViStatus KVX2800T::clearListGroups()
{
    return port_.send(":LIST:GROUP:CLE");
}

ViStatus KVX2800T::setListGroup(ViInt32 group, double volts, double amperes, double seconds)
{
    return port_.set(":LIST:GROUP:PARA", group, volts, amperes, seconds);
}

ViStatus KVX2800T::listGroup(ViInt32 group, double& volts, double& amperes, double& seconds)
{
    return port_.getFor(":LIST:GROUP:PARA", group, volts, amperes, seconds);
}

ViStatus KVX2800T::setListTemplateWaveform(ListWaveform waveform)
{
    return port_.set(":LIST:TEMP:SEL", waveform);
}

ViStatus KVX2800T::listTemplateWaveform(ListWaveform& waveform)
{
    return port_.get(":LIST:TEMP:SEL?", waveform);
}

ViStatus KVX2800T::setListTemplateObject(ListTemplateObject object, double level)
{
    return port_.set(":LIST:TEMP:OBJ", object, level);
}

ViStatus KVX2800T::listTemplateObject(ListTemplateObject& object, double& level)
{
    return port_.get(":LIST:TEMP:OBJ?", object, level);
}

ViStatus KVX2800T::setListTemplateMaximum(double level)
{
    return port_.set(":LIST:TEMP:MAXV", level);
}

ViStatus KVX2800T::listTemplateMaximum(double& level)
{
    return port_.get(":LIST:TEMP:MAXV?", level);
}

ViStatus KVX2800T::setListTemplateMinimum(double level)
{
    return port_.set(":LIST:TEMP:MINV", level);
}

ViStatus KVX2800T::listTemplateMinimum(double& level)
{
    return port_.get(":LIST:TEMP:MINV?", level);
}

ViStatus KVX2800T::setListTemplatePeriod(double seconds)
{
    return port_.set(":LIST:TEMP:PERI", seconds);
}

ViStatus KVX2800T::listTemplatePeriod(double& seconds)
{
    return port_.get(":LIST:TEMP:PERI?", seconds);
}

ViStatus KVX2800T::setListTemplateInterval(double seconds)
{
    return port_.set(":LIST:TEMP:INTE", seconds);
}

ViStatus KVX2800T::listTemplateInterval(double& seconds)
{
    return port_.get(":LIST:TEMP:INTE?", seconds);
}

ViStatus KVX2800T::setListTemplateCycles(ViInt32 cycles)
{
    return port_.set(":LIST:TEMP:CYCLE", cycles);
}

ViStatus KVX2800T::listTemplateCycles(ViInt32& cycles)
{
    return port_.get(":LIST:TEMP:CYCLE?", cycles);
}

ViStatus KVX2800T::setListTemplateInverted(bool inverted)
{
    return port_.set(":LIST:TEMP:INVE", inverted);
}

ViStatus KVX2800T::listTemplateInverted(bool& inverted)
{
    return port_.get(":LIST:TEMP:INVE?", inverted);
}

ViStatus KVX2800T::setListTemplatePulseWidth(double seconds)
{
    return port_.set(":LIST:TEMP:WIDT", seconds);
}

ViStatus KVX2800T::listTemplatePulseWidth(double& seconds)
{
    return port_.get(":LIST:TEMP:WIDT?", seconds);
}

ViStatus KVX2800T::setListTemplatePulseCount(ViInt32 count)
{
    return port_.set(":LIST:TEMP:PULSECount", count);
}

ViStatus KVX2800T::listTemplatePulseCount(ViInt32& count)
{
    return port_.get(":LIST:TEMP:PULSECount?", count);
}

ViStatus KVX2800T::setListTemplateSymmetry(ViInt32 percent)
{
    return port_.set(":LIST:TEMP:SYMM", percent);
}

ViStatus KVX2800T::listTemplateSymmetry(ViInt32& percent)
{
    return port_.get(":LIST:TEMP:SYMM?", percent);
}

ViStatus KVX2800T::setListTemplateStart(ViInt32 start)
{
    return port_.set(":LIST:TEMP:STAI", start);
}

ViStatus KVX2800T::listTemplateStart(ViInt32& start)
{
    return port_.get(":LIST:TEMP:STAI?", start);
}

ViStatus KVX2800T::setListTemplateExpp(ViInt32 exponent)
{
    return port_.set(":LIST:TEMP:EXPP", exponent);
}

ViStatus KVX2800T::listTemplateExpp(ViInt32& exponent)
{
    return port_.get(":LIST:TEMP:EXPP?", exponent);
}

ViStatus KVX2800T::setListTemplateExpr(ViInt32 exponent)
{
    return port_.set(":LIST:TEMP:EXPR", exponent);
}

ViStatus KVX2800T::listTemplateExpr(ViInt32& exponent)
{
    return port_.get(":LIST:TEMP:EXPR?", exponent);
}

ViStatus KVX2800T::listTemplatePoints(ViInt32& points)
{
    return port_.get(":LIST:TEMP:POINTs?", points);
}

ViStatus KVX2800T::constructList(ViInt32 argument)
{
    return port_.set(":LIST:TEMP:CONSTruct", argument);
}

} // namespace TSRO
