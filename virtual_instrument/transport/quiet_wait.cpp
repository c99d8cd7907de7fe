#include "virtual_instrument/transport/quiet_wait.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kvxvirtual
{
namespace
{

/// A reply that the host can take is gone after one or two rounds; this many without a step mean it cannot.
constexpr int kMostIdleRounds = 100;

} // namespace

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
    idleRounds_ = steps() == lastSteps_ ? idleRounds_ + 1 : 0;
    lastSteps_ = steps();
    if (reached() || idleRounds_ > kMostIdleRounds)
        return action_();
    asio::post(context_, [self = shared_from_this()] { self->look(); });
}

bool QuietWait::reached() const
{
    return std::all_of(goals_.begin(), goals_.end(),
                       [](const Goal& goal) { return goal.connection->hasReached(goal.bytes); });
}

std::uint64_t QuietWait::steps() const
{
    return std::accumulate(goals_.begin(), goals_.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const Goal& goal) { return sum + goal.connection->steps(); });
}

} // namespace kvxvirtual
