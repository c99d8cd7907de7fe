#include "visa/resource/resource_name.h"

#include "visa/host/network.h"
#include "visa/resource/lan_protocols.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <vector>

namespace visa
{
namespace
{

using Parts = std::vector<std::string_view>;

constexpr std::string_view kSeparator = "::";

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view keyword)
{
    return std::equal(text.begin(), text.end(), keyword.begin(), keyword.end(),
                      [](char a, char b) { return upper(a) == b; });
}

bool startsIgnoringCase(std::string_view text, std::string_view keyword)
{
    return text.size() >= keyword.size() && equalsIgnoringCase(text.substr(0, keyword.size()), keyword);
}

bool isPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

bool isHostCharacter(char c)
{
    const char u = upper(c);
    return (u >= 'A' && u <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
}

std::optional<ViUInt16> parseNumber(std::string_view digits, int base, ViUInt16 largest)
{
    ViUInt16 value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value, base);
    if (error != std::errc{} || stopped != end || value > largest)
        return std::nullopt;
    return value;
}

std::optional<ViUInt16> parseDecimal(std::string_view digits, ViUInt16 largest = 0xFFFF)
{
    return parseNumber(digits, 10, largest);
}

std::optional<ViUInt16> parseUsbId(std::string_view text)
{
    const bool hexadecimal = startsIgnoringCase(text, "0X");
    return hexadecimal ? parseNumber(text.substr(2), 16, 0xFFFF) : parseDecimal(text);
}

/// Splits at "::" outside pairs of brackets, which protect the colons of an IPv6 address.
Parts split(std::string_view text)
{
    Parts parts;
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
void dropInstrumentClass(Parts& parts)
{
    if (parts.size() > 1 && equalsIgnoringCase(parts.back(), "INSTR"))
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

bool parseSocket(const Parts& parts, ResourceName& name)
{
    if (parts.size() != 4 || !parseHost(parts[1], name))
        return false;
    const auto port = parseDecimal(parts[2]);
    name.port = port.value_or(0);
    name.kind = ResourceKind::TcpipSocket;
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

bool parseTcpip(Parts& parts, ResourceName& name)
{
    if (equalsIgnoringCase(parts.back(), "SOCKET"))
        return parseSocket(parts, name);
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

bool parseGpib(Parts& parts, ResourceName& name)
{
    constexpr std::array<ViUInt16, 2> kLargest{30, 31};
    dropInstrumentClass(parts);
    if (parts.size() < 2 || parts.size() > 3)
        return false;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const auto address = parseDecimal(parts[i], kLargest[i - 1]);
        if (!address)
            return false;
        name.canonical += "::" + std::to_string(*address);
    }
    name.canonical += "::INSTR";
    return true;
}

bool parseUsb(Parts& parts, ResourceName& name)
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

bool parseSerial(Parts& parts, ResourceName& name)
{
    dropInstrumentClass(parts);
    name.canonical += "::INSTR";
    return parts.size() == 1;
}

/// "ASRL/dev/ttyUSB0": a device named directly.
std::optional<ResourceName> parseSerialDevice(Parts& parts)
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
    bool (*parse)(Parts& parts, ResourceName& name);
};

constexpr std::array<Grammar, 4> kGrammars{{
    {"ASRL", ResourceKind::Serial, parseSerial},
    {"GPIB", ResourceKind::Gpib, parseGpib},
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
    case ResourceKind::Usb:
        return VI_INTF_USB;
    case ResourceKind::TcpipInstrument:
    case ResourceKind::TcpipSocket:
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

std::string_view resourceClass(ResourceKind kind)
{
    return kind == ResourceKind::TcpipSocket ? "SOCKET" : "INSTR";
}

std::optional<ResourceName> parseResourceName(std::string_view text)
{
    // What is put behind a colon at the end would be separated in front of it.
    if (text.size() > kLongestResourceName || text.ends_with(':'))
        return std::nullopt;
    Parts parts = split(text);
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
