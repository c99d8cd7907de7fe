#include "api/KVX2800T.h"

#include "api/arguments.h"
#include "api/channels.h"
#include "api/condition_bits.h"

#include <cstdint>

using drivekit::DriverSession;
using TSRO::InstBase;

namespace
{

/// Runs `query(session, channel, *output)` for every channel that a selector names. The output holds the value of the
/// last channel that was read. `asked` is what the query may refuse.
template <class Output, class Query>
ViStatus queryChannels(ViSession vi, ViConstString channelName, std::string_view function, std::string_view parameter,
                       Output* output, const api::Refusable& asked, Query query)
{
    return api::framedSession(vi, [&](DriverSession& session) {
        const ViStatus status = api::checkPointers(vi, function, parameter, output);
        if (status < 0)
            return status;
        return api::forEachChannel(session, channelName, asked, [&](InstBase& /*instrument*/, ViInt32 channel) {
            return query(session, channel, *output);
        });
    });
}

/// Whether a channel's questionable condition has a bit set.
ViStatus queryCondition(InstBase& instrument, ViInt32 channel, ViInt32 bit, ViBoolean& isSet)
{
    ViInt32 condition = 0;
    const ViStatus status = instrument.questionableCondition(channel, condition);
    if (status == VI_SUCCESS)
        isSet = (condition & bit) != 0 ? VI_TRUE : VI_FALSE;
    return status;
}

/// Whether an output is on although it holds neither its voltage nor its current and has not tripped.
ViStatus queryUnregulated(InstBase& instrument, ViInt32 channel, ViBoolean& isUnregulated)
{
    constexpr ViInt32 kEveryState =
        api::kConstantCurrentBit | api::kConstantVoltageBit | api::kOverVoltageBit | api::kOverCurrentBit;
    ViBoolean isInOther = VI_FALSE;
    ViStatus status = queryCondition(instrument, channel, kEveryState, isInOther);
    bool isOn = false;
    if (status == VI_SUCCESS)
        status = instrument.outputEnabled(channel, isOn);
    if (status == VI_SUCCESS)
        isUnregulated = isOn && isInOther == VI_FALSE ? VI_TRUE : VI_FALSE;
    return status;
}

/// The states that the class has no query of the instrument for.
ViStatus queryFurtherState(InstBase& instrument, ViInt32 channel, ViInt32 outputState, ViBoolean& inState)
{
    switch (outputState) {
    case KVX2800T_VAL_OUTPUT_OVER_VOLTAGE:
        return queryCondition(instrument, channel, api::kOverVoltageBit, inState);
    case KVX2800T_VAL_OUTPUT_OVER_CURRENT:
        return queryCondition(instrument, channel, api::kOverCurrentBit, inState);
    default:
        return queryUnregulated(instrument, channel, inState);
    }
}

ViStatus queryOutputState(DriverSession& session, ViInt32 channel, ViInt32 outputState, ViBoolean& inState)
{
    InstBase& instrument = *session.instrument();
    switch (outputState) {
    case KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE:
        return queryCondition(instrument, channel, api::kConstantVoltageBit, inState);
    case KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT:
        return queryCondition(instrument, channel, api::kConstantCurrentBit, inState);
    case KVX2800T_VAL_OUTPUT_OVER_VOLTAGE:
    case KVX2800T_VAL_OUTPUT_OVER_CURRENT:
    case KVX2800T_VAL_OUTPUT_UNREGULATED:
        if (session.settings().trueReadings)
            return queryFurtherState(instrument, channel, outputState, inState);
        inState = VI_FALSE;
        break;
    default:
        break;
    }
    return VI_SUCCESS;
}

/// The levels that are set; the channel's meters are asked only by sessions with true readings.
ViStatus measure(DriverSession& session, ViInt32 channel, ViInt32 measurementType, ViReal64& measurement)
{
    InstBase& instrument = *session.instrument();
    const bool asksMeters = session.settings().trueReadings;
    switch (measurementType) {
    case KVX2800T_VAL_MEASURE_CURRENT:
        return asksMeters ? instrument.measureCurrent(channel, measurement)
                          : instrument.currentLevel(channel, measurement);
    case KVX2800T_VAL_MEASURE_VOLTAGE:
        return asksMeters ? instrument.measureVoltage(channel, measurement)
                          : instrument.voltageLevel(channel, measurement);
    default:
        return base::kErrorValueOutOfRange;
    }
}

/// `position` counts from 0.
ViStatus copyChannelName(DriverSession& session, std::int64_t position, ViInt32 bufferSize, ViChar name[])
{
    using Outputs = drivekit::RepCapBase<drivekit::OutputChannel>;
    if (position < 0 || position >= static_cast<std::int64_t>(Outputs::kCount))
        return session.ReportError(base::kErrorInvalidValue,
                                   {drivekit::DecimalArgument(position), "GetOutputChannelName", "Index"});
    if (bufferSize > 0)
        api::copyText(name, static_cast<std::size_t>(bufferSize),
                      Outputs::physicalName(static_cast<std::size_t>(position)).text());
    return VI_SUCCESS;
}

} // namespace

ViStatus _VI_FUNC KVX2800T_QueryMaxCurrentLimit(ViSession vi, ViConstString channelName, ViReal64 /*voltageLevel*/,
                                                ViReal64* maxCurrentLimit)
{
    return queryChannels(vi, channelName, __func__, "MaxCurrentLimit", maxCurrentLimit, {},
                         [](DriverSession& session, ViInt32 channel, ViReal64& limit) -> ViStatus {
                             limit = session.instrument()->channelLimits(channel).currentMax;
                             return VI_SUCCESS;
                         });
}

ViStatus _VI_FUNC KVX2800T_QueryMaxVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 /*currentLimit*/,
                                                ViReal64* maxVoltageLevel)
{
    return queryChannels(vi, channelName, __func__, "MaxVoltageLevel", maxVoltageLevel, {},
                         [](DriverSession& session, ViInt32 channel, ViReal64& level) -> ViStatus {
                             level = session.instrument()->channelLimits(channel).voltageMax;
                             return VI_SUCCESS;
                         });
}

ViStatus _VI_FUNC KVX2800T_QueryOutputState(ViSession vi, ViConstString channelName, ViInt32 outputState,
                                            ViBoolean* inState)
{
    return queryChannels(vi, channelName, __func__, "inState", inState, {},
                         [outputState](DriverSession& session, ViInt32 channel, ViBoolean& state) {
                             return queryOutputState(session, channel, outputState, state);
                         });
}

ViStatus _VI_FUNC KVX2800T_Measure(ViSession vi, ViConstString channelName, ViInt32 measurementType,
                                   ViReal64* measurement)
{
    return queryChannels(vi, channelName, __func__, "Measurement", measurement,
                         {.kind = api::Refusable::Kind::Member, .number = measurementType},
                         [measurementType](DriverSession& session, ViInt32 channel, ViReal64& value) {
                             return measure(session, channel, measurementType, value);
                         });
}

ViStatus _VI_FUNC KVX2800T_GetChannelName(ViSession vi, ViInt32 index, ViInt32 bufferSize, ViChar name[])
{
    const std::string_view function = __func__;
    return api::framedSession(vi, [&](DriverSession& session) {
        const ViStatus status = api::checkPointers(vi, function, "Name", name);
        return status < 0 ? status : copyChannelName(session, std::int64_t{index} - 1, bufferSize, name);
    });
}
