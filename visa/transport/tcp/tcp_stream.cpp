#include "visa/transport/tcp/tcp_stream.h"

#include "visa/host/host_error.h"
#include "visa/host/io_context.h"
#include "visa/transport/tcp/host_lookup.h"
#include "visa/transport/tcp/tcp_connect.h"
#include "visa/transport/tcp/tcp_transfer.h"

#include <array>
#include <string>

namespace visa
{
namespace
{

using asio::ip::tcp;

bool isTransient(const asio::error_code& error)
{
    return error == asio::error::would_block || error == asio::error::try_again || error == asio::error::interrupted;
}

/// Whether nothing, or nothing any more, is there to be taken.
bool isEmpty(const asio::error_code& error)
{
    return error == asio::error::would_block || error == asio::error::try_again || error == asio::error::eof;
}

ViStatus transferStatus(const asio::error_code& error)
{
    if (error == asio::error::eof || error == asio::error::connection_reset || error == asio::error::broken_pipe ||
        error == asio::error::connection_aborted || error == asio::error::not_connected ||
        error == asio::error::timed_out || error == asio::error::network_reset)
        return VI_ERROR_CONN_LOST;
    return isExhaustion(error) ? VI_ERROR_ALLOC : VI_ERROR_IO;
}

ViStatus connectStatus(const asio::error_code& error)
{
    if (!error)
        return VI_SUCCESS;
    if (error == asio::error::timed_out)
        return VI_ERROR_TMO;
    return isExhaustion(error) ? VI_ERROR_ALLOC : VI_ERROR_RSRC_NFOUND;
}

/// Connects to the first endpoint that answers, all of them within one deadline.
ViStatus connect(tcp::socket& socket, const HostEndpoints& endpoints, const Deadline& deadline)
{
    asio::error_code error = asio::error::host_not_found;
    for (const auto& entry : endpoints) {
        const auto outcome = connectTo(socket, entry.endpoint(), deadline);
        if (!outcome)
            return VI_ERROR_TMO;
        error = *outcome;
        if (!error)
            break;
    }
    if (!error)
        socket.set_option(tcp::no_delay(true), error);
    return connectStatus(error);
}

/// A raw TCP connection (TCPIP SOCKET).
class TcpStream : public Stream
{
public:
    /// Takes over a connected socket in blocking mode.
    explicit TcpStream(tcp::socket socket)
        : socket_(std::move(socket)), transfer_(static_cast<NativeHandle>(socket_.native_handle()))
    {
    }

    ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus discardInput(const Deadline& deadline) noexcept override;
    ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept override;
    std::string address() const override;
    void interrupt() noexcept override { transfer_.stop(); }

private:
    template <class Transfer>
    ViStatus attempt(const Deadline& deadline, Transfer transfer) noexcept;
    ViStatus writeRest(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept;

    tcp::socket socket_;
    TcpTransfer transfer_;
};

/// Runs one transfer until it has moved bytes, and tells how it ended.
template <class Transfer>
ViStatus TcpStream::attempt(const Deadline& deadline, Transfer transfer) noexcept
{
    for (;;) {
        // Not every host promises that stop() ends a wait of another thread.
        if (transfer_.stopped())
            return VI_ERROR_INV_OBJECT;
        const int waitMs = deadline.remainingMs(Deadline::kLookMs);
        const asio::error_code error = transfer(waitMs);
        if (!error) [[likely]]
            return VI_SUCCESS;
        if (transfer_.stopped())
            return VI_ERROR_INV_OBJECT;
        if (!isTransient(error))
            return transferStatus(error);
        if (deadline.isAborted())
            return VI_ERROR_ABORT;
        // A signal, the host's clock or the next look may have ended the wait early; only the deadline counts.
        if (waitMs == 0)
            return VI_ERROR_TMO;
    }
}

ViStatus TcpStream::readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept
{
    return attempt(deadline, [&](int waitMs) { return transfer_.receive(buffer, waitMs, count); });
}

ViStatus TcpStream::writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
{
    count = 0;
    // There is nearly always room for all: then no clock is looked at.
    if (bytes.empty() || (!transfer_.stopped() && !transfer_.send(bytes, 0, count) && count == bytes.size())) [[likely]]
        return VI_SUCCESS;
    return writeRest(bytes, deadline, count);
}

/// @param count bytes handed over before, and then in all
ViStatus TcpStream::writeRest(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
{
    ViStatus status = VI_SUCCESS;
    while (status == VI_SUCCESS && count < bytes.size()) {
        std::size_t sent = 0;
        status = attempt(deadline, [&](int waitMs) { return transfer_.send(bytes.subspan(count), waitMs, sent); });
        count += sent;
    }
    return status;
}

ViStatus TcpStream::discardInput(const Deadline& deadline) noexcept
{
    // More than hosts keep of a connection's input.
    constexpr std::size_t kMostDiscarded = std::size_t{16} * 1024 * 1024;
    std::array<ViByte, 16384> room{};
    for (std::size_t dropped = 0; dropped < kMostDiscarded;) {
        std::size_t count = 0;
        const asio::error_code error = transfer_.receive(room, 0, count);
        dropped += count;
        if (isEmpty(error))
            return VI_SUCCESS;
        if (error && !isTransient(error))
            return transferStatus(error);
        if (deadline.remainingMs(1) == 0)
            return VI_ERROR_TMO;
    }
    return VI_ERROR_TMO;
}

ViStatus TcpStream::setAttribute(ViAttr attribute, ViUInt32 value) noexcept
{
    asio::error_code error;
    if (attribute == VI_ATTR_TCPIP_NODELAY)
        socket_.set_option(tcp::no_delay(value == VI_TRUE), error);
    else
        socket_.set_option(tcp::socket::keep_alive(value == VI_TRUE), error);
    return error ? VI_ERROR_NSUP_ATTR_STATE : VI_SUCCESS;
}

std::string TcpStream::address() const
{
    asio::error_code error;
    const tcp::endpoint remote = socket_.remote_endpoint(error);
    return error ? std::string() : remote.address().to_string();
}

} // namespace

ViStatus openTcpStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream)
{
    HostEndpoints endpoints;
    const asio::error_code error = lookUpHost(name.address, name.port, deadline, endpoints);
    if (error)
        return connectStatus(error);
    tcp::socket socket(ioContext());
    const ViStatus status = connect(socket, endpoints, deadline);
    if (status == VI_SUCCESS)
        stream = std::make_unique<TcpStream>(std::move(socket));
    return status;
}

} // namespace visa
