#include "tools/kvx2800t/command_line/platform/host_name.h"

#include <array>
#include <memory>
#include <netdb.h>
#include <sys/socket.h>

namespace command_line
{

Resolution resolveHost(const std::string& name)
{
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    if (const int error = getaddrinfo(name.c_str(), nullptr, &wanted, &first); error != 0)
        return {{}, gai_strerror(error)};
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(first, freeaddrinfo);
    Resolution resolution;
    for (const addrinfo* entry = first; entry != nullptr; entry = entry->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(entry->ai_addr, entry->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0)
            resolution.addresses.emplace_back(text.data());
    }
    return resolution;
}

} // namespace command_line
