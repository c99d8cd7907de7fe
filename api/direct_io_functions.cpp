#include "api/KVX2800T.h"
#include "api/guarded_frame.h"

namespace
{

/// VISA counts in 32 bits, and a terminator may be added.
constexpr ViInt64 kMostBytes = 0xFFFFFFFE;

/// VISA's completion codes end here; its errors keep their code, for which the driver has no message of its own.
ViStatus recordTransfer(drivekit::DriverSession& session, ViStatus status)
{
    if (status == base::kErrorOperationNotSupported)
        return session.ReportError(status);
    if (status < 0)
        return session.ReportTransferFailure(status);
    return status == base::kWarnArrayTruncated ? status : VI_SUCCESS;
}

} // namespace

ViStatus _VI_FUNC KVX2800T_viRead(ViSession DriverSession, ViInt64 BufferSize, ViByte Buffer[], ViInt64* ReturnCount)
{
    const std::string_view function = __func__;
    return api::guardedSession(DriverSession, [&](drivekit::DriverSession& session) {
        ViStatus status = api::checkPointers(DriverSession, function, "Buffer, ReturnCount", Buffer, ReturnCount);
        if (status < 0)
            return status;
        *ReturnCount = 0;
        if (BufferSize < 1)
            return api::refuseCount(session, BufferSize, "viRead", "BufferSize");
        std::size_t count = 0;
        status = session.instrument()->readMessage({Buffer, static_cast<std::size_t>(BufferSize)}, count);
        *ReturnCount = static_cast<ViInt64>(count);
        return recordTransfer(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_viWrite(ViSession DriverSession, ViByte Buffer[], ViInt64 Count, ViInt64* ReturnCount)
{
    const std::string_view function = __func__;
    return api::guardedSession(DriverSession, [&](drivekit::DriverSession& session) {
        ViStatus status = api::checkPointers(DriverSession, function, "Buffer, ReturnCount", Buffer, ReturnCount);
        if (status < 0)
            return status;
        *ReturnCount = 0;
        if (Count < 0 || Count > kMostBytes)
            return api::refuseCount(session, Count, "viWrite", "Count");
        const auto size = static_cast<std::size_t>(Count);
        status = session.instrument()->writeMessage({reinterpret_cast<const char*>(Buffer), size});
        if (status >= 0)
            *ReturnCount = Count;
        return recordTransfer(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_GetNextMessageRecord(ViSession vi, ViInt32 bufferSize, ViChar record[])
{
    const std::string_view function = __func__;
    return api::guardedSession(vi, [&](drivekit::DriverSession& session) {
        const ViStatus status = bufferSize == 0 ? VI_SUCCESS : api::checkPointers(vi, function, "Record", record);
        if (status < 0)
            return status;
        const auto& log = session.messageLog();
        const ViStatus given = api::giveText(log == nullptr ? "" : log->oldest(), bufferSize, record);
        if (log != nullptr && bufferSize != 0)
            log->removeOldest();
        return given;
    });
}

ViStatus _VI_FUNC KVX2800T_GetIoTimeout(ViSession vi, ViInt32* milliseconds)
{
    const std::string_view function = __func__;
    return api::guardedSession(vi, [&](drivekit::DriverSession& session) {
        const ViStatus status = api::checkPointers(vi, function, "Milliseconds", milliseconds);
        if (status >= 0)
            *milliseconds = session.instrument()->ioTimeout();
        return status;
    });
}

ViStatus _VI_FUNC KVX2800T_SetIoTimeout(ViSession vi, ViInt32 milliseconds)
{
    return api::guardedSession(vi, [milliseconds](drivekit::DriverSession& session) {
        if (milliseconds < 0)
            return session.ReportError(base::kErrorValueOutOfRange);
        return api::recordFailure(session, session.instrument()->setIoTimeout(milliseconds));
    });
}
