#include "tests/support/processes/own_network.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvxtest
{
namespace
{

bool writeFile(const char* path, const std::string& text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0)
        ::close(file);
    return written;
}

/// As root of a namespace of users this process may do in its network what root may.
bool unshareNetwork()
{
    const std::string user = "0 " + std::to_string(::geteuid()) + " 1";
    const std::string group = "0 " + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWNET) == 0)
        return true;
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", user) && writeFile("/proc/self/gid_map", group);
}

bool switchOnLoopback()
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", sizeof request.ifr_name - 1);
    bool isOn = ::ioctl(socket, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    isOn = isOn && ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    ::close(socket);
    return isOn;
}

std::string entered()
{
    if (!unshareNetwork() || !switchOnLoopback())
        return "this host gives no program a network of its own: " + std::string(std::strerror(errno));
    return {};
}

} // namespace

std::string enterOwnNetwork()
{
    static const std::string complaint = entered();
    return complaint;
}

} // namespace kvxtest
