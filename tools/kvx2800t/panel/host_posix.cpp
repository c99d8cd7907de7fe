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
    // A browser outlives the panel: with the panel's descriptors it would keep the port.
    ::posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    ::pid_t child = 0;
    if (::posix_spawn(&child, "/bin/sh", &actions, nullptr, arguments.data(), environ) == 0)
        ::waitpid(child, nullptr, 0);
    ::posix_spawn_file_actions_destroy(&actions);
}

void drainInput() noexcept
{
    std::array<char, 4096> dropped{};
    while (::read(STDIN_FILENO, dropped.data(), dropped.size()) > 0) {
    }
}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

} // namespace panel
