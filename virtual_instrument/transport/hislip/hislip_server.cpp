#include "virtual_instrument/transport/hislip/hislip_server.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual::hislip
{
namespace
{

constexpr std::string_view kSubAddress = "hislip0";

} // namespace

/// Who hears the first message of every connection.
class HislipServer::Greeter final : public MessageChannel::Receiver
{
public:
    explicit Greeter(HislipServer& server) : server_(server) {}

    MessageChannel::Use arrived(MessageChannel& channel, const Header& header) override
    {
        const auto kind = header.type == Type::AsyncInitialize ? Channel::Asynchronous : Channel::Synchronous;
        const auto finding = judge(header, kind, kVersion2);
        if (finding.fatal)
            channel.sendFatal(*finding.fatal);
        else if ((header.type != Type::Initialize && header.type != Type::AsyncInitialize) || !finding.good())
            channel.sendFatal(Fatal::InvalidInitialization);
        return MessageChannel::Use::Whole;
    }

    void received(MessageChannel& channel, const Header& header, std::string_view payload, bool) override
    {
        if (header.type == Type::Initialize)
            server_.initialize(channel, header, payload);
        else
            server_.initializeAsynchronous(channel, header);
    }

    void outOfStep(MessageChannel& channel) override { channel.sendFatal(Fatal::PoorlyFormedHeader); }
    void idle(MessageChannel&) override {}
    void drained(MessageChannel&) override {}
    void ended(MessageChannel&) override {}

private:
    HislipServer& server_;
};

HislipServer::HislipServer(LinkHub& hub) : hub_(hub), greeter_(std::make_shared<Greeter>(*this)) {}

HislipServer::~HislipServer()
{
    for (const auto& [id, session] : sessions_)
        session->abandon();
}

std::shared_ptr<Connection> HislipServer::serve(asio::ip::tcp::socket socket, std::string name, Ended ended)
{
    const auto channel = std::make_shared<MessageChannel>(
        std::move(socket), std::move(name), greeter_,
        [this, life = std::weak_ptr(life_), ended = std::move(ended)](const std::shared_ptr<Connection>& connection) {
            if (life.expired())
                return;
            --connections_;
            ended(connection);
        });
    ++connections_;
    channel->start();
    if (connections_ > kMostConnections)
        channel->sendFatal(Fatal::TooManyClients);
    return channel;
}

void HislipServer::initialize(MessageChannel& channel, const Header& header, std::string_view subAddress)
{
    const auto version = std::min(static_cast<std::uint16_t>(header.parameter >> 16U), kVersion2);
    if (version < kVersion1)
        return channel.sendFatal(Fatal::InvalidInitialization, "HiSLIP 1.0 is the oldest version here");
    if (!subAddress.empty() && !equalIgnoringCase(subAddress, kSubAddress))
        return channel.sendFatal(Fatal::InvalidInitialization, "The sub-address of this instrument is hislip0");
    if (sessions_.size() >= kMostClients)
        return channel.sendFatal(Fatal::TooManyClients);
    const auto id = newSessionId();
    const auto self = channel.shared_from_this();
    const auto session = std::make_shared<Session>(hub_, self, version, [this, id] { sessions_.erase(id); });
    sessions_.emplace(id, session);
    channel.setReceiver(session);
    channel.send({Type::InitializeResponse, 0, std::uint32_t{version} << 16U | id});
}

void HislipServer::initializeAsynchronous(MessageChannel& channel, const Header& header)
{
    const auto found =
        header.parameter <= 0xffff ? sessions_.find(static_cast<std::uint16_t>(header.parameter)) : sessions_.end();
    if (found == sessions_.end() || found->second->isComplete())
        return channel.sendFatal(Fatal::InvalidInitialization);
    const auto session = found->second;
    channel.setReceiver(session);
    session->addAsynchronous(channel.shared_from_this());
}

std::uint16_t HislipServer::newSessionId()
{
    do
        ++lastSessionId_;
    while (sessions_.contains(lastSessionId_));
    return lastSessionId_;
}

} // namespace kvxvirtual::hislip
