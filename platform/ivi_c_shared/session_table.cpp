#include "platform/ivi_c_shared/session_table.h"

#include <algorithm>
#include <limits>

namespace ivi_c_shared
{

const std::shared_ptr<SessionTable::Session>* SessionTable::Shard::find(ViSession handle) const
{
    // Handles are spread over the shards, most of which have one session at most.
    if (!sessions.empty() && sessions.front().handle == handle)
        return &sessions.front().session;
    const auto place = std::lower_bound(sessions.begin(), sessions.end(), handle,
                                        [](const Entry& entry, ViSession wanted) { return entry.handle < wanted; });
    return place == sessions.end() || place->handle != handle ? nullptr : &place->session;
}

template <class Action>
ViStatus SessionTable::withSession(ViSession handle, Action action)
{
    Shard& shard = shardOf(handle);
    const std::lock_guard guard(shard.lock);
    const auto* const found = shard.find(handle);
    return found == nullptr ? IVI_ERROR_INVALID_SESSION_HANDLE : action(**found);
}

ViStatus SessionTable::create(ViSession& handle)
{
    auto session = std::make_shared<Session>();
    const std::uint64_t number = ++lastHandle_;
    if (number > std::numeric_limits<ViSession>::max())
        return IVI_ERROR_OUT_OF_MEMORY;
    const auto fresh = static_cast<ViSession>(number);
    Shard& shard = shardOf(fresh);
    const std::lock_guard guard(shard.lock);
    // Handles that others have been given meanwhile may be larger.
    const auto place = std::find_if(shard.sessions.begin(), shard.sessions.end(),
                                    [fresh](const Entry& entry) { return entry.handle > fresh; });
    shard.sessions.insert(place, {fresh, std::move(session)});
    dataCache_.add(fresh);
    handle = fresh;
    return IVI_SUCCESS;
}

ViStatus SessionTable::dispose(ViSession handle)
{
    Shard& shard = shardOf(handle);
    const std::lock_guard guard(shard.lock);
    const auto* const found = shard.find(handle);
    if (found == nullptr)
        return IVI_ERROR_INVALID_SESSION_HANDLE;
    dataCache_.remove(handle);
    (*found)->disposed = true;
    (*found)->changed.notify_all();
    std::erase_if(shard.sessions, [handle](const Entry& entry) { return entry.handle == handle; });
    return IVI_SUCCESS;
}

ViStatus SessionTable::setData(ViSession handle, ViAddr data)
{
    return withSession(handle, [this, handle, data](Session& session) {
        session.data = data;
        dataCache_.set(handle, data);
        return IVI_SUCCESS;
    });
}

ViStatus SessionTable::lookUpData(ViSession handle, ViAddr& data)
{
    return withSession(handle, [&data](const Session& session) {
        data = session.data;
        return IVI_SUCCESS;
    });
}

ViStatus SessionTable::lock(ViSession handle, bool wanted)
{
    Shard& shard = shardOf(handle);
    const std::lock_guard guard(shard.lock);
    const auto* const found = shard.find(handle);
    if (found == nullptr)
        return IVI_ERROR_INVALID_SESSION_HANDLE;
    if (!wanted)
        return IVI_SUCCESS;
    Session& session = **found;
    const std::thread::id self = std::this_thread::get_id();
    if (session.depth > 0 && session.owner != self)
        return waitForLock(shard.lock, *found);
    session.owner = self;
    ++session.depth;
    return IVI_SUCCESS;
}

ViStatus SessionTable::waitForLock(base::SpinLock& shardLock, const std::shared_ptr<Session>& session)
{
    // A reference of its own: Dispose drops the table's while this thread sleeps.
    const std::shared_ptr<Session> kept = session;
    ++kept->waiting;
    kept->changed.wait(shardLock, [&kept] { return kept->disposed || kept->depth == 0; });
    --kept->waiting;
    if (kept->disposed)
        return IVI_ERROR_INVALID_SESSION_HANDLE;
    kept->owner = std::this_thread::get_id();
    kept->depth = 1;
    return IVI_SUCCESS;
}

ViStatus SessionTable::unlock(ViSession handle, bool wanted)
{
    return withSession(handle, [wanted](Session& session) {
        if (!wanted || session.depth == 0 || session.owner != std::this_thread::get_id())
            return IVI_SUCCESS;
        if (--session.depth == 0 && session.waiting > 0)
            session.changed.notify_one();
        return IVI_SUCCESS;
    });
}

ViStatus SessionTable::setError(ViSession handle, ViStatus code, ViConstString description)
{
    return withSession(handle,
                       [code, description](Session& session) { return session.error.update(code, description); });
}

ViStatus SessionTable::takeError(ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar* description)
{
    return withSession(handle, [bufferSize, code, description](Session& session) {
        return session.error.take(bufferSize, code, description);
    });
}

ViStatus SessionTable::clearError(ViSession handle)
{
    return withSession(handle, [](Session& session) {
        session.error.clear();
        return IVI_SUCCESS;
    });
}

} // namespace ivi_c_shared
