#include "visa/transport/tcp/tcp_transfer.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace visa
{
namespace
{

asio::error_code lastError()
{
    return {errno, asio::error::get_system_category()};
}

/// Limits the waiting of later calls in one direction; a limit that is in force already costs nothing.
bool limit(int socket, int option, int waitMs, int& inForce)
{
    constexpr long kMsPerSecond = 1000;
    if (waitMs == inForce)
        return true;
    timeval duration{};
    duration.tv_sec = waitMs / kMsPerSecond;
    duration.tv_usec = waitMs % kMsPerSecond * kMsPerSecond;
    if (::setsockopt(socket, SOL_SOCKET, option, &duration, sizeof duration) != 0)
        return false;
    inForce = waitMs;
    return true;
}

/// A count that the host has returned: of bytes, or -1 for an error.
asio::error_code outcome(ssize_t transferred, std::size_t& count)
{
    if (transferred < 0)
        return lastError();
    count = static_cast<std::size_t>(transferred);
    return {};
}

} // namespace

asio::error_code TcpTransfer::receive(std::span<ViByte> buffer, int waitMs, std::size_t& count) noexcept
{
    const int socket = static_cast<int>(socket_);
    count = 0;
    if (waitMs != 0 && !limit(socket, SO_RCVTIMEO, waitMs, receiveLimitMs_))
        return lastError();
    const auto error = outcome(::recv(socket, buffer.data(), buffer.size(), waitMs == 0 ? MSG_DONTWAIT : 0), count);
    return !error && count == 0 ? asio::error_code(asio::error::eof) : error;
}

asio::error_code TcpTransfer::send(std::span<const ViByte> bytes, int waitMs, std::size_t& count) noexcept
{
    const int socket = static_cast<int>(socket_);
    count = 0;
    if (waitMs != 0 && !limit(socket, SO_SNDTIMEO, waitMs, sendLimitMs_))
        return lastError();
    return outcome(::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | (waitMs == 0 ? MSG_DONTWAIT : 0)), count);
}

void TcpTransfer::stop() noexcept
{
    stopped_ = true;
    ::shutdown(static_cast<int>(socket_), SHUT_RDWR);
}

} // namespace visa
