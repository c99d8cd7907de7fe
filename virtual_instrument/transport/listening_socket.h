#pragma once

#include <asio.hpp>
#include <functional>
#include <memory>

namespace kvxvirtual
{

/// A listening socket, in the way of this host. One wait at a time; its calls come from the thread that runs the
/// context.
class ListeningSocket
{
public:
    using Endpoint = asio::ip::tcp::endpoint;
    using Socket = asio::ip::tcp::socket;

    /// Listens. Throws std::system_error when the address cannot be had, as when another program listens there.
    ListeningSocket(asio::io_context& context, const Endpoint& endpoint);
    ~ListeningSocket();

    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    /// Where it listens, with the port that the host has chosen.
    Endpoint endpoint() const;

    /// Calls `ready` once when clients wait, or with an error when that cannot be told; operation_aborted at the end.
    void wait(std::function<void(asio::error_code)> ready);

    /// Takes a client that waits; asio::error::would_block when none does.
    asio::error_code accept(Socket& socket);

private:
    struct Host;
    std::unique_ptr<Host> host_;
};

} // namespace kvxvirtual
