#pragma once

#include "visa/host/network.h"
#include "visa/transport/stream.h"
#include "visa/transport/tcp/tcp_transfer.h"

#include <string>

namespace visa
{

/// A raw TCP connection (TCPIP SOCKET).
class TcpStream : public Stream
{
public:
    /// Takes over a connected socket in blocking mode.
    explicit TcpStream(asio::ip::tcp::socket socket);

    ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept override;
    void discardInput() noexcept override;
    ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept override;
    std::string address() const override;
    void interrupt() noexcept override;

private:
    template <class Transfer>
    ViStatus attempt(const Deadline& deadline, Transfer transfer) noexcept;

    asio::ip::tcp::socket socket_;
    TcpTransfer transfer_;
};

} // namespace visa
