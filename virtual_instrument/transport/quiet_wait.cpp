#include "virtual_instrument/transport/quiet_wait.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual
{

QuietWait::QuietWait(asio::io_context& context, std::function<void()> action)
    : context_(context), action_(std::move(action))
{
}

void QuietWait::start(asio::io_context& context, const std::vector<std::shared_ptr<Connection>>& connections,
                      std::function<void()> action)
{
    const std::shared_ptr<QuietWait> wait(new QuietWait(context, std::move(action)));
    for (const auto& connection : connections)
        wait->goals_.push_back({connection, connection->bytesRead() + connection->bytesWaiting()});
    asio::post(context, [wait] { wait->look(); });
}

void QuietWait::look()
{
    if (reached())
        return action_();
    asio::post(context_, [self = shared_from_this()] { self->look(); });
}

bool QuietWait::reached() const
{
    return std::all_of(goals_.begin(), goals_.end(),
                       [](const Goal& goal) { return goal.connection->hasReached(goal.bytes); });
}

} // namespace kvxvirtual
