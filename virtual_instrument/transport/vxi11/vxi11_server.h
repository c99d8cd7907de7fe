#pragma once

#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/link/link_hub.h"
#include "virtual_instrument/transport/vxi11/core_service.h"
#include "virtual_instrument/transport/vxi11/rpc_connection.h"

#include <asio.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace kvxvirtual::vxi11
{

/// The instrument for clients of VXI-11: its core channel and its abort channel. A link lives as long as the connection
/// that has created it. What has to wait (for a reply, a lock, a connection) holds up its own connection and nobody
/// else. One thread, that of the hub's context.
class Vxi11Server final : public LinkRegistry
{
public:
    /// More links and connections are refused.
    static constexpr std::size_t kMostLinks = 64;
    static constexpr std::size_t kMostConnections = 128;

    explicit Vxi11Server(LinkHub& hub) : hub_(hub) {}
    /// Ends all connections without telling anybody.
    ~Vxi11Server() override;

    Vxi11Server(const Vxi11Server&) = delete;
    Vxi11Server& operator=(const Vxi11Server&) = delete;

    using Ended = RpcConnection::Ended;

    /// Serves a connection, which keeps itself alive; `ended` is called once at its end. Null when there are too many.
    std::shared_ptr<Connection> serveCore(asio::ip::tcp::socket socket, const std::string& name, Ended ended);
    std::shared_ptr<Connection> serveAbort(asio::ip::tcp::socket socket, Ended ended);

    /// What clients are told of when they create a link.
    void setAbortPort(unsigned short port) { abortPort_ = port; }

private:
    class AbortService;

    // LinkRegistry
    std::optional<LinkId> add(CoreService& service) override;
    void remove(LinkId id) override { owners_.erase(id); }
    unsigned short abortPort() const override { return abortPort_; }

    /// Whether there is such a link; what it waits for ends.
    bool abort(LinkId id);
    std::shared_ptr<Connection> serve(asio::ip::tcp::socket socket, std::unique_ptr<RpcService> service, Ended ended);

    LinkHub& hub_;
    unsigned short abortPort_ = 0;
    std::map<const Connection*, std::weak_ptr<RpcConnection>> connections_;
    LinkId lastLink_ = 0;
    std::map<LinkId, CoreService*> owners_; ///< of all links
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

} // namespace kvxvirtual::vxi11
