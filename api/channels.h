#pragma once

#include "api/checks.h"
#include "api/frame.h"
#include "runtime/selector.h"
#include "runtime/source_mode.h"

/// What functions on channels have in common.
namespace api
{

/// Runs `operation(instrument, channel)` for every channel that a selector names, in its order, and then the session's
/// status check. The first status that is not 0 ends the call: a failure is recorded, a warning is not. `value` is what
/// the operation may refuse.
template <class Operation>
ViStatus forEachChannel(drivekit::DriverSession& session, ViConstString selector, const Refusable& value,
                        Operation operation)
{
    drivekit::OutputSelection channels;
    ViStatus status = drivekit::resolveSelector(session, selector, channels);
    if (status < 0)
        return status;
    TSRO::InstBase& instrument = *session.instrument();
    for (const auto& name : channels) {
        const ViInt32 channel = drivekit::channelOf(name);
        status = operation(instrument, channel);
        if (status != VI_SUCCESS)
            return status < 0 ? recordRefusal(session, channel, value, status) : status;
    }
    return session.CheckStatus();
}

/// Applies `operation(instrument, channel)` to every channel that a selector names, each in the source mode it needs.
/// Channels before one that fails stay changed, the ones behind it untouched.
template <class Operation>
ViStatus configureChannels(ViSession vi, ViConstString selector, const Refusable& value, Operation operation)
{
    return framedSession(vi, [&](drivekit::DriverSession& session) {
        const ViStatus checked = checkFinite(session, value);
        if (checked < 0)
            return checked;
        return forEachChannel(session, selector, value, [&](TSRO::InstBase& instrument, ViInt32 channel) {
            const ViStatus status = drivekit::ensureSourceMode(instrument, channel);
            return status == VI_SUCCESS ? operation(instrument, channel) : status;
        });
    });
}

} // namespace api
