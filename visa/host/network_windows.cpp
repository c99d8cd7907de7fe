#include "visa/host/network.h"

#include <winsock2.h>

namespace visa
{

NetworkHold::NetworkHold() noexcept
{
    // Asio's own way for DLLs. The first one made goes last.
    static const asio::detail::winsock_init<>::manual kHold;
}

void startNetwork() noexcept
{
    // Not given back: sessions may still be closed while the process ends, and unloading is no time for it either.
    static const int kResult = [] {
        constexpr WORD kVersion = 0x0202;
        WSADATA data{};
        return WSAStartup(kVersion, &data);
    }();
    static_cast<void>(kResult);
}

} // namespace visa
