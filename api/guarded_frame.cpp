#include "api/guarded_frame.h"

namespace api
{

using drivekit::DriverSession;

ViStatus recordOutcome(DriverSession& session, ViStatus status)
{
    return status == base::kErrorUnexpectedResponse ? session.ReportUnreadReply() : recordFailure(session, status);
}

ViStatus selectChannel(DriverSession& session, ViConstString selector, ViInt32& channel)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    const ViStatus status = drivekit::resolveSingleSelector(session, selector, name);
    if (status >= 0)
        channel = drivekit::channelOf(name);
    return status;
}

} // namespace api
