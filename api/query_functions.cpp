#include "api/KVX2800T.h"

#include "api/arguments.h"
#include "api/channels.h"

#include <cstdint>

using drivekit::DriverSession;
using TSRO::InstBase;

namespace
{

// Bits of a channel's questionable condition.
constexpr ViInt32 kConstantCurrentBit = 0x1;
constexpr ViInt32 kConstantVoltageBit = 0x2;

/// Runs `query(instrument, channel, *output)` for every channel that a selector names. The output holds the value of
/// the last channel that was read.
template <class Output, class Query>
ViStatus queryChannels(ViSession vi, ViConstString channelName, std::string_view function, std::string_view parameter,
                       Output* output, Query query)
{
    return api::framedSession(vi, [&](DriverSession& session) {
        const ViStatus status = api::checkPointers(vi, function, parameter, output);
        if (status < 0)
            return status;
        return api::forEachChannel(session, channelName, [&](InstBase& instrument, ViInt32 channel) {
            return query(instrument, channel, *output);
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

ViStatus queryOutputState(InstBase& instrument, ViInt32 channel, ViInt32 outputState, ViBoolean& inState)
{
    switch (outputState) {
    case KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE:
        return queryCondition(instrument, channel, kConstantVoltageBit, inState);
    case KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT:
        return queryCondition(instrument, channel, kConstantCurrentBit, inState);
    case KVX2800T_VAL_OUTPUT_OVER_VOLTAGE:
    case KVX2800T_VAL_OUTPUT_OVER_CURRENT:
    case KVX2800T_VAL_OUTPUT_UNREGULATED:
        // The instrument does not tell.
        inState = VI_FALSE;
        break;
    default:
        break;
    }
    return VI_SUCCESS;
}

/// The levels that are set; the channel's meters are not asked.
ViStatus measure(InstBase& instrument, ViInt32 channel, ViInt32 measurementType, ViReal64& measurement)
{
    switch (measurementType) {
    case KVX2800T_VAL_MEASURE_CURRENT:
        return instrument.currentLevel(channel, measurement);
    case KVX2800T_VAL_MEASURE_VOLTAGE:
        return instrument.voltageLevel(channel, measurement);
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
    return queryChannels(vi, channelName, __func__, "MaxCurrentLimit", maxCurrentLimit,
                         [](InstBase& instrument, ViInt32 channel, ViReal64& limit) -> ViStatus {
                             limit = instrument.channelLimits(channel).currentMax;
                             return VI_SUCCESS;
                         });
}

ViStatus _VI_FUNC KVX2800T_QueryMaxVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 /*currentLimit*/,
                                                ViReal64* maxVoltageLevel)
{
    return queryChannels(vi, channelName, __func__, "MaxVoltageLevel", maxVoltageLevel,
                         [](InstBase& instrument, ViInt32 channel, ViReal64& level) -> ViStatus {
                             level = instrument.channelLimits(channel).voltageMax;
                             return VI_SUCCESS;
                         });
}

ViStatus _VI_FUNC KVX2800T_QueryOutputState(ViSession vi, ViConstString channelName, ViInt32 outputState,
                                            ViBoolean* inState)
{
    return queryChannels(vi, channelName, __func__, "inState", inState,
                         [outputState](InstBase& instrument, ViInt32 channel, ViBoolean& state) {
                             return queryOutputState(instrument, channel, outputState, state);
                         });
}

ViStatus _VI_FUNC KVX2800T_Measure(ViSession vi, ViConstString channelName, ViInt32 measurementType,
                                   ViReal64* measurement)
{
    return queryChannels(vi, channelName, __func__, "Measurement", measurement,
                         [measurementType](InstBase& instrument, ViInt32 channel, ViReal64& value) {
                             return measure(instrument, channel, measurementType, value);
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
