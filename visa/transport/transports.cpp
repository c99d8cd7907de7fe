#include "visa/transport/transports.h"

#include "visa/transport/hislip/hislip_transport.h"
#include "visa/transport/serial/serial_stream.h"
#include "visa/transport/stream_transport.h"
#include "visa/transport/tcp/tcp_stream.h"
#include "visa/transport/usb/usb_transport.h"

#include <array>

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

struct TransportRow
{
    bool (*serves)(const ResourceName& name);
    SessionClass sessionClass;
    ViStatus (*open)(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport);
};

/// All transports. Of those that serve a resource the first is tried first.
constexpr std::array<TransportRow, 4> kTransports{{
    {isKind<ResourceKind::Serial>, kSerial, openStreamTransport<openSerialStream, Framing::SerialLine>},
    {isKind<ResourceKind::TcpipSocket>, kSocket, openStreamTransport<openTcpStream, Framing::None>},
    {isKind<ResourceKind::Usb>, kUsb, openUsb},
    {servesHislip, kHislip, openHislip},
}};

} // namespace

ViStatus openTransport(const ResourceName& name, const Deadline& deadline, OpenedTransport& opened)
{
    if (name.wantsSecure)
        return VI_ERROR_INV_PROT;
    ViStatus status = VI_ERROR_LIBRARY_NFOUND;
    for (const TransportRow& row : kTransports) {
        if (!row.serves(name))
            continue;
        status = row.open(name, deadline, opened.transport);
        opened.sessionClass = row.sessionClass;
        if (status >= 0)
            break;
    }
    return status;
}

} // namespace visa
