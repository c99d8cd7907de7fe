#include "api/frame.h"

#include "base/failures.h"

#include <exception>
#include <new>
#include <stdexcept>

namespace api
{
namespace
{

using drivekit::DriverSession;

/// The failure of a reader of replies, or of a table without the value that was asked for.
ViStatus recordOutOfRange(DriverSession& session, std::string_view what)
{
    return what == base::kInvalidKey ? session.ReportError(base::kErrorValueOutOfRange) : session.ReportUnreadReply();
}

/// For a session that records exceptions.
ViStatus recordException(DriverSession& session)
{
    try {
        throw;
    } catch (const std::out_of_range& error) {
        return recordOutOfRange(session, error.what());
    } catch (const std::invalid_argument&) {
        return session.ReportUnreadReply();
    } catch (const std::exception& error) {
        return session.ReportErrorWithElaboration(base::kErrorCannotRecover, drivekit::elaborations::kThrown,
                                                  {error.what()});
    } catch (...) {
        return session.ReportError(base::kErrorCannotRecover);
    }
}

} // namespace

ViStatus endWithException(DriverSession& session)
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return session.ReportError(base::kErrorOutOfMemory);
    } catch (...) {
        if (session.recordsExceptions())
            return recordException(session);
        throw;
    }
}

} // namespace api
