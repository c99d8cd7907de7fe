#pragma once

#include "visa/host/deadline.h"

#include <visa.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace visa
{

/// The locks of one resource, shared by all sessions opened to it in this process (VPP-4.3 section 3.6). Any thread.
class ResourceLock
{
public:
    /// Longest key, with which its NUL fits the 256 characters of a key's buffer.
    static constexpr std::size_t kLongestKey = 255;

    /// Whether a session may use the resource: nobody has locked it, or this session has, and no other one alone.
    bool admits(ViSession session) const noexcept { return !isHeld_.load() || admitsHolder(session); }

    /// Waits for the exclusive lock until the deadline, or until that is aborted or isClosing is true and wake() has
    /// been called.
    /// @return VI_SUCCESS, VI_SUCCESS_NESTED_EXCLUSIVE; VI_ERROR_RSRC_LOCKED at once with VI_TMO_IMMEDIATE, otherwise
    ///         VI_ERROR_TMO; VI_ERROR_ABORT, VI_ERROR_INV_OBJECT when closing
    ViStatus acquireExclusive(ViSession session, const Deadline& deadline, const std::atomic<bool>& isClosing);

    /// As acquireExclusive for a lock that sessions share which give the same key.
    /// @param key none asks for the key of the session's own shared lock, or for a new one; receives the lock's
    /// @return also VI_SUCCESS_NESTED_SHARED; VI_ERROR_INV_ACCESS_KEY when the session shares a lock of another key,
    ///         VI_ERROR_RSRC_LOCKED while it has the exclusive lock
    ViStatus acquireShared(ViSession session, const Deadline& deadline, const std::atomic<bool>& isClosing,
                           std::optional<std::string>& key);

    /// What a release has left.
    struct Released
    {
        ViStatus status; ///< VI_SUCCESS, a NESTED code, or VI_ERROR_SESN_NLOCKED
        bool isShared;   ///< which lock it was
        bool isLastOfItsKind;
    };

    /// Takes back the session's exclusive lock, or its shared one where it has no exclusive one.
    Released release(ViSession session);

    /// Takes back everything that the session holds.
    void releaseAll(ViSession session) noexcept;

    /// VI_NO_LOCK, VI_EXCLUSIVE_LOCK or VI_SHARED_LOCK.
    ViAccessMode state() const;

    /// Lets the waiting calls look whether they are to end.
    void wake() noexcept;

private:
    struct Holder
    {
        ViSession session;
        std::size_t exclusive = 0;
        std::size_t shared = 0;
    };

    bool admitsHolder(ViSession session) const noexcept;
    std::vector<Holder>::const_iterator find(ViSession session) const;
    bool isHolder(ViSession session) const { return find(session) != holders_.end(); }
    Holder& holderFor(ViSession session);
    bool isExclusiveElsewhere(ViSession session) const;
    void dropUnlessHolding(ViSession session);

    template <class Grantable>
    ViStatus waitFor(std::unique_lock<std::mutex>& guard, const Deadline& deadline, const std::atomic<bool>& isClosing,
                     Grantable isGrantable);

    std::atomic<bool> isHeld_ = false; ///< whether there are holders
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Holder> holders_;
    std::string key_; ///< of the shared lock, while somebody has it
};

} // namespace visa
