#include "visa/transport/vxi11/portmapper.h"

#include "visa/host/network.h"
#include "visa/transport/tcp/host_lookup.h"
#include "visa/transport/tcp/tcp_stream.h"
#include "visa/transport/vxi11/big_endian.h"
#include "visa/transport/vxi11/rpc_channel.h"

#include <rpc/rpc.h>

#include <rpc/pmap_prot.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace visa
{
namespace
{

using asio::ip::tcp;

ResourceName portmapperOf(const std::string& host)
{
    ResourceName name;
    name.address = host;
    name.port = PMAPPORT;
    return name;
}

/// @return VI_ERROR_RSRC_NFOUND for what is no port, 0 for one: the program is not registered
ViStatus storePort(std::uint32_t answered, ViUInt16& port)
{
    constexpr std::uint32_t kLargestPort = 0xFFFF;
    if (answered == 0 || answered > kLargestPort)
        return VI_ERROR_RSRC_NFOUND;
    port = static_cast<ViUInt16>(answered);
    return VI_SUCCESS;
}

ViStatus askByTcp(std::unique_ptr<Stream> stream, pmap& wanted, const Deadline& deadline, RpcPlace& place)
{
    place.address = stream->address();
    RpcChannel portmapper(std::move(stream), {PMAPPROG, PMAPVERS});
    u_int port = 0;
    ViStatus status = portmapper.call(PMAPPROC_GETPORT, XdrValue::by<xdr_pmap>(wanted), {}, deadline);
    if (status == VI_SUCCESS)
        status = portmapper.take(XdrValue::by<xdr_u_int>(port), deadline);
    return status == VI_SUCCESS ? storePort(port, place.port) : status;
}

/// A socket for messages to one address.
class DatagramSocket
{
public:
    explicit DatagramSocket(const tcp::endpoint& endpoint)
        : descriptor_(::socket(endpoint.protocol().family(), SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        isConnected_ = descriptor_ >= 0 && ::connect(descriptor_, endpoint.data(), socklen_t(endpoint.size())) == 0;
    }
    ~DatagramSocket()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    DatagramSocket(const DatagramSocket&) = delete;
    DatagramSocket& operator=(const DatagramSocket&) = delete;

    bool send(std::span<const ViByte> message) const
    {
        return isConnected_ && ::send(descriptor_, message.data(), message.size(), MSG_NOSIGNAL) >= 0;
    }

    enum class Arrival
    {
        Message,
        None,
        Refused
    };

    Arrival receive(std::span<ViByte> message, int waitMs) const
    {
        pollfd polled{descriptor_, POLLIN, 0};
        if (::poll(&polled, 1, waitMs) <= 0)
            return Arrival::None;
        const ssize_t received = ::recv(descriptor_, message.data(), message.size(), 0);
        if (received < 0)
            return errno == ECONNREFUSED ? Arrival::Refused : Arrival::None;
        return static_cast<std::size_t>(received) == message.size() ? Arrival::Message : Arrival::None;
    }

private:
    int descriptor_;
    bool isConnected_ = false;
};

constexpr std::uint32_t kCallNumber = 1;
/// The reply to a call without a verifier, and the port at its end.
constexpr std::size_t kReplyWords = 7;

using Datagram = std::array<ViByte, kReplyWords * kWordBytes>;

std::array<ViByte, 14 * kWordBytes> callByDatagram(const pmap& wanted)
{
    const std::array<std::uint32_t, 14> words{kCallNumber,
                                              CALL,
                                              RPC_MSG_VERSION,
                                              static_cast<std::uint32_t>(PMAPPROG),
                                              static_cast<std::uint32_t>(PMAPVERS),
                                              static_cast<std::uint32_t>(PMAPPROC_GETPORT),
                                              AUTH_NONE,
                                              0,
                                              AUTH_NONE,
                                              0,
                                              static_cast<std::uint32_t>(wanted.pm_prog),
                                              static_cast<std::uint32_t>(wanted.pm_vers),
                                              static_cast<std::uint32_t>(wanted.pm_prot),
                                              0};
    std::array<ViByte, words.size() * kWordBytes> call{};
    for (std::size_t i = 0; i < words.size(); ++i)
        putWord(call.data() + i * kWordBytes, words[i]);
    return call;
}

bool isSuccess(const Datagram& reply)
{
    constexpr std::array<std::uint32_t, 6> kSuccess{kCallNumber, REPLY, MSG_ACCEPTED, AUTH_NONE, 0, SUCCESS};
    for (std::size_t i = 0; i < kSuccess.size(); ++i) {
        if (wordAt(reply.data() + i * kWordBytes) != kSuccess[i])
            return false;
    }
    return true;
}

/// Asks again now and then, as messages get lost.
ViStatus askByUdp(const tcp::endpoint& endpoint, const pmap& wanted, const Deadline& deadline, RpcPlace& place)
{
    constexpr int kAgainMs = 250;
    const auto call = callByDatagram(wanted);
    const DatagramSocket socket(endpoint);
    Datagram reply{};
    while (const int waitMs = deadline.remainingMs(kAgainMs)) {
        if (!socket.send(call))
            return VI_ERROR_RSRC_NFOUND;
        const auto arrival = socket.receive(reply, waitMs);
        if (arrival == DatagramSocket::Arrival::Refused)
            return VI_ERROR_RSRC_NFOUND;
        if (arrival != DatagramSocket::Arrival::Message || !isSuccess(reply))
            continue;
        place.address = endpoint.address().to_string();
        return storePort(wordAt(reply.data() + (kReplyWords - 1) * kWordBytes), place.port);
    }
    return VI_ERROR_TMO;
}

ViStatus askEachByUdp(const std::string& host, const pmap& wanted, const Deadline& deadline, RpcPlace& place)
{
    HostEndpoints endpoints;
    const asio::error_code error = lookUpHost(host, PMAPPORT, deadline, endpoints);
    ViStatus status = error == asio::error::timed_out ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    for (const auto& entry : endpoints) {
        status = askByUdp(entry.endpoint(), wanted, deadline, place);
        if (status != VI_ERROR_RSRC_NFOUND)
            break;
    }
    return status;
}

} // namespace

ViStatus findRpcProgram(const std::string& host, std::uint32_t program, std::uint32_t version, const Deadline& deadline,
                        RpcPlace& place)
{
    pmap wanted{program, version, IPPROTO_TCP, 0};
    std::unique_ptr<Stream> stream;
    const ViStatus status = openTcpStream(portmapperOf(host), deadline, stream);
    if (status == VI_SUCCESS)
        return askByTcp(std::move(stream), wanted, deadline, place);
    return status == VI_ERROR_RSRC_NFOUND ? askEachByUdp(host, wanted, deadline, place) : status;
}

} // namespace visa
