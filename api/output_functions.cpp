#include "api/KVX2800T.h"

#include "api/channel_settings.h"

using drivekit::DriverSession;
using Kind = api::Refusable::Kind;
using TSRO::InstBase;

namespace
{

/// For functions of the instrument class that the instrument has no command for: only the channel names are checked.
ViStatus checkChannels(DriverSession& session, ViConstString channelName)
{
    drivekit::OutputSelection channels;
    return drivekit::resolveSelector(session, channelName, channels);
}

} // namespace

ViStatus _VI_FUNC KVX2800T_ConfigureOutputEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::setEach<&InstBase::setOutputEnabled>(vi, channelName, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigureVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::setEach<&InstBase::setVoltageLevel, Kind::Volts>(vi, channelName, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentLimit(ViSession vi, ViConstString channelName, ViInt32 behavior,
                                                 ViReal64 limit)
{
    return api::configureChannels(vi, channelName, {.kind = Kind::Amperes, .level = limit},
                                  [behavior, limit](InstBase& instrument, ViInt32 channel) {
                                      const ViStatus status = api::setCurrentLimit(instrument, channel, limit);
                                      if (status != VI_SUCCESS)
                                          return status;
                                      return instrument.setCurrentProtectionEnabled(
                                          channel, behavior == KVX2800T_VAL_CURRENT_TRIP);
                                  });
}

ViStatus _VI_FUNC KVX2800T_ConfigureOVP(ViSession vi, ViConstString channelName, ViBoolean enabled, ViReal64 limit)
{
    return api::configureChannels(vi, channelName, {.kind = Kind::Volts, .level = limit},
                                  [enabled, limit](InstBase& instrument, ViInt32 channel) {
                                      const ViStatus status = instrument.setVoltageProtectionLevel(channel, limit);
                                      if (status != VI_SUCCESS)
                                          return status;
                                      return instrument.setVoltageProtectionEnabled(channel, enabled != VI_FALSE);
                                  });
}

ViStatus _VI_FUNC KVX2800T_ConfigureOutputRange(ViSession vi, ViConstString channelName, ViInt32 /*rangeType*/,
                                                ViReal64 /*range*/)
{
    return api::framedSession(vi, [&](DriverSession& session) { return checkChannels(session, channelName); });
}

ViStatus _VI_FUNC KVX2800T_ResetOutputProtection(ViSession vi, ViConstString channelName)
{
    return api::framedSession(vi, [&](DriverSession& session) {
        const ViStatus status = checkChannels(session, channelName);
        // No command clears a trip: a session that wants the truth is told.
        const bool pretends = status < 0 || !session.settings().trueReadings;
        return pretends ? status : session.ReportError(base::kErrorOperationNotSupported);
    });
}
