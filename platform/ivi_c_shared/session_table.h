#pragma once

#include "base/spin_lock.h"
#include "platform/ivi_c_shared/data_cache.h"
#include "platform/ivi_c_shared/error_record.h"

#include <IviCShared.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace ivi_c_shared
{

/// All sessions of the process by handle. Handles count up from 1 and are never handed out twice.
///
/// Sessions are spread over shards by handle. A shard's lock guards its table and the state of its sessions, is held
/// for the length of one look-up and never while a thread waits for a session's lock. Data pointers are mostly read
/// without it. Any thread may call any function;
/// an unknown handle gives IVI_ERROR_INVALID_SESSION_HANDLE. Standard exceptions report lack of memory or of locks.
class SessionTable
{
public:
    ViStatus create(ViSession& handle);

    /// Removes the session and wakes the threads that wait for its lock. Its holder may call this.
    ViStatus dispose(ViSession handle);

    ViStatus setData(ViSession handle, ViAddr data);
    ViStatus getData(ViSession handle, ViAddr& data)
    {
        return dataCache_.find(handle, data) ? IVI_SUCCESS : lookUpData(handle, data);
    }

    /// Waits for the session's lock without limit and takes one level of it.
    /// @param wanted false: only the handle is checked
    ViStatus lock(ViSession handle, bool wanted);

    /// Gives one level back; a thread that does not hold the lock leaves it alone.
    /// @param wanted false: only the handle is checked
    ViStatus unlock(ViSession handle, bool wanted);

    ViStatus setError(ViSession handle, ViStatus code, ViConstString description);
    ViStatus takeError(ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar* description);
    ViStatus clearError(ViSession handle);

private:
    struct Session
    {
        ViAddr data = nullptr;
        ErrorRecord error;
        std::thread::id owner;
        std::uint64_t depth = 0;
        std::uint64_t waiting = 0;
        bool disposed = false;
        std::condition_variable_any changed;
    };

    struct Entry
    {
        ViSession handle;
        std::shared_ptr<Session> session;
    };

    struct alignas(64) Shard
    {
        base::SpinLock lock;
        std::vector<Entry> sessions; ///< in the order of handles

        /// Null for a handle that is unknown.
        const std::shared_ptr<Session>* find(ViSession handle) const;
    };

    static constexpr std::size_t kShardCount = 64;

    Shard& shardOf(ViSession handle) { return shards_[handle % kShardCount]; }

    /// Runs action(session) under the shard's lock.
    template <class Action>
    ViStatus withSession(ViSession handle, Action action);

    ViStatus lookUpData(ViSession handle, ViAddr& data);

    /// @param shardLock held, but not while this thread sleeps
    static ViStatus waitForLock(base::SpinLock& shardLock, const std::shared_ptr<Session>& session);

    // Sessions that share a place there share a shard here, whose lock keeps their changes apart.
    static_assert(DataCache::kPlaces % kShardCount == 0);

    std::array<Shard, kShardCount> shards_;
    DataCache dataCache_;
    std::atomic<std::uint64_t> lastHandle_{0};
};

} // namespace ivi_c_shared
