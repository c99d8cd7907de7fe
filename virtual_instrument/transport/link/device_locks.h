#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace kvxvirtual
{

/// The locks that links hold on the instrument: one exclusive lock, and a lock shared by those who know its key.
/// Whoever holds neither has no access while there is one. Raw sockets and the serial line know no locks and are never
/// kept out. One thread.
class DeviceLocks
{
public:
    /// Who holds: an address that is used for nothing else.
    using Holder = const void*;

    enum class Answer
    {
        Granted,
        Held,       ///< by this holder already: there is nothing to grant
        Unavailable ///< as long as another's lock stands against it
    };
    enum class Released
    {
        None,
        Exclusive,
        Shared
    };

    DeviceLocks() = default;
    ~DeviceLocks() = default;
    DeviceLocks(const DeviceLocks&) = delete;
    DeviceLocks& operator=(const DeviceLocks&) = delete;

    /// An exclusive lock for an empty key, otherwise the lock shared with all of that key.
    Answer request(Holder holder, const std::string& key);

    /// Gives one lock back, the exclusive one before the shared one.
    Released release(Holder holder);

    /// Gives back all there is.
    void releaseAll(Holder holder);

    bool permits(Holder holder) const;

    bool isExclusive() const { return exclusive_ != nullptr; }
    /// How many hold a lock; one that holds both counts once.
    std::size_t holderCount() const;
    bool holdsExclusive(Holder holder) const { return exclusive_ == holder; }

    // Waiting --------------------------------------------------------------------------------------------------------

    using WaitId = std::uint64_t;
    /// Looks whether what it waits for can be had now, takes it, and says whether it did; then it is forgotten.
    using Attempt = std::function<bool()>;

    /// Tries again whenever a lock has been given back, in the order of arrival. An attempt may request, wait and
    /// cancel, but not release.
    WaitId wait(Attempt attempt);
    /// Harmless when there is none.
    void cancel(WaitId wait);

private:
    bool sharedBy(Holder holder) const { return shared_.contains(holder); }
    void tryAgain();

    Holder exclusive_ = nullptr;
    std::map<Holder, std::string> shared_;
    std::map<WaitId, Attempt> waits_;
    WaitId lastWait_ = 0;
};

} // namespace kvxvirtual
