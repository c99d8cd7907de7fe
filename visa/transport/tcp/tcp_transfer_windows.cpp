#include "visa/transport/tcp/tcp_transfer.h"

#include "visa/transport/tcp/socket_error_windows.h"

#include <winsock2.h>

#include <algorithm>

namespace visa
{
namespace
{

/// Windows takes a single send of any size whole, however little the other end reads.
constexpr std::size_t kLargestTransfer = 65536;

int lengthOf(std::size_t size)
{
    return static_cast<int>(std::min(size, kLargestTransfer));
}

/// Runs a transfer that does not wait; when it would have to, waits and runs it once more. There are limits of the host
/// for blocking transfers (SO_RCVTIMEO), but one that they end may lose bytes.
/// @param transfer returns a count of bytes or SOCKET_ERROR
template <class Transfer>
asio::error_code attempt(NativeHandle socket, short direction, int waitMs, std::size_t& count, Transfer transfer)
{
    int transferred = transfer();
    if (transferred == SOCKET_ERROR && waitMs > 0 && WSAGetLastError() == WSAEWOULDBLOCK) {
        WSAPOLLFD polled{static_cast<SOCKET>(socket), direction, 0};
        if (WSAPoll(&polled, 1, waitMs) == SOCKET_ERROR)
            return lastError();
        transferred = transfer();
    }
    if (transferred == SOCKET_ERROR)
        return lastError();
    count = static_cast<std::size_t>(transferred);
    return {};
}

} // namespace

asio::error_code TcpTransfer::receive(std::span<ViByte> buffer, int waitMs, std::size_t& count) noexcept
{
    count = 0;
    const auto error = attempt(socket_, POLLRDNORM, waitMs, count, [this, buffer] {
        return ::recv(static_cast<SOCKET>(socket_), reinterpret_cast<char*>(buffer.data()), lengthOf(buffer.size()), 0);
    });
    return !error && count == 0 ? asio::error_code(asio::error::eof) : error;
}

asio::error_code TcpTransfer::send(std::span<const ViByte> bytes, int waitMs, std::size_t& count) noexcept
{
    count = 0;
    return attempt(socket_, POLLWRNORM, waitMs, count, [this, bytes] {
        return ::send(static_cast<SOCKET>(socket_), reinterpret_cast<const char*>(bytes.data()), lengthOf(bytes.size()),
                      0);
    });
}

void TcpTransfer::stop() noexcept
{
    stopped_ = true;
    ::shutdown(static_cast<SOCKET>(socket_), SD_BOTH);
}

} // namespace visa
