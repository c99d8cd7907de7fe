#include "tests/support/visa/dns_bytes.h"
#include "visa/discovery/announced_services.h"

#include <gmock/gmock.h>

namespace
{

using kvxtest::DnsAnswer;
using testing::ElementsAre;
using testing::IsEmpty;
using visa::AnnouncedServices;

class VisaAnnouncedServices : public testing::Test
{
protected:
    void add(const DnsAnswer& answer, const std::string& sender = "192.0.2.7")
    {
        services_.add(visa::readDnsAnswer(answer.message()).value(), asio::ip::make_address_v4(sender));
    }

    std::vector<std::string> names() const { return services_.resourceNames(); }

    AnnouncedServices services_;
};

TEST_F(VisaAnnouncedServices, EachKindHasAResourceOfItsOwn)
{
    add(DnsAnswer()
            .pointer("_hislip._tcp.local", "a._hislip._tcp.local")
            .service("a._hislip._tcp.local", "a.local", 4880)
            .pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local")
            .service("a._vxi-11._tcp.local", "a.local", 111)
            .pointer("_scpi-raw._tcp.local", "a._scpi-raw._tcp.local")
            .service("a._scpi-raw._tcp.local", "a.local", 5025)
            .pointer("_lxi._tcp.local", "a._lxi._tcp.local")
            .service("a._lxi._tcp.local", "a.local", 80)
            .address("a.local", {192, 0, 2, 7}));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.7::hislip0::INSTR", "TCPIP0::192.0.2.7::inst0::INSTR",
                                     "TCPIP0::192.0.2.7::5025::SOCKET"));
}

TEST_F(VisaAnnouncedServices, UnusualPortOfHislipIsInItsName)
{
    add(DnsAnswer()
            .pointer("_hislip._tcp.local", "a._hislip._tcp.local")
            .service("a._hislip._tcp.local", "a.local", 4881));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.7::hislip0,4881::INSTR"));
}

TEST_F(VisaAnnouncedServices, PortThatIsNotToldIsTheUsualOneWhereThereIsOne)
{
    add(DnsAnswer()
            .pointer("_hislip._tcp.local", "a._hislip._tcp.local")
            .pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local")
            .pointer("_scpi-raw._tcp.local", "a._scpi-raw._tcp.local"));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.7::hislip0::INSTR", "TCPIP0::192.0.2.7::inst0::INSTR"));
}

TEST_F(VisaAnnouncedServices, AddressIsTheSendersIfItIsTheHosts)
{
    add(DnsAnswer()
            .pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local")
            .service("a._vxi-11._tcp.local", "a.local", 111)
            .address("a.local", {198, 51, 100, 1})
            .address("a.local", {192, 0, 2, 7}));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.7::inst0::INSTR"));
}

TEST_F(VisaAnnouncedServices, HostThatAnswersForAnotherSaysItsAddress)
{
    add(DnsAnswer()
            .pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local")
            .service("a._vxi-11._tcp.local", "a.local", 111)
            .address("other.local", {198, 51, 100, 9})
            .address("a.local", {224, 0, 0, 1})
            .address("a.local", {0, 0, 0, 0})
            .address("a.local", {198, 51, 100, 1}));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::198.51.100.1::inst0::INSTR"));
}

TEST_F(VisaAnnouncedServices, DetailsMayFollowInAnotherMessage)
{
    add(DnsAnswer().pointer("_scpi-raw._tcp.local", "a._scpi-raw._tcp.local"));
    add(DnsAnswer().service("a._scpi-raw._tcp.local", "a.local", 5026));
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.7::5026::SOCKET"));
}

TEST_F(VisaAnnouncedServices, SeveralInstrumentsAreToldInTheOrderOfTheirAnswers)
{
    for (int i = 0; i < 2; ++i) {
        add(DnsAnswer().pointer("_vxi-11._tcp.local", "b._vxi-11._tcp.local"), "192.0.2.8");
        add(DnsAnswer().pointer("_vxi-11._tcp.local", "a._vxi-11._tcp.local"), "192.0.2.7");
    }
    EXPECT_THAT(names(), ElementsAre("TCPIP0::192.0.2.8::inst0::INSTR", "TCPIP0::192.0.2.7::inst0::INSTR"));
}

TEST_F(VisaAnnouncedServices, OtherServicesAreNone)
{
    add(DnsAnswer()
            .pointer("_http._tcp.local", "a._http._tcp.local")
            .pointer("_hislip._udp.local", "a._hislip._udp.local"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(VisaAnnouncedServices, FloodIsCut)
{
    for (int i = 0; i < 2000; ++i)
        add(DnsAnswer().pointer("_vxi-11._tcp.local", std::to_string(i) + "._vxi-11._tcp.local"));
    EXPECT_EQ(names().size(), 512U);
}

TEST_F(VisaAnnouncedServices, OnlyLxiInstrumentsAreAskedOnceMore)
{
    const auto has = [](const DnsAnswer& answer) {
        return AnnouncedServices::hasInstrument(visa::readDnsAnswer(answer.message()).value());
    };
    EXPECT_TRUE(has(DnsAnswer().pointer("_lxi._tcp.local", "a._lxi._tcp.local")));
    EXPECT_FALSE(has(DnsAnswer().pointer("_hislip._tcp.local", "a._hislip._tcp.local")));
}

} // namespace
