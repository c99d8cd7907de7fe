#pragma once

#include "api/frame.h"
#include "runtime/selector.h"
#include "runtime/source_mode.h"

/// What functions on channels have in common.
namespace api
{

/// Runs `operation(instrument, channel)` for every channel that a selector names, in its order, and then the session's
/// status check. The first status that is not 0 ends the call: a failure is recorded, a warning is not.
template <class Operation>
ViStatus forEachChannel(drivekit::DriverSession& session, ViConstString selector, Operation operation)
{
    drivekit::OutputSelection channels;
    ViStatus status = drivekit::resolveSelector(session, selector, channels);
    if (status < 0)
        return status;
    TSRO::InstBase& instrument = *session.instrument();
    for (const auto& name : channels) {
        status = operation(instrument, drivekit::channelOf(name));
        if (status != VI_SUCCESS)
            return recordFailure(session, status);
    }
    return session.CheckStatus();
}

/// Applies `operation(instrument, channel)` to every channel that a selector names, each in the source mode it needs.
/// Channels before one that fails stay changed, the ones behind it untouched.
template <class Operation>
ViStatus configureChannels(ViSession vi, ViConstString selector, Operation operation)
{
    return framedSession(vi, [&](drivekit::DriverSession& session) {
        return forEachChannel(session, selector, [&](TSRO::InstBase& instrument, ViInt32 channel) {
            const ViStatus status = drivekit::ensureSourceMode(instrument, channel);
            return status == VI_SUCCESS ? operation(instrument, channel) : status;
        });
    });
}

} // namespace api
