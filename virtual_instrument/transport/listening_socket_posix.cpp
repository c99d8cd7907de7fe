#include "virtual_instrument/transport/listening_socket.h"

#include <utility>

namespace kvxvirtual
{

struct ListeningSocket::Host
{
    asio::ip::tcp::acceptor acceptor;
};

ListeningSocket::ListeningSocket(asio::io_context& context, const Endpoint& endpoint)
    : host_(std::make_unique<Host>(Host{asio::ip::tcp::acceptor(context, endpoint)}))
{
    host_->acceptor.non_blocking(true);
    // Without this a client that has given up would be followed by a wait for the next one.
    host_->acceptor.set_option(asio::socket_base::enable_connection_aborted(true));
}

ListeningSocket::~ListeningSocket() = default;

ListeningSocket::Endpoint ListeningSocket::endpoint() const
{
    return host_->acceptor.local_endpoint();
}

void ListeningSocket::wait(std::function<void(asio::error_code)> ready)
{
    host_->acceptor.async_wait(asio::ip::tcp::acceptor::wait_read, std::move(ready));
}

asio::error_code ListeningSocket::accept(Socket& socket)
{
    asio::error_code error;
    host_->acceptor.accept(socket, error);
    return error;
}

} // namespace kvxvirtual
