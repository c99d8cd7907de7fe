#include "visa/host/network_interfaces.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <memory>

namespace visa
{
namespace
{

asio::ip::address_v4 addressOf(const sockaddr& address)
{
    return asio::ip::address_v4(ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr));
}

} // namespace

std::vector<NetworkInterface> networkInterfaces()
{
    std::vector<NetworkInterface> interfaces;
    ifaddrs* listed = nullptr;
    if (::getifaddrs(&listed) != 0)
        return interfaces;
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> list(listed, ::freeifaddrs);
    for (const ifaddrs* entry = listed; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET || (entry->ifa_flags & IFF_UP) == 0)
            continue;
        NetworkInterface found{addressOf(*entry->ifa_addr)};
        if ((entry->ifa_flags & IFF_BROADCAST) != 0 && entry->ifa_broadaddr != nullptr)
            found.broadcast = addressOf(*entry->ifa_broadaddr);
        interfaces.push_back(found);
    }
    return interfaces;
}

} // namespace visa
