#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

#include <string>

namespace kvxtest
{

/// The other end of a TCPIP SOCKET resource, on any free port of the loopback. Calls wait; a test that needs the two
/// ends to act at the same time runs one of them in a thread of its own.
class TcpPeer
{
public:
    /// Throws when the host does not have the address.
    explicit TcpPeer(const std::string& address = "127.0.0.1");

    unsigned short port() const { return acceptor_.local_endpoint().port(); }

    /// "TCPIP0::<host>::<port>::SOCKET"
    std::string resource(const std::string& host = "127.0.0.1") const;

    /// Takes the next connection; the one before it is closed.
    void accept();

    void send(const std::string& bytes);

    /// @return false when the connection has ended
    bool sends(const std::string& bytes);

    /// Sends no more, and still receives.
    void endOutput() { connection_.shutdown(asio::ip::tcp::socket::shutdown_send); }

    /// Waits for exactly this many bytes; fewer when the connection ends first.
    std::string receive(std::size_t count);

    void close() { connection_.close(); }

    /// Ends the connection with a reset instead of an orderly close.
    void reset();

private:
    asio::io_context context_;
    asio::ip::tcp::acceptor acceptor_;
    asio::ip::tcp::socket connection_;
};

} // namespace kvxtest
