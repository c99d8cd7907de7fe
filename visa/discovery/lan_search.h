#pragma once

#include "visa/host/network_interfaces.h"

#include <chrono>
#include <string>
#include <vector>

namespace visa
{

/// Where instruments are looked for, and how long.
struct LanSearch
{
    std::vector<NetworkInterface> interfaces{};
    asio::ip::udp::endpoint multicastDns{asio::ip::make_address_v4("224.0.0.251"), 5353};
    std::uint16_t portmapperPort = 111;
    std::chrono::milliseconds duration{500};
};

/// Asks on each interface, once, by multicast DNS for the services of instruments and by a broadcast for VXI-11
/// servers, and collects the answers that come in time; on an interface without broadcasts its own address is asked.
/// Reads at most a thousand answers. Where nothing can be sent nothing is found.
/// @return resource names in the order found; an instrument that answers twice may be there twice
std::vector<std::string> lanInstruments(const LanSearch& search);

/// The instruments on all networks of this host.
std::vector<std::string> findLanInstruments();

} // namespace visa
