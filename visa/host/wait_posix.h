#pragma once

#include "visa/host/deadline.h"
#include "visa/host/native_handle.h"

namespace visa
{

enum class Direction
{
    Read,
    Write
};

enum class WaitResult
{
    Ready,       ///< input, output room, an error or the end of the line: the next transfer does not block
    TimedOut,    ///< the deadline passed
    Aborted,     ///< the operation is to end
    Interrupted, ///< the session is being closed
    Failed       ///< the host refused to wait
};

/// Ends the waits of a session that is closed by another thread. Once interrupted, always interrupted.
class Interrupter
{
public:
    /// Throws std::system_error when the host has no descriptors left.
    Interrupter();
    ~Interrupter();
    Interrupter(const Interrupter&) = delete;
    Interrupter& operator=(const Interrupter&) = delete;

    /// May be called from any thread, any number of times.
    void interrupt() noexcept;

    /// Waits until the handle is ready in this direction. With an immediate deadline it only looks.
    WaitResult wait(NativeHandle handle, Direction direction, const Deadline& deadline) const noexcept;

    /// Sleeps for pauseMs or less.
    /// @return TimedOut when the pause is over, Interrupted when the session is being closed, or Failed
    WaitResult pause(int pauseMs) const noexcept;

private:
    NativeHandle waited_ = -1;
    NativeHandle signalled_ = -1;
};

} // namespace visa
