#include "api/KVX2800T.h"
#include "api/program_arguments.h"

using drivekit::DriverSession;
using drivekit::OutputSelection;
using TSRO::InstBase;
using TSRO::ListTemplateObject;

namespace
{

using LevelCheck = ViStatus (*)(DriverSession& session, ViInt32 channel, ViReal64 level);

ViStatus checkLevels(DriverSession& session, const OutputSelection& channels, LevelCheck check, ViReal64 level)
{
    ViStatus status = VI_SUCCESS;
    for (const auto& name : channels)
        if (status >= 0)
            status = check(session, drivekit::channelOf(name), level);
    return status;
}

ViStatus checkGroup(DriverSession& session, const OutputSelection& channels, ViReal64 volts, ViReal64 amperes,
                    ViReal64 seconds)
{
    ViStatus status = checkLevels(session, channels, api::checkVoltage, volts);
    if (status >= 0)
        status = checkLevels(session, channels, api::checkCurrent, amperes);
    return status < 0 ? status : api::checkNumber(session, seconds);
}

} // namespace

ViStatus _VI_FUNC KVX2800T_LoadList(ViSession vi, ViConstString channelName, ViInt32 count, const ViReal64 volts[],
                                    const ViReal64 amperes[], const ViReal64 seconds[])
{
    const std::string_view function = __func__;
    return api::configure(
        vi, channelName,
        [&](DriverSession& session, const OutputSelection& channels) {
            ViStatus status = api::checkGroupCount(session, "LoadList", count);
            if (status >= 0 && count > 0)
                status = api::checkPointers(vi, function, "Volts, Amperes, Seconds", volts, amperes, seconds);
            for (ViInt32 i = 0; status >= 0 && i < count; ++i)
                status = checkGroup(session, channels, volts[i], amperes[i], seconds[i]);
            return status;
        },
        api::onProgram([&](InstBase& instrument, ViInt32 /*channel*/) {
            ViStatus status = instrument.clearListGroups();
            for (ViInt32 i = 0; status == VI_SUCCESS && i < count; ++i)
                status = instrument.setListGroup(i + 1, volts[i], amperes[i], seconds[i]);
            return status;
        }));
}

ViStatus _VI_FUNC KVX2800T_RunList(ViSession vi, ViConstString channelName)
{
    return api::configure(vi, channelName, api::kNothingToCheck,
                          api::onProgram([](InstBase& instrument, ViInt32 channel) {
                              const ViStatus status = instrument.setListEnabled(true);
                              return status == VI_SUCCESS ? instrument.setOutputEnabled(channel, true) : status;
                          }));
}

ViStatus _VI_FUNC KVX2800T_PauseList(ViSession vi, ViConstString channelName)
{
    return api::configure(vi, channelName, api::kNothingToCheck,
                          api::onProgram([](InstBase& instrument, ViInt32 channel) {
                              return instrument.setOutputEnabled(channel, false);
                          }));
}

ViStatus _VI_FUNC KVX2800T_ConfigureListEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureProgram(vi, channelName, &InstBase::setListEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryListEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryProgram(vi, channelName, {__func__, "Enabled"}, &InstBase::listEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryListStatus(ViSession vi, ViConstString channelName, ViInt32* state,
                                           ViReal64* remainingSeconds, ViInt32* group, ViInt32* remainingCycles)
{
    return api::queryProgram(vi, channelName, {__func__, "State, RemainingSeconds, Group, RemainingCycles"},
                             &InstBase::listStatus, state, remainingSeconds, group, remainingCycles);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListCycles(ViSession vi, ViConstString channelName, ViInt32 cycles)
{
    return api::configureProgram(vi, channelName, &InstBase::setListCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_QueryListCycles(ViSession vi, ViConstString channelName, ViInt32* cycles)
{
    return api::queryProgram(vi, channelName, {__func__, "Cycles"}, &InstBase::listCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListEndState(ViSession vi, ViConstString channelName, ViInt32 state)
{
    return api::configureProgram(vi, channelName, &InstBase::setListEndState, state);
}

ViStatus _VI_FUNC KVX2800T_QueryListEndState(ViSession vi, ViConstString channelName, ViInt32* state)
{
    return api::queryProgram(vi, channelName, {__func__, "State"}, &InstBase::listEndState, state);
}

ViStatus _VI_FUNC KVX2800T_QueryListGroupCount(ViSession vi, ViConstString channelName, ViInt32* count)
{
    return api::queryProgram(vi, channelName, {__func__, "Count"}, &InstBase::listGroupCount, count);
}

ViStatus _VI_FUNC KVX2800T_InsertListGroup(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::insertListGroup, group);
}

ViStatus _VI_FUNC KVX2800T_DeleteListGroup(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::deleteListGroup, group);
}

ViStatus _VI_FUNC KVX2800T_ClearListGroups(ViSession vi, ViConstString channelName)
{
    return api::configureProgram(vi, channelName, &InstBase::clearListGroups);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViReal64 volts,
                                              ViReal64 amperes, ViReal64 seconds)
{
    return api::configure(
        vi, channelName,
        [&](DriverSession& session, const OutputSelection& channels) {
            return checkGroup(session, channels, volts, amperes, seconds);
        },
        api::onProgram([&](InstBase& instrument, ViInt32 /*channel*/) {
            return instrument.setListGroup(group, volts, amperes, seconds);
        }));
}

ViStatus _VI_FUNC KVX2800T_QueryListGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViReal64* volts,
                                          ViReal64* amperes, ViReal64* seconds)
{
    return api::query<double, double, double>(
        vi, channelName, {__func__, "Volts, Amperes, Seconds"},
        api::onProgram([group](InstBase& instrument, ViInt32 /*channel*/, double& voltage, double& current,
                               double& time) { return instrument.listGroup(group, voltage, current, time); }),
        volts, amperes, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateWaveform(ViSession vi, ViConstString channelName, ViInt32 waveform)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateWaveform, waveform);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateWaveform(ViSession vi, ViConstString channelName, ViInt32* waveform)
{
    return api::queryProgram(vi, channelName, {__func__, "Waveform"}, &InstBase::listTemplateWaveform, waveform);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateObject(ViSession vi, ViConstString channelName, ViInt32 object,
                                                       ViReal64 level)
{
    return api::configure(
        vi, channelName,
        [&](DriverSession& session, const OutputSelection& channels) {
            const ViStatus status = api::checkSetting<ListTemplateObject>(session, object);
            if (status < 0)
                return status;
            // The level is that of the quantity which stays constant.
            const bool isCurrent = object == KVX2800T_VAL_LIST_OBJECT_VOLTAGE;
            return checkLevels(session, channels, isCurrent ? api::checkCurrent : api::checkVoltage, level);
        },
        api::onProgram([&](InstBase& instrument, ViInt32 /*channel*/) {
            return instrument.setListTemplateObject(static_cast<ListTemplateObject>(object), level);
        }));
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateObject(ViSession vi, ViConstString channelName, ViInt32* object,
                                                   ViReal64* level)
{
    return api::queryProgram(vi, channelName, {__func__, "Object, Level"}, &InstBase::listTemplateObject, object,
                             level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateMaximum(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateMaximum, level);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateMaximum(ViSession vi, ViConstString channelName, ViReal64* level)
{
    return api::queryProgram(vi, channelName, {__func__, "Level"}, &InstBase::listTemplateMaximum, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateMinimum(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateMinimum, level);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateMinimum(ViSession vi, ViConstString channelName, ViReal64* level)
{
    return api::queryProgram(vi, channelName, {__func__, "Level"}, &InstBase::listTemplateMinimum, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePeriod(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplatePeriod, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplatePeriod(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::listTemplatePeriod, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateInterval(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateInterval, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateInterval(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::listTemplateInterval, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateCycles(ViSession vi, ViConstString channelName, ViInt32 cycles)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateCycles(ViSession vi, ViConstString channelName, ViInt32* cycles)
{
    return api::queryProgram(vi, channelName, {__func__, "Cycles"}, &InstBase::listTemplateCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateInverted(ViSession vi, ViConstString channelName, ViBoolean inverted)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateInverted, inverted);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateInverted(ViSession vi, ViConstString channelName, ViBoolean* inverted)
{
    return api::queryProgram(vi, channelName, {__func__, "Inverted"}, &InstBase::listTemplateInverted, inverted);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePulseWidth(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplatePulseWidth, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplatePulseWidth(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::listTemplatePulseWidth, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplatePulseCount(ViSession vi, ViConstString channelName, ViInt32 count)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplatePulseCount, count);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplatePulseCount(ViSession vi, ViConstString channelName, ViInt32* count)
{
    return api::queryProgram(vi, channelName, {__func__, "Count"}, &InstBase::listTemplatePulseCount, count);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateSymmetry(ViSession vi, ViConstString channelName, ViInt32 percent)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateSymmetry, percent);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateSymmetry(ViSession vi, ViConstString channelName, ViInt32* percent)
{
    return api::queryProgram(vi, channelName, {__func__, "Percent"}, &InstBase::listTemplateSymmetry, percent);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateStart(ViSession vi, ViConstString channelName, ViInt32 start)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateStart, start);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateStart(ViSession vi, ViConstString channelName, ViInt32* start)
{
    return api::queryProgram(vi, channelName, {__func__, "Start"}, &InstBase::listTemplateStart, start);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateExpp(ViSession vi, ViConstString channelName, ViInt32 exponent)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateExpp, exponent);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateExpp(ViSession vi, ViConstString channelName, ViInt32* exponent)
{
    return api::queryProgram(vi, channelName, {__func__, "Exponent"}, &InstBase::listTemplateExpp, exponent);
}

ViStatus _VI_FUNC KVX2800T_ConfigureListTemplateExpr(ViSession vi, ViConstString channelName, ViInt32 exponent)
{
    return api::configureProgram(vi, channelName, &InstBase::setListTemplateExpr, exponent);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplateExpr(ViSession vi, ViConstString channelName, ViInt32* exponent)
{
    return api::queryProgram(vi, channelName, {__func__, "Exponent"}, &InstBase::listTemplateExpr, exponent);
}

ViStatus _VI_FUNC KVX2800T_QueryListTemplatePoints(ViSession vi, ViConstString channelName, ViInt32* points)
{
    return api::queryProgram(vi, channelName, {__func__, "Points"}, &InstBase::listTemplatePoints, points);
}

ViStatus _VI_FUNC KVX2800T_ConstructList(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::constructList, group);
}
