#include "visa/transport/tcp/tcp_connect.h"

#include "visa/transport/tcp/socket_error_windows.h"

#include <winsock2.h>

#include <algorithm>
#include <limits>

namespace visa
{
namespace
{

using asio::ip::tcp;

/// Asio's own open() leaves the socket to be inherited until it is told otherwise.
asio::error_code openPrivately(tcp::socket& socket, const tcp& protocol)
{
    asio::error_code error;
    socket.close(error);
    const SOCKET handle = WSASocketW(protocol.family(), protocol.type(), protocol.protocol(), nullptr, 0,
                                     WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (handle == INVALID_SOCKET)
        return lastError();
    socket.assign(protocol, handle, error);
    if (error)
        closesocket(handle);
    return error;
}

/// What became of an attempt that has ended.
asio::error_code outcomeOf(SOCKET handle)
{
    int number = 0;
    int size = sizeof number;
    if (getsockopt(handle, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&number), &size) != 0)
        return lastError();
    return {number, asio::error::get_system_category()};
}

/// Waits for the end of a connection attempt. With select, because WSAPoll is not told of failed attempts before
/// Windows 10 version 2004.
/// @return nothing when the deadline passed
std::optional<asio::error_code> awaitOutcome(SOCKET handle, const Deadline& deadline)
{
    constexpr int kLongestWaitMs = 1000000;
    for (;;) {
        const long waitMs = deadline.remainingMs(kLongestWaitMs);
        fd_set connected{1, {handle}};
        fd_set failed{1, {handle}};
        timeval limit{waitMs / 1000, waitMs % 1000 * 1000};
        const int ended = select(0, nullptr, &connected, &failed, &limit);
        if (ended == SOCKET_ERROR)
            return lastError();
        if (ended > 0)
            return outcomeOf(handle);
        if (deadline.remainingMs(1) == 0)
            return std::nullopt;
    }
}

} // namespace

std::optional<asio::error_code> connectTo(tcp::socket& socket, const tcp::endpoint& endpoint, const Deadline& deadline)
{
    asio::error_code error = openPrivately(socket, endpoint.protocol());
    if (error)
        return error;
    // For good: on Windows only the socket itself, and no single call, can be told not to wait.
    socket.native_non_blocking(true, error);
    if (error)
        return error;
    const SOCKET handle = socket.native_handle();
    if (::connect(handle, endpoint.data(), static_cast<int>(endpoint.size())) == 0)
        return asio::error_code();
    error = lastError();
    return error == asio::error::would_block ? awaitOutcome(handle, deadline) : error;
}

} // namespace visa
