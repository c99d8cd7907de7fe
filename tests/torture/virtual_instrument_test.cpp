#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/torture/tally.h"

#include <asio.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;

/// What a client asks, and expects whatever has happened to others.
bool isServed(unsigned short port)
{
    LineClient client(port);
    return client.query("*IDN?") == "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00" &&
           client.query("SOUR3:VOLT 4.5;VOLT?") == "4.500000" && client.query(":MEAS:ALL? CH3") == "0.000,0.000,0.000";
}

/// A client that does as it likes, and can be cut off from one moment to the next.
class HostileClient
{
public:
    explicit HostileClient(unsigned short port) { socket_.connect({asio::ip::address_v4::loopback(), port}); }

    /// As much as the host takes at once.
    HostileClient& send(const std::string& bytes)
    {
        socket_.non_blocking(true);
        asio::error_code ignored;
        asio::write(socket_, asio::buffer(bytes), ignored);
        return *this;
    }

    HostileClient& sendOneByOne(const std::string& bytes)
    {
        socket_.set_option(asio::ip::tcp::no_delay(true));
        for (const char byte : bytes)
            send({byte});
        return *this;
    }

    HostileClient& finishSending()
    {
        asio::error_code ignored;
        socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
        return *this;
    }

    void reset()
    {
        socket_.set_option(asio::socket_base::linger(true, 0));
        socket_.close();
    }

private:
    asio::io_context context_{1};
    asio::ip::tcp::socket socket_{context_};
};

std::string many(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// What a client does before it goes, or stays without a word.
using Hostility = std::function<void(HostileClient&)>;

const std::vector<Hostility> kHostilities{
    [](HostileClient& client) { client.reset(); },
    [](HostileClient& client) { client.send("*ID"); },
    [](HostileClient& client) { client.send("*ID").reset(); },
    [](HostileClient& client) { client.send("*IDN?\n").reset(); },
    [](HostileClient& client) { client.send(many("*IDN?\n", 1000)).finishSending(); },
    [](HostileClient& client) { client.send(many("*IDN?\n", 200'000)); },
    [](HostileClient& client) { client.send(many("*IDN?\n", 200'000)).reset(); },
    [](HostileClient& client) { client.send(many("*CLS;*WAI\n", 200'000)); },
    [](HostileClient& client) { client.send(many(std::string(1, '\0'), 100'000)); },
    [](HostileClient& client) { client.send(std::string(1'000'000, 'x')).send("\n"); },
    [](HostileClient& client) { client.send(many("\xFF\xFE\n", 10'000)); },
    [](HostileClient& client) { client.sendOneByOne(many("SOUR1:VOLT 1\n", 50)); },
    [](HostileClient& client) { client.send("POST / HTTP/1.1\r\n\r\n*RST\nload CH3 1\n"); },
    [](HostileClient& client) { client.send("\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03"); },
    [](HostileClient& client) { client.send(many("log\n", 10'000)); },
    [](HostileClient& client) { client.send(many("help\n", 10'000)).reset(); },
};

TEST(VirtualInstrumentTorture, HostileClientsOnBothPortsDisturbNoOther)
{
    Tally tally("virtual instrument: hostile clients on both ports");
    VirtualInstrumentProcess program({"--trace"});
    std::vector<std::unique_ptr<HostileClient>> staying;
    for (const bool stays : {false, true}) {
        for (const unsigned short port : {program.port(), program.controlPort()}) {
            for (const Hostility& hostility : kHostilities) {
                auto client = std::make_unique<HostileClient>(port);
                hostility(*client);
                ++tally.injections;
                if (stays)
                    staying.push_back(std::move(client));
                tally.expect(isServed(program.port()), "a client is not served");
                tally.expect(program.control("sync") == "ok", "the test control does not answer");
            }
        }
    }
    tally.expect(program.interrupt() == 0, "it does not end as it should");
}

} // namespace
