#include "visa/transport/transports.h"

#include "visa/discovery/lan_search.h"
#include "visa/resource/lan_protocols.h"
#include "visa/transport/hislip/hislip_transport.h"
#include "visa/transport/serial/find_serial_ports.h"
#include "visa/transport/serial/serial_stream.h"
#include "visa/transport/stream_transport.h"
#include "visa/transport/tcp/tcp_stream.h"
#include "visa/transport/usb/usb_transport.h"
#include "visa/transport/vxi11/vxi11_open.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace visa
{
namespace
{

template <ViStatus (*openStream)(const ResourceName&, const Deadline&, std::unique_ptr<Stream>&), Framing framing>
ViStatus openStreamTransport(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport)
{
    std::unique_ptr<Stream> stream;
    const ViStatus status = openStream(name, deadline, stream);
    if (status >= 0)
        transport = std::make_unique<StreamTransport>(std::move(stream), framing);
    return status;
}

template <ResourceKind kind>
bool isKind(const ResourceName& name)
{
    return name.kind == kind;
}

/// Whether a LAN instrument may be reached with this protocol; a string without a device's name decides nothing.
template <bool LanProtocols::*protocol>
bool mayUse(const ResourceName& name)
{
    return name.kind == ResourceKind::TcpipInstrument && (!name.namesDevice || lanProtocols(name.device).*protocol);
}

bool servesVxi11(const ResourceName& name)
{
    // Only HiSLIP's names have a port.
    return name.port == 0 && mayUse<&LanProtocols::vxi11>(name);
}

struct TransportRow
{
    bool (*serves)(const ResourceName& name);
    SessionClass sessionClass;
    ViStatus (*open)(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport);
};

/// All transports. Of those that serve a resource the first is tried first.
constexpr std::array<TransportRow, 5> kTransports{{
    {isKind<ResourceKind::Serial>, kSerial, openStreamTransport<openSerialStream, Framing::SerialLine>},
    {isKind<ResourceKind::TcpipSocket>, kSocket, openStreamTransport<openTcpStream, Framing::None>},
    {servesVxi11, kVxi11, openVxi11},
    {mayUse<&LanProtocols::hislip>, kHislip, openHislip},
    {isKind<ResourceKind::Usb>, kUsb, openUsb},
}};

/// The time that one of several candidates may take, so that each after it has as much.
Deadline shareOf(const Deadline& deadline, int candidates)
{
    return Deadline(static_cast<ViUInt32>(deadline.remainingMs(std::numeric_limits<int>::max()) / candidates));
}

/// A way to find resources. It ends within a second, whatever comes from outside, finds nothing where the host has
/// none, and tells names that viOpen understands.
struct SearchRow
{
    std::string_view beginning; ///< of the names that it finds
    std::vector<std::string> (*search)();
};

/// All searches. One may find resources of several transports.
constexpr std::array<SearchRow, 3> kSearches{{
    {"ASRL", findSerialPorts},
    {"USB", findUsb},
    {"TCPIP", findLanInstruments},
}};

} // namespace

ViStatus openTransport(const ResourceName& name, const Deadline& deadline, OpenedTransport& opened)
{
    if (name.wantsSecure)
        return VI_ERROR_INV_PROT;
    const auto serves = [&name](const TransportRow& row) { return row.serves(name); };
    auto candidates = std::count_if(kTransports.begin(), kTransports.end(), serves);
    ViStatus status = VI_ERROR_LIBRARY_NFOUND;
    for (const TransportRow& row : kTransports) {
        if (!serves(row))
            continue;
        const bool isLast = candidates == 1;
        status = row.open(name, isLast ? deadline : shareOf(deadline, static_cast<int>(candidates)), opened.transport);
        opened.sessionClass = row.sessionClass;
        --candidates;
        if (status >= 0)
            break;
    }
    return status;
}

std::vector<std::string> presentResources(const std::function<bool(std::string_view beginning)>& isWanted)
{
    std::vector<std::string> names;
    for (const SearchRow& row : kSearches) {
        if (!isWanted(row.beginning))
            continue;
        for (std::string& name : row.search())
            names.push_back(std::move(name));
    }
    return names;
}

} // namespace visa
