#pragma once

#include "base/spin_lock.h"
#include "base/undestroyed.h"
#include "visa/session/resource_lock.h"
#include "visa/session/session.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace visa
{

/// All open sessions of the process by handle. Handles count up from 1 and are never handed out twice. Any thread.
class SessionRegistry
{
public:
    /// Takes a number for a session to be added later; VI_NULL when all numbers are used up.
    ViSession reserveHandle();

    /// @return false when its resource manager session has been closed meanwhile
    bool add(ViSession handle, const std::shared_ptr<Session>& session);

    /// Null for a handle that is not open.
    std::shared_ptr<Session> find(ViSession handle) const;

    /// Takes the session back, a resource manager's with all that were opened through it, and ends their waiting calls.
    /// @return false for a handle that is not open
    bool close(ViSession handle);

    /// The lock that all sessions to this resource share.
    std::shared_ptr<ResourceLock> lockOf(const std::string& canonicalName);

private:
    struct Entry
    {
        ViSession handle;
        std::shared_ptr<Session> session;
    };

    struct KnownLock
    {
        std::string canonicalName;
        std::weak_ptr<ResourceLock> lock;
    };

    std::vector<Entry>::const_iterator placeOf(ViSession handle) const;
    std::shared_ptr<Session> takeAt(std::vector<Entry>::const_iterator place);
    std::shared_ptr<Session> take(ViSession handle);
    std::shared_ptr<Session> takeOneOf(ViSession manager);

    // Held for the length of a look-up, of which every call of VISA begins with one.
    mutable base::SpinLock lock_;
    std::vector<Entry> sessions_;       ///< in the order of handles
    mutable std::size_t lastFound_ = 0; ///< where find() has found one last; 0 while there is none
    std::vector<KnownLock> locks_;
    std::uint64_t lastHandle_ = 0;
};

/// The process's. Drivers may close their sessions from their own clean-up.
extern base::Undestroyed<SessionRegistry> processRegistry;

inline SessionRegistry& registry()
{
    return processRegistry.object;
}

} // namespace visa
