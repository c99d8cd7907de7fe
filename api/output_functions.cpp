#include "api/KVX2800T.h"

#include "api/frame.h"
#include "runtime/selector.h"
#include "runtime/source_mode.h"

using drivekit::DriverSession;
using TSRO::InstBase;

namespace
{

/// Applies an operation to every channel that a selector names, each in the source mode it needs. Ends at the first
/// status that is not 0: the channels before it stay changed, the ones behind it untouched.
template <class Operation>
ViStatus configureChannels(ViSession vi, ViConstString channelName, Operation operation)
{
    return api::framedSession(vi, [&](DriverSession& session) {
        drivekit::OutputSelection channels;
        ViStatus status = drivekit::resolveSelector(session, channelName, channels);
        if (status < 0)
            return status;
        InstBase& instrument = *session.instrument();
        for (const auto& name : channels) {
            const ViInt32 channel = drivekit::channelOf(name);
            status = drivekit::ensureSourceMode(instrument, channel);
            if (status == VI_SUCCESS)
                status = operation(instrument, channel);
            if (status != VI_SUCCESS)
                return api::recordFailure(session, status);
        }
        return session.CheckStatus();
    });
}

} // namespace

ViStatus _VI_FUNC KVX2800T_ConfigureOutputEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return configureChannels(vi, channelName, [enabled](InstBase& instrument, ViInt32 channel) {
        return instrument.setOutputEnabled(channel, enabled != VI_FALSE);
    });
}

ViStatus _VI_FUNC KVX2800T_ConfigureVoltageLevel(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return configureChannels(vi, channelName, [level](InstBase& instrument, ViInt32 channel) {
        return instrument.setVoltageLevel(channel, level);
    });
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentLimit(ViSession vi, ViConstString channelName, ViInt32 behavior,
                                                 ViReal64 limit)
{
    return configureChannels(vi, channelName, [behavior, limit](InstBase& instrument, ViInt32 channel) {
        ViStatus status = instrument.setCurrentLevel(channel, limit);
        if (status == VI_SUCCESS)
            status = instrument.setCurrentProtectionLevel(channel, limit);
        if (status == VI_SUCCESS)
            status = instrument.setCurrentProtectionEnabled(channel, behavior == KVX2800T_VAL_CURRENT_TRIP);
        return status;
    });
}
