#pragma once

#include "visa/host/native_handle.h"

#include <visa.h>

#include <asio/error.hpp>

#include <atomic>
#include <cstddef>
#include <span>

namespace visa
{

/// Transfers over a connected TCP socket, each with as few calls to the host as it takes, that wait no longer than they
/// are told to. One receive and one send may run at the same time, and stop() at any time.
class TcpTransfer
{
public:
    /// The socket comes from connectTo() and stays somebody else's.
    explicit TcpTransfer(NativeHandle socket) : socket_(socket) {}

    /// Takes what has arrived, and waits for it if there is nothing; 0 ms only looks.
    /// @param count bytes stored in buffer, at least one on success
    /// @return would_block or try_again when the time is over, or earlier; eof at the end of the stream, or the host's
    ///         error; any of them after stop()
    asio::error_code receive(std::span<ViByte> buffer, int waitMs, std::size_t& count) noexcept;

    /// Hands over what the host takes, and waits for it to take something; 0 ms only tries.
    asio::error_code send(std::span<const ViByte> bytes, int waitMs, std::size_t& count) noexcept;

    /// Ends the connection, and with it the transfers that are waiting.
    void stop() noexcept;

    bool stopped() const noexcept { return stopped_; }

private:
    NativeHandle socket_;
    /// The limits that the socket has now where the host keeps some, so that a transfer of the usual duration need not
    /// set one.
    int receiveLimitMs_ = 0;
    int sendLimitMs_ = 0;
    std::atomic<bool> stopped_ = false;
};

} // namespace visa
