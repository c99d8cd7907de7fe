#include "virtual_instrument/transport/mdns/mdns_responder.h"

#include <chrono>
#include <utility>

namespace kvxvirtual
{
namespace
{

using asio::ip::address_v4;
using asio::ip::udp;

constexpr unsigned short kPort = 5353;
constexpr int kHops = 255;
constexpr int kAnnouncements = 2;
constexpr std::chrono::seconds kBetweenAnnouncements{1};

const udp::endpoint& group()
{
    static const udp::endpoint kGroup(asio::ip::make_address_v4("224.0.0.251"), kPort);
    return kGroup;
}

} // namespace

MdnsResponder::MdnsResponder(asio::io_context& context, address_v4 address, mdns::ServiceRecords records)
    : context_(context), address_(std::move(address)), records_(std::move(records)), socket_(context, udp::v4()),
      pause_(context)
{
    // The host's own responder has the port as well.
    socket_.set_option(udp::socket::reuse_address(true));
    socket_.bind({address_v4::any(), kPort});
    socket_.set_option(asio::ip::multicast::join_group(group().address().to_v4(), address_));
    socket_.set_option(asio::ip::multicast::outbound_interface(address_));
    socket_.set_option(asio::ip::multicast::hops(kHops));
    receive();
    announce(kAnnouncements);
}

void MdnsResponder::announce(int times)
{
    send(records_.announcement(addressTowards(group().address().to_v4())), group());
    if (times <= 1)
        return;
    pause_.expires_after(kBetweenAnnouncements);
    pause_.async_wait([this, times](asio::error_code error) {
        if (!error)
            announce(times - 1);
    });
}

void MdnsResponder::receive()
{
    socket_.async_receive_from(asio::buffer(message_), asker_, [this](asio::error_code error, std::size_t size) {
        if (error == asio::error::operation_aborted)
            return;
        if (!error)
            answer({message_.data(), size});
        receive();
    });
}

void MdnsResponder::answer(std::span<const std::uint8_t> question)
{
    const address_v4 asker = asker_.address().to_v4();
    // The host hands over what arrives on other interfaces, if another program has joined the group there.
    if (address_.is_loopback() && !asker.is_loopback())
        return;
    const auto kind = asker_.port() == kPort ? mdns::Asker::Responder : mdns::Asker::Program;
    if (const auto answer = records_.answer(question, kind, addressTowards(asker)))
        send(answer->message, answer->toAskerAlone ? asker_ : group());
}

void MdnsResponder::send(const mdns::Bytes& message, const Endpoint& to)
{
    // A host that cannot be reached now asks again.
    asio::error_code ignored;
    socket_.send_to(asio::buffer(message), to, 0, ignored);
}

std::uint32_t MdnsResponder::addressTowards(const address_v4& asker) const
{
    if (!address_.is_unspecified())
        return address_.to_uint();
    // Nothing is sent: the host only says which of its addresses it would use.
    asio::error_code error;
    udp::socket route(context_, udp::v4());
    route.connect({asker, kPort}, error);
    const auto local = route.local_endpoint(error);
    return error ? address_.to_uint() : local.address().to_v4().to_uint();
}

} // namespace kvxvirtual
