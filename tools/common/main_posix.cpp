#include "tools/common/tool_main.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{

/// Where a standard stream is closed, the next file to be opened would get its number, and its output.
void keepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            static_cast<void>(::open("/dev/null", O_RDONLY));
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    keepStandardStreams();
    // A reader of the output that goes away must not end a change half told.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    // A file that may not grow any more is told of like a full disk.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    return toolMain(argumentCount, arguments);
}
