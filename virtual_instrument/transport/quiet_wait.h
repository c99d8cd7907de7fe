#pragma once

#include "virtual_instrument/transport/connection.h"

#include <asio.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace kvxvirtual
{

/// Holds an action back until the instrument has read and executed everything that had reached it on `connections` when
/// the wait began, so that a test which sends a command on one connection and then asks on another sees the command
/// done. A connection that cannot get on (its client takes no replies) is not waited for.
class QuietWait : public std::enable_shared_from_this<QuietWait>
{
public:
    static void start(asio::io_context& context, const std::vector<std::shared_ptr<Connection>>& connections,
                      std::function<void()> action);

private:
    struct Goal
    {
        std::shared_ptr<Connection> connection;
        std::uint64_t bytes;
    };

    QuietWait(asio::io_context& context, std::function<void()> action);

    /// Looks, and comes back after everything else that is ready to run has run once.
    void look();
    bool reached() const;

    asio::io_context& context_;
    std::function<void()> action_;
    std::vector<Goal> goals_;
};

} // namespace kvxvirtual
