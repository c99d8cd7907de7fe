#pragma once

#include <visa.h>

#include <optional>
#include <string>
#include <string_view>

namespace visa
{

enum class ResourceKind
{
    Serial,
    Gpib,
    Usb,
    TcpipInstrument,
    TcpipSocket
};

/// A resource string taken apart (VPP-4.3 Table 4.3.1).
struct ResourceName
{
    ResourceKind kind = ResourceKind::Serial;
    ViUInt16 board = 0;
    std::string address{};      ///< TCPIP: host without brackets; serial: device path, empty when the board names it
    ViUInt16 port = 0;          ///< TCPIP SOCKET; TCPIP INSTR: the one behind the device's name, otherwise 0
    std::string device{};       ///< TCPIP INSTR: the device's name without a port, "inst0" where there is none
    bool namesDevice = false;   ///< TCPIP INSTR: whether the string has a device's name
    ViUInt16 vendorId = 0;      ///< USB
    ViUInt16 productId = 0;     ///< USB
    std::string serialNumber{}; ///< USB
    std::optional<ViUInt16> interfaceNumber{}; ///< USB
    bool wantsSecure = false;                  ///< the string asks for a secure connection ("@")
    std::string canonical{};                   ///< the name as VI_ATTR_RSRC_NAME tells it
};

/// That of an instrument with HiSLIP whose name tells none.
inline constexpr ViUInt16 kHislipPort = 4880;

/// The VI_INTF_ type of a kind of resource.
ViUInt16 interfaceType(ResourceKind kind);

/// The interface for people: "ASRL1", "serial port /dev/ttyUSB0", "TCPIP0".
std::string interfaceName(const ResourceName& name);

/// "INSTR" or "SOCKET".
std::string_view resourceClass(ResourceKind kind);

/// A vendor's or product's number as USB resource strings have it, "0x1234" (VPP-4.3 rule 4.3.1).
std::string usbIdText(ViUInt16 id);

/// Longest resource string understood, so that its attributes fit the 256 characters of a VISA string.
inline constexpr std::size_t kLongestResourceName = 240;

/// @return nothing when the string does not fit the grammar
std::optional<ResourceName> parseResourceName(std::string_view text);

} // namespace visa
