#pragma once

#include "runtime/driver_session.h"

#include <IviCShared.h>

/// The frame that every exported function on a session runs in.
///
/// What the instrument layer throws leaves a function of the instrument class with the session still locked and nothing
/// recorded, unless the session has SafeErrors: then it is recorded, and the status returned. Lack of memory is
/// recorded and returned always. Functions that always return a status stand on guarded_frame.h.
namespace api
{

/// The driver session behind a handle; null for a handle that has none.
inline drivekit::DriverSession* sessionOf(ViSession vi)
{
    ViAddr data = nullptr;
    return IviSession_GetDataPtr(vi, &data) < 0 ? nullptr : static_cast<drivekit::DriverSession*>(data);
}

/// Runs `body()` with the session locked and returns its status. base::kErrorInvalidSessionHandle, unrecorded, for a
/// handle without a session; the lock's own status when it cannot be taken.
template <class Body>
ViStatus framed(ViSession vi, Body body)
{
    if (sessionOf(vi) == nullptr)
        return base::kErrorInvalidSessionHandle;
    const ViStatus locked = IviSession_Lock(vi, VI_NULL);
    if (locked < 0)
        return locked;
    const ViStatus status = body();
    IviSession_Unlock(vi, VI_NULL);
    return status;
}

/// What becomes of an exception.
enum class Exceptions
{
    AsTheSessionHasIt,
    Recorded,
};

/// Records what a catch block has caught: lack of memory for every session, and for one that records exceptions a reply
/// that cannot be read as base::kErrorUnexpectedResponse, a value without a keyword as base::kErrorValueOutOfRange,
/// everything else as base::kErrorCannotRecover. Throws it again for every other session.
ViStatus endWithException(drivekit::DriverSession& session);

/// `body(session)`; an exception ends it as the session has it.
template <class Body>
ViStatus guarded(drivekit::DriverSession& session, Exceptions exceptions, Body body)
{
    session.setRecordsExceptions(exceptions == Exceptions::Recorded || session.settings().safeErrors);
    try {
        return body(session);
    } catch (...) {
        return endWithException(session);
    }
}

/// As framed(), for a body that takes the session. It is looked up once more under the lock: another thread may have
/// closed it while this one waited.
template <Exceptions exceptions = Exceptions::AsTheSessionHasIt, class Body>
ViStatus framedSession(ViSession vi, Body body)
{
    return framed(vi, [&]() -> ViStatus {
        drivekit::DriverSession* const session = sessionOf(vi);
        return session == nullptr ? base::kErrorInvalidSessionHandle : guarded(*session, exceptions, body);
    });
}

/// Records a failure that the instrument object has returned; every other status passes through.
inline ViStatus recordFailure(drivekit::DriverSession& session, ViStatus status)
{
    return status < 0 ? session.ReportInstrumentFailure(status) : status;
}

} // namespace api
