#include "api/KVX2800T.h"
#include "api/condition_bits.h"
#include "api/guarded_frame.h"

using TSRO::InstBase;

ViStatus _VI_FUNC KVX2800T_ClearStatus(ViSession vi)
{
    return api::configureInstrument(vi, &InstBase::clearStatus);
}

ViStatus _VI_FUNC KVX2800T_QueryEventStatus(ViSession vi, ViInt32* eventStatus)
{
    return api::queryInstrument(vi, {__func__, "EventStatus"}, &InstBase::eventStatus, eventStatus);
}

ViStatus _VI_FUNC KVX2800T_QueryQuestionableCondition(ViSession vi, ViConstString channelName, ViInt32* condition)
{
    return api::queryChannel(vi, channelName, {__func__, "Condition"}, &InstBase::questionableCondition, condition);
}

ViStatus _VI_FUNC KVX2800T_QueryQuestionableEvent(ViSession vi, ViConstString channelName, ViInt32* event)
{
    return api::queryChannel(vi, channelName, {__func__, "Event"}, &InstBase::questionableEvent, event);
}

ViStatus _VI_FUNC KVX2800T_QueryProtectionState(ViSession vi, ViConstString channelName, ViBoolean* overVoltage,
                                                ViBoolean* overCurrent)
{
    return api::query<bool, bool>(
        vi, channelName, {__func__, "OverVoltage, OverCurrent"},
        [](InstBase& instrument, ViInt32 channel, bool& voltage, bool& current) {
            ViInt32 condition = 0;
            const ViStatus status = instrument.questionableCondition(channel, condition);
            voltage = (condition & api::kOverVoltageBit) != 0;
            current = (condition & api::kOverCurrentBit) != 0;
            return status;
        },
        overVoltage, overCurrent);
}

ViStatus _VI_FUNC KVX2800T_QueryRegulationState(ViSession vi, ViConstString channelName, ViInt32* state)
{
    return api::queryChannel(vi, channelName, {__func__, "State"}, &InstBase::regulationState, state);
}
