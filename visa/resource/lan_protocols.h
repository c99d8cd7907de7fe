#pragma once

#include <string_view>

namespace visa
{

/// The protocols that may reach a LAN instrument (TCPIP INSTR).
struct LanProtocols
{
    bool vxi11 = true;
    bool hislip = true;
};

/// What the name of the device decides (VPP-4.3 section 4.3.1): one that begins as those of HiSLIP or VXI-11 do, in
/// letters of any case, leaves that protocol alone; any other one leaves both, as no name does.
LanProtocols lanProtocols(std::string_view device);

} // namespace visa
