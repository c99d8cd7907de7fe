#include "visa/session/session_registry.h"

#include <limits>

namespace visa
{

ViSession SessionRegistry::reserveHandle()
{
    const std::lock_guard guard(mutex_);
    if (lastHandle_ == std::numeric_limits<ViSession>::max())
        return VI_NULL;
    return static_cast<ViSession>(++lastHandle_);
}

bool SessionRegistry::add(ViSession handle, const std::shared_ptr<Session>& session)
{
    const std::lock_guard guard(mutex_);
    const ViSession manager = session->manager();
    if (manager != VI_NULL && !sessions_.contains(manager))
        return false;
    sessions_.emplace(handle, session);
    return true;
}

std::shared_ptr<Session> SessionRegistry::find(ViSession handle) const
{
    const std::lock_guard guard(mutex_);
    const auto found = sessions_.find(handle);
    return found == sessions_.end() ? nullptr : found->second;
}

bool SessionRegistry::close(ViSession handle)
{
    // Connections are closed outside the mutex, when this goes. Entries change hands as they are: closing takes no
    // memory.
    decltype(sessions_) closed;
    {
        const std::lock_guard guard(mutex_);
        if (!sessions_.contains(handle))
            return false;
        for (auto next = sessions_.begin(); next != sessions_.end();) {
            const auto entry = next++;
            if (entry->first == handle || entry->second->manager() == handle)
                closed.insert(sessions_.extract(entry));
        }
    }
    for (const auto& entry : closed)
        entry.second->interrupt();
    return true;
}

std::shared_ptr<ResourceLock> SessionRegistry::lockOf(const std::string& canonicalName)
{
    const std::lock_guard guard(mutex_);
    std::erase_if(locks_, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<ResourceLock>& known = locks_[canonicalName];
    auto lock = known.lock();
    if (lock == nullptr)
        known = lock = std::make_shared<ResourceLock>();
    return lock;
}

SessionRegistry& registry()
{
    // Never destroyed: drivers may close their sessions from their own clean-up while the process ends.
    static SessionRegistry& sessions = *new SessionRegistry;
    return sessions;
}

} // namespace visa
