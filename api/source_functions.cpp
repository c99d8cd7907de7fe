#include "api/KVX2800T.h"
#include "api/guarded_frame.h"

using drivekit::DriverSession;
using TSRO::InstBase;
using TSRO::SourceMode;

ViStatus _VI_FUNC KVX2800T_ConfigureSourceMode(ViSession vi, ViInt32 mode)
{
    return api::guardedSession(vi, [mode](DriverSession& session) {
        ViStatus status = api::checkSetting<SourceMode>(session, mode);
        if (status < 0)
            return status;
        status = drivekit::changeSourceMode(*session.instrument(), static_cast<SourceMode>(mode));
        return status == VI_SUCCESS ? session.CheckStatus() : api::recordOutcome(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_QuerySourceMode(ViSession vi, ViInt32* mode)
{
    return api::queryInstrument(vi, {__func__, "Mode"}, &InstBase::sourceMode, mode);
}

ViStatus _VI_FUNC KVX2800T_ConfigureBleeder(ViSession vi, ViBoolean enabled)
{
    return api::configureInstrument(vi, &InstBase::setBleEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryBleeder(ViSession vi, ViBoolean* enabled)
{
    return api::queryInstrument(vi, {__func__, "Enabled"}, &InstBase::bleEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_SelectChannel(ViSession vi, ViConstString channelName)
{
    return api::guardedSession(vi, [channelName](DriverSession& session) {
        ViInt32 channel = 0;
        ViStatus status = api::selectChannel(session, channelName, channel);
        if (status < 0)
            return status;
        status = session.instrument()->selectChannel(channel);
        return status == VI_SUCCESS ? session.CheckStatus() : api::recordOutcome(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_QuerySelectedChannel(ViSession vi, ViInt32* channel)
{
    return api::queryInstrument(vi, {__func__, "Channel"}, &InstBase::selectedChannel, channel);
}
