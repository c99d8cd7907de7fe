#pragma once

#include "platform/common/windows_handle.h"
#include "visa/host/deadline.h"

#include <cstddef>
#include <span>

namespace visa
{

using platform::Handle;

/// An event that stays signalled until it is reset. Throws std::system_error when there are no handles left.
Handle makeEvent();

/// How a transfer ended, or a pause.
enum class TransferEnd
{
    Done,
    TimedOut,
    Aborted, ///< the operation is to end
    Interrupted,
    ConnectionLost, ///< the port was taken away: an adapter that was pulled out
    Failed
};

/// What an error of the host says of the port.
TransferEnd endOf(DWORD error) noexcept;

struct ComTransfer
{
    TransferEnd end;
    std::size_t count; ///< bytes moved, however it ended
};

/// An open serial port. One read and one write may run at the same time, and interrupt() at any time.
class ComPort
{
public:
    /// Takes over a port that was opened for overlapped operations, with a line that is ready. Throws
    /// std::system_error when there are no handles left.
    explicit ComPort(Handle port);

    HANDLE handle() const { return port_.get(); }

    /// Takes what has arrived, and waits for it if there is nothing.
    ComTransfer read(std::span<ViByte> buffer, const Deadline& deadline) noexcept;

    /// Returns when all bytes are on their way.
    ComTransfer write(std::span<const ViByte> bytes, const Deadline& deadline) noexcept;

    /// Waits for pauseMs or less.
    /// @return Done when the pause is over, or Interrupted
    TransferEnd pause(int pauseMs) const noexcept;

    /// Bytes received and not read yet.
    DWORD received() const noexcept;

    /// Ends every transfer and pause, those to come as well.
    void interrupt() noexcept;

private:
    template <class Start>
    ComTransfer run(HANDLE ended, const Deadline& deadline, Start start) const noexcept;
    TransferEnd await(HANDLE ended, const Deadline& deadline) const noexcept;

    Handle port_;
    Handle interrupted_ = makeEvent();
    Handle readEnded_ = makeEvent();
    Handle writeEnded_ = makeEvent();
};

} // namespace visa
