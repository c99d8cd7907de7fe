#include "visa/session/session_registry.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <utility>

namespace visa
{

ViSession SessionRegistry::reserveHandle()
{
    const std::lock_guard guard(lock_);
    if (lastHandle_ == std::numeric_limits<ViSession>::max())
        return VI_NULL;
    return static_cast<ViSession>(++lastHandle_);
}

std::vector<SessionRegistry::Entry>::const_iterator SessionRegistry::placeOf(ViSession handle) const
{
    return std::lower_bound(sessions_.begin(), sessions_.end(), handle,
                            [](const Entry& entry, ViSession wanted) { return entry.handle < wanted; });
}

bool SessionRegistry::add(ViSession handle, const std::shared_ptr<Session>& session)
{
    const std::lock_guard guard(lock_);
    const ViSession manager = session->manager();
    if (manager != VI_NULL) {
        const auto opener = placeOf(manager);
        if (opener == sessions_.end() || opener->handle != manager)
            return false;
    }
    sessions_.insert(placeOf(handle), {handle, session});
    return true;
}

std::shared_ptr<Session> SessionRegistry::find(ViSession handle) const
{
    const std::lock_guard guard(lock_);
    // A session is mostly the one that was asked for before.
    if (sessions_.empty() || sessions_[lastFound_].handle != handle) {
        const auto found = placeOf(handle);
        if (found == sessions_.end() || found->handle != handle)
            return nullptr;
        lastFound_ = static_cast<std::size_t>(found - sessions_.begin());
    }
    return sessions_[lastFound_].session;
}

std::shared_ptr<Session> SessionRegistry::takeAt(std::vector<Entry>::const_iterator place)
{
    auto session = place->session;
    sessions_.erase(place);
    lastFound_ = 0;
    return session;
}

std::shared_ptr<Session> SessionRegistry::take(ViSession handle)
{
    const std::lock_guard guard(lock_);
    const auto found = placeOf(handle);
    if (found == sessions_.end() || found->handle != handle)
        return nullptr;
    return takeAt(found);
}

/// Takes back one of the sessions that were opened through a manager; null when there is none left.
std::shared_ptr<Session> SessionRegistry::takeOneOf(ViSession manager)
{
    const std::lock_guard guard(lock_);
    const auto found = std::find_if(sessions_.begin(), sessions_.end(),
                                    [manager](const Entry& entry) { return entry.session->manager() == manager; });
    if (found == sessions_.end())
        return nullptr;
    return takeAt(found);
}

bool SessionRegistry::close(ViSession handle)
{
    // Once the manager is gone, no session is added to it any more. One at a time, closing takes no memory; connections
    // are closed outside the lock.
    const auto closed = take(handle);
    if (closed == nullptr)
        return false;
    closed->interrupt();
    if (closed->manager() != VI_NULL)
        return true;
    while (const auto opened = takeOneOf(handle))
        opened->interrupt();
    return true;
}

std::shared_ptr<ResourceLock> SessionRegistry::lockOf(const std::string& canonicalName)
{
    const std::lock_guard guard(lock_);
    std::erase_if(locks_, [](const KnownLock& known) { return known.lock.expired(); });
    const auto known = std::find_if(locks_.begin(), locks_.end(), [&canonicalName](const KnownLock& candidate) {
        return candidate.canonicalName == canonicalName;
    });
    auto lock = known == locks_.end() ? nullptr : known->lock.lock();
    if (lock == nullptr) {
        lock = std::make_shared<ResourceLock>();
        locks_.push_back({canonicalName, lock});
    }
    return lock;
}

constinit base::Undestroyed<SessionRegistry> processRegistry;

} // namespace visa
