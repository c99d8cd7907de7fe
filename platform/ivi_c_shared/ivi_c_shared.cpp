#include "base/undestroyed.h"
#include "platform/ivi_c_shared/error_record.h"
#include "platform/ivi_c_shared/session_table.h"

#include <IviCShared.h>

#include <new>
#include <system_error>

namespace
{

using ivi_c_shared::ErrorRecord;
using ivi_c_shared::SessionTable;

// The widths that drivers were compiled with.
static_assert(sizeof(ViInt32) == 4);
static_assert(sizeof(ViStatus) == 4);
static_assert(sizeof(ViSession) == 4);
static_assert(sizeof(ViBoolean) == 2);

/// Drivers may call in from their own clean-up.
constinit base::Undestroyed<SessionTable> table;

SessionTable& sessions()
{
    return table.object;
}

/// The calling thread's record, null without one. A plain pointer, which can still be read when the owner is gone.
thread_local ErrorRecord* currentError = nullptr;

/// Owner of the record that all IVI-C drivers of a thread share.
class ThreadError
{
public:
    ThreadError() noexcept { currentError = &record_; }
    ~ThreadError() { currentError = nullptr; }
    ThreadError(const ThreadError&) = delete;
    ThreadError& operator=(const ThreadError&) = delete;

    /// The calling thread's record. Null once the thread's variables are gone, which on the main thread is before the
    /// static clean-up of the drivers.
    static ErrorRecord* current()
    {
        static thread_local ThreadError owner;
        return currentError;
    }

private:
    ErrorRecord record_;
};

/// Runs action(record) on the thread's record; on an empty one that nobody keeps when the thread has none any more.
template <class Action>
ViStatus withThreadError(Action action)
{
    ErrorRecord unkept;
    ErrorRecord* const kept = ThreadError::current();
    return action(kept == nullptr ? unkept : *kept);
}

/// The frame of every function: no exception leaves the library.
template <class Action>
ViStatus guarded(Action action) noexcept
{
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return IVI_ERROR_OUT_OF_MEMORY;
    } catch (const std::system_error&) {
        return IVI_ERROR_CANNOT_CREATE_LOCK;
    }
}

} // namespace

ViStatus _VI_FUNC IviSession_New(ViSession* handle)
{
    if (handle == nullptr)
        return IVI_ERROR_NULL_POINTER;
    return guarded([handle] { return sessions().create(*handle); });
}

ViStatus _VI_FUNC IviSession_Dispose(ViSession handle)
{
    return guarded([handle] { return sessions().dispose(handle); });
}

ViStatus _VI_FUNC IviSession_SetDataPtr(ViSession handle, ViAddr dataPtr)
{
    return guarded([handle, dataPtr] { return sessions().setData(handle, dataPtr); });
}

ViStatus _VI_FUNC IviSession_GetDataPtr(ViSession handle, ViAddr* dataPtr)
{
    if (dataPtr == nullptr)
        return IVI_ERROR_NULL_POINTER;
    return guarded([handle, dataPtr] { return sessions().getData(handle, *dataPtr); });
}

ViStatus _VI_FUNC IviSession_Lock(ViSession handle, ViBoolean* hasLock)
{
    const bool wanted = hasLock == nullptr || *hasLock == VI_FALSE;
    const ViStatus status = guarded([handle, wanted] { return sessions().lock(handle, wanted); });
    if (status == IVI_SUCCESS && hasLock != nullptr)
        *hasLock = VI_TRUE;
    return status;
}

ViStatus _VI_FUNC IviSession_Unlock(ViSession handle, ViBoolean* hasLock)
{
    const bool wanted = hasLock == nullptr || *hasLock != VI_FALSE;
    const ViStatus status = guarded([handle, wanted] { return sessions().unlock(handle, wanted); });
    if (status == IVI_SUCCESS && hasLock != nullptr)
        *hasLock = VI_FALSE;
    return status;
}

ViStatus _VI_FUNC IviSession_SetError(ViSession handle, ViStatus code, ViConstString description)
{
    return guarded([handle, code, description] {
        const ViStatus mirrored =
            withThreadError([=](ErrorRecord& record) { return record.update(code, description); });
        const ViStatus kept = handle == VI_NULL ? IVI_SUCCESS : sessions().setError(handle, code, description);
        return kept < 0 ? kept : mirrored;
    });
}

ViStatus _VI_FUNC IviSession_GetError(ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar description[])
{
    return guarded([=] {
        if (handle == VI_NULL)
            return withThreadError([=](ErrorRecord& record) { return record.take(bufferSize, code, description); });
        return sessions().takeError(handle, bufferSize, code, description);
    });
}

ViStatus _VI_FUNC IviSession_ClearError(ViSession handle)
{
    return guarded([handle] {
        if (handle != VI_NULL)
            return sessions().clearError(handle);
        return withThreadError([](ErrorRecord& record) {
            record.clear();
            return IVI_SUCCESS;
        });
    });
}
