#pragma once

#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/hislip/hislip_session.h"
#include "virtual_instrument/transport/link/link_hub.h"

#include <asio.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace kvxvirtual::hislip
{

/// The instrument for clients of HiSLIP 1.0 and 2.0 (IVI-6.1), without encryption: tells new connections apart and
/// joins the two of each client. Prefers the synchronized mode. One thread, that of the hub's context.
class HislipServer
{
public:
    /// More clients are refused.
    static constexpr std::size_t kMostClients = 32;
    /// And more connections, whatever they are for.
    static constexpr std::size_t kMostConnections = 3 * kMostClients;

    explicit HislipServer(LinkHub& hub);
    /// Ends all connections without telling anybody.
    ~HislipServer();

    HislipServer(const HislipServer&) = delete;
    HislipServer& operator=(const HislipServer&) = delete;

    using Ended = std::function<void(const std::shared_ptr<Connection>&)>;

    /// Serves a connection, which keeps itself alive; `ended` is called once at its end.
    std::shared_ptr<Connection> serve(asio::ip::tcp::socket socket, std::string name, Ended ended);

private:
    class Greeter;

    void initialize(MessageChannel& channel, const Header& header, std::string_view subAddress);
    void initializeAsynchronous(MessageChannel& channel, const Header& header);
    std::uint16_t newSessionId();

    LinkHub& hub_;
    std::shared_ptr<Greeter> greeter_;
    std::map<std::uint16_t, std::shared_ptr<Session>> sessions_;
    std::uint16_t lastSessionId_ = 0;
    std::size_t connections_ = 0;
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

} // namespace kvxvirtual::hislip
