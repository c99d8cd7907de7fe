#pragma once

#include "virtual_instrument/transport/vxi11/rpc_connection.h"

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kvxvirtual::vxi11
{

inline constexpr unsigned short kPortmapperPort = 111;

/// A program and the TCP port where it is.
struct PortMapping
{
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    unsigned short port = 0;
};

/// What a portmapper (version 2) answers that knows these programs and takes no others.
RpcAnswer answerPortmapper(const RpcCall& call, const std::vector<PortMapping>& mappings);

/// The same for calls of one TCP connection.
class PortmapperService final : public RpcService
{
public:
    explicit PortmapperService(std::vector<PortMapping> mappings) : mappings_(std::move(mappings)) {}

    void call(const RpcCall& call, Reply reply) override { reply(answerPortmapper(call, mappings_)); }

private:
    std::vector<PortMapping> mappings_;
};

/// The same for datagrams, broadcast ones among them where the address is that of all interfaces. One call is answered
/// with one datagram, which is hardly larger.
class PortmapperDatagrams
{
public:
    /// Throws std::system_error when the address cannot be had.
    PortmapperDatagrams(asio::io_context& context, const asio::ip::udp::endpoint& endpoint,
                        std::vector<PortMapping> mappings);

    ~PortmapperDatagrams() = default;
    PortmapperDatagrams(const PortmapperDatagrams&) = delete;
    PortmapperDatagrams& operator=(const PortmapperDatagrams&) = delete;

private:
    void receive();

    asio::ip::udp::socket socket_;
    std::vector<PortMapping> mappings_;
    asio::ip::udp::endpoint sender_;
    std::array<char, 1024> call_{};
};

} // namespace kvxvirtual::vxi11
