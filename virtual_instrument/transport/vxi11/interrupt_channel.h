#pragma once

#include "virtual_instrument/transport/vxi11/rpc_message.h"

#include <array>
#include <asio.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kvxvirtual::vxi11
{

/// The connection on which a client is told of service requests: calls that nobody waits for the answers of. What a
/// client does not take is bounded; requests beyond that are lost.
class InterruptChannel : public std::enable_shared_from_this<InterruptChannel>
{
public:
    /// The program that the client has there.
    InterruptChannel(asio::io_context& context, std::uint32_t program, std::uint32_t version);

    /// Calls `then` once, unless closed before.
    void connect(const asio::ip::tcp::endpoint& endpoint, std::chrono::milliseconds timeout,
                 std::function<void(bool connected)> then);

    void requestService(const std::string& handle);

    void close();

private:
    void readAnswers();
    void write();

    asio::ip::tcp::socket socket_;
    asio::steady_timer limit_;
    std::uint32_t program_;
    std::uint32_t version_;
    std::uint32_t lastNumber_ = 0;
    std::string unsent_;
    std::string sending_;
    std::array<char, 1024> answers_{};
};

} // namespace kvxvirtual::vxi11
