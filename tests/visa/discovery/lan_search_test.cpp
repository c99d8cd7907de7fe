#include "tests/support/visa/dns_bytes.h"
#include "visa/discovery/lan_search.h"
#include "visa/host/network.h"

#include <gmock/gmock.h>

#include <functional>
#include <thread>

namespace
{

using asio::ip::udp;
using kvxtest::DnsAnswer;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Bytes = std::vector<std::uint8_t>;

/// A server on the loopback interface that answers each message as told, until the test ends.
class UdpServer
{
public:
    explicit UdpServer(std::function<std::vector<Bytes>(const Bytes& message)> answer) : answer_(std::move(answer))
    {
        receive();
        thread_ = std::thread([this] { context_.run(); });
    }
    ~UdpServer()
    {
        context_.stop();
        thread_.join();
    }
    UdpServer(const UdpServer&) = delete;
    UdpServer& operator=(const UdpServer&) = delete;

    std::uint16_t port() const { return socket_.local_endpoint().port(); }

private:
    void receive()
    {
        message_.resize(2000);
        socket_.async_receive_from(asio::buffer(message_), sender_,
                                   [this](const asio::error_code& error, std::size_t size) {
                                       if (error)
                                           return;
                                       message_.resize(size);
                                       for (const Bytes& bytes : answer_(message_))
                                           socket_.send_to(asio::buffer(bytes), sender_);
                                       receive();
                                   });
    }

    std::function<std::vector<Bytes>(const Bytes& message)> answer_;
    asio::io_context context_{1};
    udp::socket socket_{context_, {asio::ip::address_v4::loopback(), 0}};
    udp::endpoint sender_;
    Bytes message_;
    std::thread thread_;
};

/// A portmapper's answer to a question: its identifier, and this port.
Bytes portReply(const Bytes& question, int port)
{
    Bytes reply(28);
    std::copy_n(question.begin(), 4, reply.begin());
    reply[7] = 1;
    reply[26] = static_cast<std::uint8_t>(port >> 8);
    reply[27] = static_cast<std::uint8_t>(port);
    return reply;
}

std::vector<Bytes> silence(const Bytes&)
{
    return {};
}

std::vector<std::string> search(const UdpServer& names, const UdpServer& portmapper)
{
    visa::LanSearch search;
    search.interfaces = {{asio::ip::address_v4::loopback()}};
    search.multicastDns = {asio::ip::address_v4::loopback(), names.port()};
    search.portmapperPort = portmapper.port();
    return visa::lanInstruments(search);
}

class VisaLanSearch : public testing::Test
{
protected:
    // As a resource manager does.
    static void SetUpTestSuite() { visa::startNetwork(); }
};

TEST_F(VisaLanSearch, CollectsTheAnswersOfBothWays)
{
    const UdpServer names([](const Bytes&) {
        return std::vector<Bytes>{DnsAnswer()
                                      .pointer("_scpi-raw._tcp.local", "a._scpi-raw._tcp.local")
                                      .service("a._scpi-raw._tcp.local", "a.local", 5025)
                                      .message(),
                                  DnsAnswer().pointer("_hislip._tcp.local", "a._hislip._tcp.local").message()};
    });
    const UdpServer portmapper([](const Bytes& question) { return std::vector<Bytes>{portReply(question, 1025)}; });
    EXPECT_THAT(search(names, portmapper),
                UnorderedElementsAre("TCPIP0::127.0.0.1::5025::SOCKET", "TCPIP0::127.0.0.1::hislip0::INSTR",
                                     "TCPIP0::127.0.0.1::inst0::INSTR"));
}

TEST_F(VisaLanSearch, NothingAnswersWhereNothingIs)
{
    EXPECT_THAT(search(UdpServer(silence), UdpServer(silence)), IsEmpty());
    const UdpServer none([](const Bytes& question) { return std::vector<Bytes>{portReply(question, 0)}; });
    EXPECT_THAT(search(UdpServer(silence), none), IsEmpty());
    EXPECT_THAT(visa::lanInstruments(visa::LanSearch{}), IsEmpty());
}

TEST_F(VisaLanSearch, GarbageIsPassedOver)
{
    const UdpServer names([](const Bytes& question) {
        return std::vector<Bytes>{question, Bytes{}, Bytes{1, 2, 3}, Bytes(2000, 0xFF),
                                  DnsAnswer().pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local").message()};
    });
    const UdpServer portmapper([](const Bytes& question) {
        return std::vector<Bytes>{Bytes{}, question, Bytes(1000, 0xC0)};
    });
    EXPECT_THAT(search(names, portmapper), ElementsAre("TCPIP0::127.0.0.1::inst0::INSTR"));
}

TEST_F(VisaLanSearch, InstrumentThatAnnouncesItsWebPageIsAskedForItsServer)
{
    int questions = 0;
    const UdpServer names([](const Bytes&) {
        return std::vector<Bytes>{DnsAnswer().pointer("_lxi._tcp.local", "a._lxi._tcp.local").message()};
    });
    // The broadcast goes unanswered, the question that follows does not.
    const UdpServer portmapper([&questions](const Bytes& question) {
        return ++questions == 1 ? std::vector<Bytes>{} : std::vector<Bytes>{portReply(question, 1025)};
    });
    EXPECT_THAT(search(names, portmapper), ElementsAre("TCPIP0::127.0.0.1::inst0::INSTR"));
}

TEST_F(VisaLanSearch, FloodEndsIt)
{
    const UdpServer names([](const Bytes&) { return std::vector<Bytes>(5000, Bytes{0}); });
    EXPECT_THAT(search(names, UdpServer(silence)), IsEmpty());
}

TEST_F(VisaLanSearch, InterfacesThatAreGoneAreLeftOut)
{
    visa::LanSearch search;
    search.interfaces = {{asio::ip::make_address_v4("192.0.2.1")}};
    EXPECT_THAT(visa::lanInstruments(search), IsEmpty());
}

TEST(VisaNetworkInterfaces, LoopbackIsAmongThem)
{
    const auto interfaces = visa::networkInterfaces();
    const auto loopback = std::find_if(interfaces.begin(), interfaces.end(), [](const visa::NetworkInterface& found) {
        return found.address == asio::ip::address_v4::loopback();
    });
    ASSERT_NE(loopback, interfaces.end());
    EXPECT_FALSE(loopback->broadcast);
}

} // namespace
