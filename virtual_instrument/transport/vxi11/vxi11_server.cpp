#include "virtual_instrument/transport/vxi11/vxi11_server.h"

#include <utility>

namespace kvxvirtual::vxi11
{

/// The one procedure of the abort channel.
class Vxi11Server::AbortService final : public RpcService
{
public:
    explicit AbortService(Vxi11Server& server) : server_(server) {}

    void call(const RpcCall& call, Reply reply) override
    {
        if (call.program != kAbortProgram)
            return reply({Acceptance::ProgramUnavailable});
        if (call.version != kVersion)
            return reply(versionMismatch(kVersion));
        if (call.procedure == 0)
            return reply({});
        if (call.procedure != kDeviceAbort)
            return reply({Acceptance::ProcedureUnavailable});
        XdrReader arguments(call.arguments);
        const LinkId id = arguments.word();
        if (!arguments.good())
            return reply({Acceptance::GarbageArguments});
        const auto error = server_.abort(id) ? DeviceError::None : DeviceError::InvalidLink;
        reply({Acceptance::Success, XdrWriter().word(static_cast<std::uint32_t>(error)).bytes()});
    }

private:
    Vxi11Server& server_;
};

Vxi11Server::~Vxi11Server()
{
    for (const auto& [address, connection] : connections_) {
        if (const auto client = connection.lock())
            client->abandon();
    }
}

std::shared_ptr<Connection> Vxi11Server::serveCore(asio::ip::tcp::socket socket, const std::string& name, Ended ended)
{
    asio::error_code gone;
    const auto client = socket.remote_endpoint(gone);
    if (gone)
        return nullptr;
    return serve(std::move(socket), std::make_unique<CoreService>(hub_, *this, name, client.address()),
                 std::move(ended));
}

std::shared_ptr<Connection> Vxi11Server::serveAbort(asio::ip::tcp::socket socket, Ended ended)
{
    return serve(std::move(socket), std::make_unique<AbortService>(*this), std::move(ended));
}

std::shared_ptr<Connection> Vxi11Server::serve(asio::ip::tcp::socket socket, std::unique_ptr<RpcService> service,
                                               Ended ended)
{
    if (connections_.size() >= kMostConnections)
        return nullptr;
    const auto connection = std::make_shared<RpcConnection>(
        std::move(socket), std::move(service),
        [this, life = std::weak_ptr(life_), ended = std::move(ended)](const std::shared_ptr<Connection>& over) {
            if (life.expired())
                return;
            connections_.erase(over.get());
            ended(over);
        });
    connections_[connection.get()] = connection;
    connection->start();
    return connection;
}

std::optional<LinkId> Vxi11Server::add(CoreService& service)
{
    constexpr LinkId kLargest = 0x7FFFFFFF;
    if (owners_.size() >= kMostLinks)
        return std::nullopt;
    do
        lastLink_ = lastLink_ % kLargest + 1;
    while (owners_.contains(lastLink_));
    owners_[lastLink_] = &service;
    return lastLink_;
}

bool Vxi11Server::abort(LinkId id)
{
    const auto owner = owners_.find(id);
    if (owner == owners_.end())
        return false;
    owner->second->abort(id);
    return true;
}

} // namespace kvxvirtual::vxi11
