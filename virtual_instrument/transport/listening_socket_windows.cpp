#include "virtual_instrument/transport/listening_socket.h"

#include <cstddef>
#include <system_error>
#include <utility>

namespace kvxvirtual
{
namespace
{

/// An option that Asio does not offer, in the form that it takes: no two programs at one port, which Windows allows
/// unless it is told otherwise.
class ExclusiveAddress
{
public:
    template <class Protocol>
    int level(const Protocol&) const
    {
        return SOL_SOCKET;
    }

    template <class Protocol>
    int name(const Protocol&) const
    {
        return SO_EXCLUSIVEADDRUSE;
    }

    template <class Protocol>
    const void* data(const Protocol&) const
    {
        return &value_;
    }

    template <class Protocol>
    std::size_t size(const Protocol&) const
    {
        return sizeof value_;
    }

private:
    BOOL value_ = TRUE;
};

/// Set by the system when clients wait at a socket; unset by looking. Throws std::system_error.
class ClientsEvent
{
public:
    ClientsEvent(asio::io_context& context, SOCKET listener) : handle_(context, create()), listener_(listener)
    {
        if (WSAEventSelect(listener_, handle_.native_handle(), FD_ACCEPT) != 0)
            throwLastError();
    }

    template <class Handler>
    void wait(Handler handler)
    {
        handle_.async_wait(std::move(handler));
    }

    void unset()
    {
        WSANETWORKEVENTS events{};
        WSAEnumNetworkEvents(listener_, handle_.native_handle(), &events);
    }

private:
    static HANDLE create()
    {
        const HANDLE event = WSACreateEvent();
        if (event == WSA_INVALID_EVENT)
            throwLastError();
        return event;
    }

    [[noreturn]] static void throwLastError()
    {
        throw std::system_error(WSAGetLastError(), asio::system_category(), "cannot wait for clients");
    }

    asio::windows::object_handle handle_;
    SOCKET listener_;
};

} // namespace

/// Asio would wait for bytes at the listening socket, which has none.
struct ListeningSocket::Host
{
    Host(asio::io_context& context, const Endpoint& endpoint)
        : acceptor(listenOn(context, endpoint)), clients(context, acceptor.native_handle())
    {
    }

    static asio::ip::tcp::acceptor listenOn(asio::io_context& context, const Endpoint& endpoint)
    {
        asio::ip::tcp::acceptor acceptor(context, endpoint.protocol());
        acceptor.set_option(ExclusiveAddress());
        acceptor.set_option(asio::socket_base::enable_connection_aborted(true));
        acceptor.bind(endpoint);
        acceptor.listen();
        acceptor.non_blocking(true);
        return acceptor;
    }

    asio::ip::tcp::acceptor acceptor;
    ClientsEvent clients;
};

ListeningSocket::ListeningSocket(asio::io_context& context, const Endpoint& endpoint)
    : host_(std::make_unique<Host>(context, endpoint))
{
}

ListeningSocket::~ListeningSocket() = default;

ListeningSocket::Endpoint ListeningSocket::endpoint() const
{
    return host_->acceptor.local_endpoint();
}

void ListeningSocket::wait(std::function<void(asio::error_code)> ready)
{
    host_->clients.wait([this, ready = std::move(ready)](asio::error_code error) {
        // Before the clients are taken: those who come meanwhile set it again.
        if (!error)
            host_->clients.unset();
        ready(error);
    });
}

asio::error_code ListeningSocket::accept(Socket& socket)
{
    asio::error_code error;
    host_->acceptor.accept(socket, error);
    // What is accepted inherits the event.
    if (!error)
        WSAEventSelect(socket.native_handle(), nullptr, 0);
    return error;
}

} // namespace kvxvirtual
