#include "api/KVX2800T.h"
#include "api/program_arguments.h"

using drivekit::DriverSession;
using drivekit::OutputSelection;
using TSRO::InstBase;

ViStatus _VI_FUNC KVX2800T_LoadDelay(ViSession vi, ViConstString channelName, ViInt32 count, const ViBoolean on[],
                                     const ViReal64 seconds[])
{
    const std::string_view function = __func__;
    return api::configure(
        vi, channelName,
        [&](DriverSession& session, const OutputSelection& /*channels*/) {
            ViStatus status = api::checkGroupCount(session, "LoadDelay", count);
            if (status >= 0 && count > 0)
                status = api::checkPointers(vi, function, "On, Seconds", on, seconds);
            for (ViInt32 i = 0; status >= 0 && i < count; ++i)
                status = api::checkNumber(session, seconds[i]);
            return status;
        },
        api::onProgram([&](InstBase& instrument, ViInt32 /*channel*/) {
            ViStatus status = instrument.clearDelayGroups();
            for (ViInt32 i = 0; status == VI_SUCCESS && i < count; ++i)
                status = instrument.setDelayGroup(i + 1, on[i] != VI_FALSE, seconds[i]);
            return status;
        }));
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryProgram(vi, channelName, {__func__, "Enabled"}, &InstBase::delayEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayStatus(ViSession vi, ViConstString channelName, ViInt32* state,
                                            ViReal64* remainingSeconds, ViInt32* group, ViInt32* remainingCycles)
{
    return api::queryProgram(vi, channelName, {__func__, "State, RemainingSeconds, Group, RemainingCycles"},
                             &InstBase::delayStatus, state, remainingSeconds, group, remainingCycles);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayCycles(ViSession vi, ViConstString channelName, ViInt32 cycles)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayCycles(ViSession vi, ViConstString channelName, ViInt32* cycles)
{
    return api::queryProgram(vi, channelName, {__func__, "Cycles"}, &InstBase::delayCycles, cycles);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayEndState(ViSession vi, ViConstString channelName, ViInt32 state)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayEndState, state);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayEndState(ViSession vi, ViConstString channelName, ViInt32* state)
{
    return api::queryProgram(vi, channelName, {__func__, "State"}, &InstBase::delayEndState, state);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayGroupCount(ViSession vi, ViConstString channelName, ViInt32* count)
{
    return api::queryProgram(vi, channelName, {__func__, "Count"}, &InstBase::delayGroupCount, count);
}

ViStatus _VI_FUNC KVX2800T_InsertDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::insertDelayGroup, group);
}

ViStatus _VI_FUNC KVX2800T_DeleteDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::deleteDelayGroup, group);
}

ViStatus _VI_FUNC KVX2800T_ClearDelayGroups(ViSession vi, ViConstString channelName)
{
    return api::configureProgram(vi, channelName, &InstBase::clearDelayGroups);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViBoolean on,
                                               ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayGroup, group, on, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayGroup(ViSession vi, ViConstString channelName, ViInt32 group, ViBoolean* on,
                                           ViReal64* seconds)
{
    return api::query<bool, double>(
        vi, channelName, {__func__, "On, Seconds"},
        api::onProgram([group](InstBase& instrument, ViInt32 /*channel*/, bool& state, double& time) {
            return instrument.delayGroup(group, state, time);
        }),
        on, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayGenerateMode(ViSession vi, ViConstString channelName, ViInt32 mode)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayGenerateMode, mode);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayGenerateMode(ViSession vi, ViConstString channelName, ViInt32* mode)
{
    return api::queryProgram(vi, channelName, {__func__, "Mode"}, &InstBase::delayGenerateMode, mode);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayGeneratePattern(ViSession vi, ViConstString channelName, ViInt32 pattern)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayGeneratePattern, pattern);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayGeneratePattern(ViSession vi, ViConstString channelName, ViInt32* pattern)
{
    return api::queryProgram(vi, channelName, {__func__, "Pattern"}, &InstBase::delayGeneratePattern, pattern);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayGeneratePoints(ViSession vi, ViConstString channelName, ViInt32 points)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayGeneratePoints, points);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayGeneratePoints(ViSession vi, ViConstString channelName, ViInt32* points)
{
    return api::queryProgram(vi, channelName, {__func__, "Points"}, &InstBase::delayGeneratePoints, points);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayOnTime(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayOnTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayOnTime(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::delayOnTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayOffTime(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayOffTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayOffTime(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::delayOffTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayBaseTime(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayBaseTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayBaseTime(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::delayBaseTime, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConfigureDelayTimeStep(ViSession vi, ViConstString channelName, ViReal64 seconds)
{
    return api::configureProgram(vi, channelName, &InstBase::setDelayTimeStep, seconds);
}

ViStatus _VI_FUNC KVX2800T_QueryDelayTimeStep(ViSession vi, ViConstString channelName, ViReal64* seconds)
{
    return api::queryProgram(vi, channelName, {__func__, "Seconds"}, &InstBase::delayTimeStep, seconds);
}

ViStatus _VI_FUNC KVX2800T_ConstructDelay(ViSession vi, ViConstString channelName, ViInt32 group)
{
    return api::configureProgram(vi, channelName, &InstBase::constructDelay, group);
}
