#pragma once

#include "virtual_instrument/transport/mdns/service_records.h"

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace kvxvirtual
{

/// Announces the instrument's services by multicast DNS on the interface of one address, and answers questions for
/// them. On the loopback interface only programs of this host are answered. Names are not probed for first: they have
/// the port of the raw socket in them. Everything happens in the thread that runs `context`, which must outlive it.
class MdnsResponder
{
public:
    /// Throws std::system_error when the port of multicast DNS cannot be had.
    /// @param address where the services are; 0.0.0.0 announces on the host's first interface, and answers each asker
    ///                with the address that it reaches
    MdnsResponder(asio::io_context& context, asio::ip::address_v4 address, mdns::ServiceRecords records);

private:
    using Endpoint = asio::ip::udp::endpoint;

    void announce(int times);
    void receive();
    void answer(std::span<const std::uint8_t> question);
    void send(const mdns::Bytes& message, const Endpoint& to);
    std::uint32_t addressTowards(const asio::ip::address_v4& asker) const;

    asio::io_context& context_;
    const asio::ip::address_v4 address_;
    const mdns::ServiceRecords records_;
    asio::ip::udp::socket socket_;
    asio::steady_timer pause_;
    Endpoint asker_;
    std::array<std::uint8_t, 9000> message_{};
};

} // namespace kvxvirtual
