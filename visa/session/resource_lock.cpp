#include "visa/session/resource_lock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <random>

namespace visa
{
namespace
{

/// A key that no other host makes either.
std::string newKey()
{
    std::random_device random;
    std::string key = "KVX";
    for (int word = 0; word < 4; ++word) {
        std::array<char, 10> digits{};
        std::snprintf(digits.data(), digits.size(), "-%08X", random());
        key += digits.data();
    }
    return key;
}

} // namespace

std::vector<ResourceLock::Holder>::const_iterator ResourceLock::find(ViSession session) const
{
    return std::find_if(holders_.begin(), holders_.end(),
                        [session](const Holder& holder) { return holder.session == session; });
}

ResourceLock::Holder& ResourceLock::holderFor(ViSession session)
{
    const auto known = find(session);
    if (known != holders_.end())
        return holders_[static_cast<std::size_t>(known - holders_.begin())];
    holders_.push_back({session});
    isHeld_.store(true);
    return holders_.back();
}

/// Of several holders all have a shared lock, and one may have the exclusive one as well.
bool ResourceLock::isExclusiveElsewhere(ViSession session) const
{
    return std::any_of(holders_.begin(), holders_.end(),
                       [session](const Holder& holder) { return holder.session != session && holder.exclusive > 0; });
}

bool ResourceLock::admitsHolder(ViSession session) const noexcept
{
    const std::lock_guard guard(mutex_);
    return holders_.empty() || (isHolder(session) && !isExclusiveElsewhere(session));
}

template <class Grantable>
ViStatus ResourceLock::waitFor(std::unique_lock<std::mutex>& guard, const Deadline& deadline,
                               const std::atomic<bool>& isClosing, Grantable isGrantable)
{
    constexpr int kLongestWaitMs = 3600000;
    for (ViStatus refusal = VI_ERROR_RSRC_LOCKED; !isGrantable(); refusal = VI_ERROR_TMO) {
        const int leftMs = deadline.remainingMs(kLongestWaitMs);
        if (isClosing.load())
            return VI_ERROR_INV_OBJECT;
        if (deadline.isAborted())
            return VI_ERROR_ABORT;
        if (leftMs == 0)
            return refusal;
        changed_.wait_for(guard, std::chrono::milliseconds(leftMs));
    }
    return VI_SUCCESS;
}

ViStatus ResourceLock::acquireExclusive(ViSession session, const Deadline& deadline, const std::atomic<bool>& isClosing)
{
    std::unique_lock guard(mutex_);
    const ViStatus status = waitFor(guard, deadline, isClosing, [&] {
        return holders_.empty() || (isHolder(session) && !isExclusiveElsewhere(session));
    });
    if (status < 0)
        return status;
    return ++holderFor(session).exclusive > 1 ? VI_SUCCESS_NESTED_EXCLUSIVE : VI_SUCCESS;
}

ViStatus ResourceLock::acquireShared(ViSession session, const Deadline& deadline, const std::atomic<bool>& isClosing,
                                     std::optional<std::string>& key)
{
    std::unique_lock guard(mutex_);
    if (isHolder(session)) {
        if (find(session)->exclusive > 0)
            return VI_ERROR_RSRC_LOCKED;
        if (key && *key != key_)
            return VI_ERROR_INV_ACCESS_KEY;
        key = key_;
        ++holderFor(session).shared;
        return VI_SUCCESS_NESTED_SHARED;
    }
    const auto isOfThisKey = [&] { return key && *key == key_ && holders_.front().shared > 0; };
    const ViStatus status = waitFor(guard, deadline, isClosing, [&] { return holders_.empty() || isOfThisKey(); });
    if (status < 0)
        return status;
    if (holders_.empty())
        key_ = key ? *key : newKey();
    key = key_;
    ++holderFor(session).shared;
    return VI_SUCCESS;
}

/// Forgets a session that holds nothing any more, and lets the waiting ones look again.
void ResourceLock::dropUnlessHolding(ViSession session)
{
    std::erase_if(holders_, [session](const Holder& holder) {
        return holder.session == session && holder.exclusive == 0 && holder.shared == 0;
    });
    isHeld_.store(!holders_.empty());
    changed_.notify_all();
}

ResourceLock::Released ResourceLock::release(ViSession session)
{
    const std::lock_guard guard(mutex_);
    if (!isHolder(session))
        return {VI_ERROR_SESN_NLOCKED, false, false};
    Holder& own = holderFor(session);
    const bool isShared = own.exclusive == 0;
    std::size_t& count = isShared ? own.shared : own.exclusive;
    const bool isLast = --count == 0;
    const ViStatus status = own.exclusive > 0 ? VI_SUCCESS_NESTED_EXCLUSIVE
                            : own.shared > 0  ? VI_SUCCESS_NESTED_SHARED
                                              : VI_SUCCESS;
    dropUnlessHolding(session);
    return {status, isShared, isLast};
}

void ResourceLock::releaseAll(ViSession session) noexcept
{
    const std::lock_guard guard(mutex_);
    std::erase_if(holders_, [session](const Holder& holder) { return holder.session == session; });
    isHeld_.store(!holders_.empty());
    changed_.notify_all();
}

ViAccessMode ResourceLock::state() const
{
    const std::lock_guard guard(mutex_);
    const bool isExclusive =
        std::any_of(holders_.begin(), holders_.end(), [](const Holder& holder) { return holder.exclusive > 0; });
    if (isExclusive)
        return VI_EXCLUSIVE_LOCK;
    return holders_.empty() ? VI_NO_LOCK : VI_SHARED_LOCK;
}

void ResourceLock::wake() noexcept
{
    const std::lock_guard guard(mutex_);
    changed_.notify_all();
}

} // namespace visa
