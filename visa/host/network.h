#pragma once

namespace visa
{

/// Once there is one, Asio leaves it to this library to make the host's network ready. The statics of Asio's headers
/// would do that while the library is being loaded, when Windows allows no such work.
class NetworkHold
{
public:
    NetworkHold() noexcept;
};

/// Ahead of those statics in every source that has them: the headers with sockets, addresses and contexts are included
/// here only.
static const NetworkHold kNetworkHold;

/// Makes the network ready for the rest of the process. To be called before anything of Asio's is used; from any
/// thread. Where there is no network, Asio's functions tell so.
void startNetwork() noexcept;

} // namespace visa

#include <asio/io_context.hpp>
#include <asio/ip/address_v4.hpp>
#include <asio/ip/address_v6.hpp>
#include <asio/ip/multicast.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ip/udp.hpp>
