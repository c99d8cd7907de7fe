#include "virtual_instrument/transport/server.h"

#include <asio.hpp>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace kvxvirtual;
using Socket = asio::ip::tcp::socket;

/// A server that works only while the test runs its context, so that a test decides what has come in by then.
class HeldServer : public testing::Test
{
protected:
    Socket connectTo(const std::string& address)
    {
        const auto port = static_cast<unsigned short>(std::stoi(address.substr(address.rfind(':') + 1)));
        Socket socket(clientContext_);
        socket.connect({asio::ip::address_v4::loopback(), port});
        return socket;
    }

    static void send(Socket& socket, const std::string& bytes) { asio::write(socket, asio::buffer(bytes)); }

    /// Lets the server work until a line has come.
    std::string lineFrom(Socket& socket)
    {
        std::string received;
        bool complete = false;
        socket.non_blocking(true);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!complete && std::chrono::steady_clock::now() < deadline) {
            context_.poll();
            std::array<char, 1024> chunk{};
            asio::error_code error;
            received.append(chunk.data(), socket.read_some(asio::buffer(chunk), error));
            complete = received.find('\n') != std::string::npos;
        }
        return received;
    }

    asio::io_context context_{1};
    asio::io_context clientContext_{1};
    std::vector<std::string> journalLines_;
    VirtualInstrument instrument_{{}, [] { return InstrumentClock::Duration(0); }};
    Journal journal_{[this](std::string line) { journalLines_.push_back(std::move(line)); }, false};
    Server server_{context_, instrument_, journal_};
    std::string address_ = server_.listen("127.0.0.1", 0);
    std::string controlAddress_ = server_.listenControl("127.0.0.1", 0, std::nullopt);
};

TEST_F(HeldServer, HearsClientsThatItHasNotAcceptedBeforeTheControlActs)
{
    auto control = connectTo(controlAddress_);
    send(control, "sync\n");
    ASSERT_EQ(lineFrom(control), "ok\n");

    // The host reports the control first.
    send(control, "log\n");
    auto one = connectTo(address_);
    auto other = connectTo(address_);
    send(one, "*CLS\n");
    send(other, "*CLS\n");
    EXPECT_EQ(lineFrom(control), "ok 2 0\n*CLS\n*CLS\n");
}

} // namespace
