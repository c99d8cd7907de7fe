#pragma once

#include "benchmarks/turns.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>
#include <span>

namespace kvxbenchmark
{

/// A connection as a program without driver and VISA would make it.
class LoopbackSocket
{
public:
    explicit LoopbackSocket(unsigned short port) : socket_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        require(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
        const int on = 1;
        require(::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0);
    }
    LoopbackSocket(const LoopbackSocket&) = delete;
    LoopbackSocket& operator=(const LoopbackSocket&) = delete;
    ~LoopbackSocket() { ::close(socket_); }

    void send(std::span<const char> bytes)
    {
        require(::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size()));
    }

    /// What has come: at least one byte.
    std::size_t receive(std::span<char> room)
    {
        const ssize_t count = ::recv(socket_, room.data(), room.size(), 0);
        require(count > 0);
        return static_cast<std::size_t>(count);
    }

private:
    int socket_;
};

} // namespace kvxbenchmark
