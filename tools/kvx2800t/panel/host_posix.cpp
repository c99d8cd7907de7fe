#include "tools/kvx2800t/panel/host.h"

#include <array>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace panel
{

void openBrowser(const std::string& address)
{
    // The shell is gone at once and leaves what it has started to init.
    std::string shell = "sh";
    std::string option = "-c";
    std::string script = "xdg-open \"$0\" </dev/null >/dev/null 2>&1 &";
    std::string argument = address;
    const std::array<char*, 5> arguments = {shell.data(), option.data(), script.data(), argument.data(), nullptr};
    ::pid_t child = 0;
    if (::posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments.data(), environ) == 0)
        ::waitpid(child, nullptr, 0);
}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

} // namespace panel
