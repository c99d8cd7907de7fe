#include "virtual_instrument/transport/console.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace kvxvirtual
{
namespace
{

/// For an output that whoever else has it open has set not to wait.
void waitForRoom(int descriptor)
{
    pollfd output{descriptor, POLLOUT, 0};
    ::poll(&output, 1, -1);
}

} // namespace

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

void writePlainLineFeeds() {}

void outliveReaders()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

void writeTo(StandardOutput output, std::string_view bytes)
{
    const int descriptor = output == StandardOutput::Output ? STDOUT_FILENO : STDERR_FILENO;
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN)
            waitForRoom(descriptor);
        else if (errno != EINTR)
            return;
    }
}

} // namespace kvxvirtual
