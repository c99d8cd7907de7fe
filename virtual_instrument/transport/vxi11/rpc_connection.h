#pragma once

#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/vxi11/rpc_message.h"

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kvxvirtual::vxi11
{

/// What answers the calls of one connection.
class RpcService
{
public:
    RpcService() = default;
    RpcService(const RpcService&) = delete;
    RpcService& operator=(const RpcService&) = delete;
    virtual ~RpcService() = default;

    /// Called once for each call, now or later, unless the service has been destroyed.
    using Reply = std::function<void(RpcAnswer)>;

    virtual void call(const RpcCall& call, Reply reply) = 0;
};

/// A client's TCP connection: one call at a time is carried out, the next one when that has been answered. It learns
/// that the client has gone also meanwhile. What the client sends ahead is bounded, and while it takes no replies
/// nothing is carried out. The service ends with the connection, and never within one of its own calls.
class RpcConnection final : public Connection, public std::enable_shared_from_this<RpcConnection>
{
public:
    using Ended = std::function<void(const std::shared_ptr<Connection>&)>;

    RpcConnection(asio::ip::tcp::socket socket, std::unique_ptr<RpcService> service, Ended ended);

    void start();

    /// Ends it, and the service, without telling anybody.
    void abandon();

    // Connection
    void close() override;
    std::uint64_t bytesRead() const override { return bytesRead_; }
    std::uint64_t bytesWaiting() override;
    bool hasReached(std::uint64_t bytes) override;

private:
    void read();
    void bytesCame();
    void work();
    void carryOut(const RpcCall& call);
    void send(const std::string& message);
    void workLater();

    asio::ip::tcp::socket socket_;
    std::unique_ptr<RpcService> service_;
    Ended ended_;
    RecordAssembler records_;
    std::array<char, 16384> chunk_{};
    std::string output_;
    std::uint64_t bytesRead_ = 0;
    bool isReading_ = false;
    bool isBusy_ = false; ///< with a call, or with sending its reply
    bool isOver_ = false;
};

} // namespace kvxvirtual::vxi11
