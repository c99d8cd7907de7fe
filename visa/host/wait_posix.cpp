#include "visa/host/wait_posix.h"

#include "visa/host/close_on_exec_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace visa
{
namespace
{

void prepare(int descriptor)
{
    closeOnExec(descriptor);
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

} // namespace

Interrupter::Interrupter()
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    prepare(ends[0]);
    prepare(ends[1]);
    waited_ = ends[0];
    signalled_ = ends[1];
}

Interrupter::~Interrupter()
{
    ::close(static_cast<int>(waited_));
    ::close(static_cast<int>(signalled_));
}

void Interrupter::interrupt() noexcept
{
    // Nobody takes the byte out again, so every later wait ends as well; a full pipe says the same as one more byte.
    const char token = 0;
    const auto written = ::write(static_cast<int>(signalled_), &token, 1);
    static_cast<void>(written);
}

WaitResult Interrupter::wait(NativeHandle handle, Direction direction, const Deadline& deadline) const noexcept
{
    const short events = direction == Direction::Read ? POLLIN : POLLOUT;
    std::array<pollfd, 2> polled{{{static_cast<int>(handle), events, 0}, {static_cast<int>(waited_), POLLIN, 0}}};
    for (;;) {
        const int waitMs = deadline.remainingMs(Deadline::kLookMs);
        const int ready = ::poll(polled.data(), polled.size(), waitMs);
        if (ready < 0 && errno != EINTR)
            return WaitResult::Failed;
        if (ready > 0)
            return polled[1].revents != 0 ? WaitResult::Interrupted : WaitResult::Ready;
        if (deadline.isAborted())
            return WaitResult::Aborted;
        // A signal or the next look cut the wait short; only the deadline ends it.
        if (deadline.remainingMs(1) == 0)
            return WaitResult::TimedOut;
    }
}

WaitResult Interrupter::pause(int pauseMs) const noexcept
{
    pollfd polled{static_cast<int>(waited_), POLLIN, 0};
    const int ready = ::poll(&polled, 1, pauseMs);
    if (ready < 0 && errno != EINTR)
        return WaitResult::Failed;
    return ready > 0 ? WaitResult::Interrupted : WaitResult::TimedOut;
}

} // namespace visa
