#include "api/KVX2800T.h"
#include "api/guarded_frame.h"

using drivekit::DriverSession;
using TSRO::InstBase;

namespace
{

using Meter = ViStatus (InstBase::*)(ViInt32 channel, double& value);

/// Null for a type that there is no meter for.
Meter meterOf(ViInt32 measurementType)
{
    switch (measurementType) {
    case KVX2800T_VAL_MEASURE_CURRENT:
        return &InstBase::measureCurrent;
    case KVX2800T_VAL_MEASURE_VOLTAGE:
        return &InstBase::measureVoltage;
    case KVX2800T_VAL_MEASURE_POWER:
        return &InstBase::measurePower;
    default:
        return nullptr;
    }
}

/// Where the caller of KVX2800T_MeasureAll wants the readings.
struct Readings
{
    ViReal64* volts;
    ViReal64* amperes;
    ViReal64* watts;
    ViInt32* count;
};

ViStatus measureEach(DriverSession& session, const drivekit::OutputSelection& channels, ViInt32 size,
                     const Readings& readings)
{
    for (const auto& name : channels) {
        const ViInt32 i = *readings.count;
        if (i == size)
            return base::kWarnArrayTruncated;
        const ViStatus status = api::readInto<double, double, double>(
            session,
            [&](double& volts, double& amperes, double& watts) {
                return session.instrument()->measureAll(drivekit::channelOf(name), volts, amperes, watts);
            },
            readings.volts + i, readings.amperes + i, readings.watts + i);
        if (status != VI_SUCCESS)
            return status;
        ++*readings.count;
    }
    return VI_SUCCESS;
}

} // namespace

ViStatus _VI_FUNC KVX2800T_MeasureOutput(ViSession vi, ViConstString channelName, ViInt32 measurementType,
                                         ViReal64* measurement)
{
    return api::query<double>(
        vi, channelName, {__func__, "Measurement"},
        [measurementType](InstBase& instrument, ViInt32 channel, double& value) -> ViStatus {
            const auto meter = meterOf(measurementType);
            return meter == nullptr ? base::kErrorValueOutOfRange : (instrument.*meter)(channel, value);
        },
        measurement);
}

ViStatus _VI_FUNC KVX2800T_MeasureAll(ViSession vi, ViConstString channelName, ViInt32 size, ViReal64 volts[],
                                      ViReal64 amperes[], ViReal64 watts[], ViInt32* count)
{
    const std::string_view function = __func__;
    return api::guardedSession(vi, [&](DriverSession& session) {
        const ViStatus status =
            api::checkPointers(vi, function, "Volts, Amperes, Watts, Count", volts, amperes, watts, count);
        if (status < 0)
            return status;
        *count = 0;
        if (size < 0)
            return api::refuseCount(session, size, "MeasureAll", "Size");
        drivekit::OutputSelection channels;
        const ViStatus selected = drivekit::resolveSelector(session, channelName, channels);
        return selected < 0 ? selected : measureEach(session, channels, size, {volts, amperes, watts, count});
    });
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentRange(ViSession vi, ViConstString channelName, ViInt32 range)
{
    return api::configureChannel(vi, channelName, &InstBase::setCurrentRange, range);
}

ViStatus _VI_FUNC KVX2800T_QueryCurrentRange(ViSession vi, ViConstString channelName, ViInt32* range)
{
    return api::queryChannel(vi, channelName, {__func__, "Range"}, &InstBase::currentRange, range);
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentRate(ViSession vi, ViConstString channelName, ViInt32 rate)
{
    return api::configureChannel(vi, channelName, &InstBase::setCurrentRate, rate);
}

ViStatus _VI_FUNC KVX2800T_QueryCurrentRate(ViSession vi, ViConstString channelName, ViInt32* rate)
{
    return api::queryChannel(vi, channelName, {__func__, "Rate"}, &InstBase::currentRate, rate);
}
