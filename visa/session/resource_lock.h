#pragma once

#include <visa.h>

#include <atomic>
#include <memory>

namespace visa
{

/// The exclusive lock of one resource, shared by all sessions opened to it in this process: the session that holds it,
/// or VI_NULL.
class ResourceLock
{
public:
    /// @return false when another session holds the lock
    bool acquire(ViSession session) noexcept
    {
        ViSession holder = VI_NULL;
        return holder_.compare_exchange_strong(holder, session) || holder == session;
    }

    /// Gives the lock back if this session holds it.
    void release(ViSession session) noexcept { holder_.compare_exchange_strong(session, VI_NULL); }

    bool admits(ViSession session) const noexcept
    {
        const ViSession holder = holder_.load();
        return holder == VI_NULL || holder == session;
    }

private:
    std::atomic<ViSession> holder_{VI_NULL};
};

} // namespace visa
