#include "visa/host/network_interfaces.h"

#include <winsock2.h>

#include <iphlpapi.h>

#include <cstddef>

namespace visa
{
namespace
{

constexpr ULONG kFlags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;

/// The host's list, which lies in a buffer as a whole; empty when the host does not tell.
std::vector<std::max_align_t> adapterList()
{
    constexpr int kAttempts = 3;
    std::vector<std::max_align_t> buffer(16384 / sizeof(std::max_align_t));
    // The list may grow between two calls.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        auto size = static_cast<ULONG>(buffer.size() * sizeof(std::max_align_t));
        const ULONG result = GetAdaptersAddresses(AF_INET, kFlags, nullptr,
                                                  reinterpret_cast<IP_ADAPTER_ADDRESSES*>(buffer.data()), &size);
        if (result == NO_ERROR)
            return buffer;
        if (result != ERROR_BUFFER_OVERFLOW)
            break;
        buffer.resize(size / sizeof(std::max_align_t) + 1);
    }
    return {};
}

NetworkInterface interfaceOf(const IP_ADAPTER_UNICAST_ADDRESS& entry, bool isLoopback)
{
    const auto& address = reinterpret_cast<const sockaddr_in&>(*entry.Address.lpSockaddr);
    NetworkInterface found{asio::ip::address_v4(ntohl(address.sin_addr.s_addr))};
    constexpr unsigned kBits = 32;
    if (!isLoopback && entry.OnLinkPrefixLength < kBits)
        found.broadcast = asio::ip::address_v4(found.address.to_uint() | (0xFFFFFFFFU >> entry.OnLinkPrefixLength));
    return found;
}

} // namespace

std::vector<NetworkInterface> networkInterfaces()
{
    std::vector<NetworkInterface> interfaces;
    const auto list = adapterList();
    if (list.empty())
        return interfaces;
    for (const auto* adapter = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(list.data()); adapter != nullptr;
         adapter = adapter->Next)
    {
        if (adapter->OperStatus != IfOperStatusUp)
            continue;
        for (const auto* entry = adapter->FirstUnicastAddress; entry != nullptr; entry = entry->Next) {
            if (entry->Address.lpSockaddr->sa_family == AF_INET)
                interfaces.push_back(interfaceOf(*entry, adapter->IfType == IF_TYPE_SOFTWARE_LOOPBACK));
        }
    }
    return interfaces;
}

} // namespace visa
