#include "visa/resource/resource_name.h"

#include "visa/host/network.h"
#include "visa/resource/bus_name.h"
#include "visa/resource/lan_protocols.h"
#include "visa/resource/name_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace visa
{
namespace
{

constexpr std::string_view kSeparator = "::";

bool isPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

bool isHostCharacter(char c)
{
    const char u = upper(c);
    return (u >= 'A' && u <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
}

std::optional<ViUInt16> parseUsbId(std::string_view text)
{
    const bool hexadecimal = startsIgnoringCase(text, "0X");
    return hexadecimal ? parseNumber(text.substr(2), 16) : parseDecimal(text);
}

/// Splits at "::" outside pairs of brackets, which protect the colons of an IPv6 address.
NameParts split(std::string_view text)
{
    NameParts parts;
    std::size_t begin = 0;
    bool bracketed = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '[')
            bracketed = text.find(']', i) != std::string_view::npos;
        if (text[i] == ']')
            bracketed = false;
        if (bracketed || text.substr(i, kSeparator.size()) != kSeparator)
            continue;
        parts.push_back(text.substr(begin, i - begin));
        begin = i + kSeparator.size();
        i = begin - 1;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

/// Drops the class INSTR, which is the default.
void dropInstrumentClass(NameParts& parts)
{
    if (parts.size() > 1 && equalsIgnoringCase(parts.back(), kInstrumentClass))
        parts.pop_back();
}

bool parseHost(std::string_view text, ResourceName& name)
{
    const std::size_t at = text.rfind('@');
    if (at != std::string_view::npos) {
        name.wantsSecure = true;
        text.remove_prefix(at + 1);
    }
    if (text.size() > 2 && text.front() == '[' && text.back() == ']') {
        name.address = text.substr(1, text.size() - 2);
        asio::error_code error;
        asio::ip::make_address_v6(name.address, error);
        return !error && isPrintable(name.address);
    }
    name.address = text;
    return !text.empty() && std::all_of(text.begin(), text.end(), isHostCharacter);
}

bool parseSocket(const NameParts& parts, ResourceName& name)
{
    if (parts.size() != 4 || !parseHost(parts[1], name))
        return false;
    const auto port = parseDecimal(parts[2]);
    name.port = port.value_or(0);
    name.kind = ResourceKind::TcpipSocket;
    name.resourceClass = "SOCKET";
    name.canonical += "::" + std::string(parts[1]) + "::" + std::to_string(name.port) + "::SOCKET";
    return name.port != 0;
}

/// "inst0", "hislip0,4881"; VXI-11's names have no port, and in "gpib0,5" the comma is part of one.
bool parseDevice(std::string_view text, ResourceName& name)
{
    const std::size_t comma = lanProtocols(text).hislip ? text.find(',') : std::string_view::npos;
    if (comma != std::string_view::npos) {
        name.port = parseDecimal(text.substr(comma + 1)).value_or(0);
        if (name.port == 0)
            return false;
    }
    name.namesDevice = true;
    name.device = text.substr(0, comma);
    return !name.device.empty() && isPrintable(name.device) && name.device.find(':') == std::string::npos;
}

/// "TCPIP::inst0::SERVANT": this host as an instrument.
bool parseServant(const NameParts& parts, ResourceName& name)
{
    name.device = "inst0";
    if (parts.size() > 3 || (parts.size() == 3 && !parseDevice(parts[1], name)) || name.port != 0)
        return false;
    name.kind = ResourceKind::TcpipServant;
    name.resourceClass = "SERVANT";
    name.canonical += "::" + name.device + "::SERVANT";
    return true;
}

bool parseTcpip(NameParts& parts, ResourceName& name)
{
    if (equalsIgnoringCase(parts.back(), "SOCKET"))
        return parseSocket(parts, name);
    if (equalsIgnoringCase(parts.back(), "SERVANT"))
        return parseServant(parts, name);
    dropInstrumentClass(parts);
    name.device = "inst0";
    const bool hasDevice = parts.size() == 3;
    if (parts.size() < 2 || parts.size() > 3 || !parseHost(parts[1], name) ||
        (hasDevice && !parseDevice(parts[2], name)))
        return false;
    const std::string device = hasDevice ? std::string(parts[2]) : name.device;
    name.canonical += "::" + std::string(parts[1]) + "::" + device + "::INSTR";
    return true;
}

bool parseUsb(NameParts& parts, ResourceName& name)
{
    dropInstrumentClass(parts);
    if (parts.size() < 4 || parts.size() > 5 || parts[3].empty() || !isPrintable(parts[3]))
        return false;
    const auto vendor = parseUsbId(parts[1]);
    const auto product = parseUsbId(parts[2]);
    if (parts.size() == 5)
        name.interfaceNumber = parseDecimal(parts[4]);
    if (!vendor || !product || (parts.size() == 5 && !name.interfaceNumber))
        return false;
    name.vendorId = *vendor;
    name.productId = *product;
    name.serialNumber = parts[3];
    name.canonical += "::" + usbIdText(name.vendorId) + "::" + usbIdText(name.productId) + "::" + name.serialNumber;
    if (name.interfaceNumber)
        name.canonical += "::" + std::to_string(*name.interfaceNumber);
    name.canonical += "::INSTR";
    return true;
}

bool parseSerial(NameParts& parts, ResourceName& name)
{
    dropInstrumentClass(parts);
    name.canonical += "::INSTR";
    return parts.size() == 1;
}

/// "ASRL/dev/ttyUSB0": a device named directly.
std::optional<ResourceName> parseSerialDevice(NameParts& parts)
{
    constexpr std::string_view kKeyword = "ASRL";
    ResourceName name;
    name.address = parts.front().substr(kKeyword.size());
    name.canonical = std::string(kKeyword) + name.address;
    if (!isPrintable(name.address) || !parseSerial(parts, name))
        return std::nullopt;
    return name;
}

struct Grammar
{
    std::string_view keyword;
    ResourceKind kind;
    bool (*parse)(NameParts& parts, ResourceName& name);
};

bool parseBus(NameParts& parts, ResourceName& name)
{
    return parseBusName(parts, name);
}

/// Of keywords that begin alike the longer one comes first.
constexpr std::array<Grammar, 7> kGrammars{{
    {"ASRL", ResourceKind::Serial, parseSerial},
    {"GPIB-VXI", ResourceKind::GpibVxi, parseBus},
    {"GPIB", ResourceKind::Gpib, parseBus},
    {"VXI", ResourceKind::Vxi, parseBus},
    {"PXI", ResourceKind::Pxi, parseBus},
    {"TCPIP", ResourceKind::TcpipInstrument, parseTcpip},
    {"USB", ResourceKind::Usb, parseUsb},
}};

} // namespace

ViUInt16 interfaceType(ResourceKind kind)
{
    switch (kind) {
    case ResourceKind::Serial:
        return VI_INTF_ASRL;
    case ResourceKind::Gpib:
        return VI_INTF_GPIB;
    case ResourceKind::Vxi:
        return VI_INTF_VXI;
    case ResourceKind::GpibVxi:
        return VI_INTF_GPIB_VXI;
    case ResourceKind::Pxi:
        return VI_INTF_PXI;
    case ResourceKind::Usb:
        return VI_INTF_USB;
    case ResourceKind::TcpipInstrument:
    case ResourceKind::TcpipSocket:
    case ResourceKind::TcpipServant:
        break;
    }
    return VI_INTF_TCPIP;
}

std::string interfaceName(const ResourceName& name)
{
    std::string text = name.canonical.substr(0, name.canonical.find("::"));
    if (name.kind == ResourceKind::Serial && text.starts_with("ASRL/"))
        return "serial port " + name.address;
    return text;
}

std::string usbIdText(ViUInt16 id)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", id);
    return text.data();
}

std::optional<ResourceName> parseResourceName(std::string_view text)
{
    // What is put behind a colon at the end would be separated in front of it.
    if (text.size() > kLongestResourceName || text.ends_with(':'))
        return std::nullopt;
    NameParts parts = split(text);
    if (startsIgnoringCase(parts.front(), "ASRL/") && parts.front().substr(4).starts_with("/dev/"))
        return parseSerialDevice(parts);

    const auto* const grammar = std::find_if(kGrammars.begin(), kGrammars.end(), [&parts](const Grammar& candidate) {
        return startsIgnoringCase(parts.front(), candidate.keyword);
    });
    if (grammar == kGrammars.end())
        return std::nullopt;
    const std::string_view digits = parts.front().substr(grammar->keyword.size());
    const auto board = digits.empty() ? std::optional<ViUInt16>(0) : parseDecimal(digits);
    if (!board)
        return std::nullopt;
    ResourceName name;
    name.kind = grammar->kind;
    name.board = *board;
    name.canonical = std::string(grammar->keyword) + std::to_string(*board);
    if (!grammar->parse(parts, name))
        return std::nullopt;
    return name;
}

} // namespace visa
