#pragma once

#include "visa/host/network.h"

#include <optional>
#include <vector>

namespace visa
{

/// One IPv4 address of this host, on an interface that is up.
struct NetworkInterface
{
    asio::ip::address_v4 address{};
    std::optional<asio::ip::address_v4> broadcast{}; ///< all hosts on its network; the loopback interface has none
};

/// Empty where there is no network, or the host does not tell.
std::vector<NetworkInterface> networkInterfaces();

} // namespace visa
