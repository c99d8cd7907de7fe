#include "virtual_instrument/transport/link/device_locks.h"

#include <utility>
#include <vector>

namespace kvxvirtual
{

DeviceLocks::Answer DeviceLocks::request(Holder holder, const std::string& key)
{
    if (holdsExclusive(holder))
        return Answer::Held;
    if (key.empty()) {
        if (isExclusive() || (!shared_.empty() && !sharedBy(holder)))
            return Answer::Unavailable;
        exclusive_ = holder;
        return Answer::Granted;
    }
    if (sharedBy(holder))
        return Answer::Held;
    const bool alone = shared_.empty();
    if ((alone && isExclusive()) || (!alone && shared_.begin()->second != key))
        return Answer::Unavailable;
    shared_.emplace(holder, key);
    return Answer::Granted;
}

DeviceLocks::Released DeviceLocks::release(Holder holder)
{
    auto released = Released::None;
    if (holdsExclusive(holder)) {
        exclusive_ = nullptr;
        released = Released::Exclusive;
    } else if (shared_.erase(holder) > 0) {
        released = Released::Shared;
    }
    if (released != Released::None)
        tryAgain();
    return released;
}

void DeviceLocks::releaseAll(Holder holder)
{
    const bool had = holdsExclusive(holder) || sharedBy(holder);
    if (holdsExclusive(holder))
        exclusive_ = nullptr;
    shared_.erase(holder);
    if (had)
        tryAgain();
}

bool DeviceLocks::permits(Holder holder) const
{
    if (isExclusive())
        return holdsExclusive(holder);
    return shared_.empty() || sharedBy(holder);
}

std::size_t DeviceLocks::holderCount() const
{
    return shared_.size() + (isExclusive() && !sharedBy(exclusive_) ? 1 : 0);
}

DeviceLocks::WaitId DeviceLocks::wait(Attempt attempt)
{
    waits_.emplace(++lastWait_, std::move(attempt));
    return lastWait_;
}

void DeviceLocks::cancel(WaitId wait)
{
    waits_.erase(wait);
}

void DeviceLocks::tryAgain()
{
    std::vector<WaitId> order;
    for (const auto& [id, attempt] : waits_)
        order.push_back(id);
    for (const auto id : order) {
        const auto found = waits_.find(id);
        if (found == waits_.end())
            continue;
        // It may cancel itself while it is being called.
        const auto attempt = found->second;
        if (attempt())
            waits_.erase(id);
    }
}

} // namespace kvxvirtual
