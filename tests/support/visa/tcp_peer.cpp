#include "tests/support/visa/tcp_peer.h"

#include <asio/buffer.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>

namespace kvxtest
{

using asio::ip::tcp;

TcpPeer::TcpPeer(const std::string& address)
    : acceptor_(context_, tcp::endpoint(asio::ip::make_address(address), 0)), connection_(context_)
{
}

std::string TcpPeer::resource(const std::string& host) const
{
    return "TCPIP0::" + host + "::" + std::to_string(port()) + "::SOCKET";
}

void TcpPeer::accept()
{
    connection_ = acceptor_.accept();
    connection_.set_option(tcp::no_delay(true));
}

void TcpPeer::send(const std::string& bytes)
{
    asio::write(connection_, asio::buffer(bytes));
}

bool TcpPeer::sends(const std::string& bytes)
{
    asio::error_code error;
    asio::write(connection_, asio::buffer(bytes), error);
    return !error;
}

std::string TcpPeer::receive(std::size_t count)
{
    std::string bytes(count, '\0');
    asio::error_code error;
    bytes.resize(asio::read(connection_, asio::buffer(bytes), error));
    return bytes;
}

void TcpPeer::reset()
{
    connection_.set_option(tcp::socket::linger(true, 0));
    connection_.close();
}

} // namespace kvxtest
