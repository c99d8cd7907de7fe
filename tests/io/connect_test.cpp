#include "io/visa_io.h"
#include "tests/support/fakes/platform_fakes.h"

#include <memory>
#include <string>
#include <typeindex>
#include <typeinfo>

#include <gmock/gmock.h>

namespace
{

using InstLink::connect;
using InstLink::ConnectionHolder;
using InstLink::makeConnection;
using kvxtest::calls;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ViStatus kNotFound = static_cast<ViStatus>(0xBFFF0011);
constexpr ViStatus kClosingFailed = static_cast<ViStatus>(0xBFFF0016);
constexpr ViStatus kWarning = 0x3FFF0084;

std::type_index typeFor(const std::string& resource)
{
    const auto connection = makeConnection(resource, {});
    const InstLink::VisaIO& object = *connection;
    return typeid(object);
}

TEST(MakeConnection, ChoosesTheClassByTheBeginningOfTheDescriptor)
{
    EXPECT_EQ(typeFor("ASRL1::INSTR"), typeid(InstLink::VisaSerial));
    EXPECT_EQ(typeFor("USB0::0x1234::0x5678::SN::INSTR"), typeid(InstLink::VisaUSB));
    EXPECT_EQ(typeFor("GPIB0::5::INSTR"), typeid(InstLink::VisaGPIB));
    EXPECT_EQ(typeFor("TCPIP0::192.0.2.1::5025::SOCKET"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("TCPIP0::192.0.2.1::inst0::INSTR"), typeid(InstLink::VisaTCPIP));
}

TEST(MakeConnection, ChoosesTheClassWhateverFollowsTheInterface)
{
    EXPECT_EQ(typeFor("ASRL"), typeid(InstLink::VisaSerial));
    EXPECT_EQ(typeFor("ASRL/dev/ttyUSB0::INSTR"), typeid(InstLink::VisaSerial));
    EXPECT_EQ(typeFor("USB"), typeid(InstLink::VisaUSB));
    EXPECT_EQ(typeFor("GPIB"), typeid(InstLink::VisaGPIB));
    EXPECT_EQ(typeFor("TCPIP::h::1::SOCKET"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("TCPIP::h::INSTR"), typeid(InstLink::VisaTCPIP));
}

TEST(MakeConnection, ChoosesThePlainConnectionForAnythingElse)
{
    for (const char* resource : {"PXI0::5::INSTR", "", "A", "ASR", "US", "GPI", "TCPI", "VXI0::1", " USB0::1", "KVX",
                                 "SOCKET", "::ASRL", "TCPI0"})
        EXPECT_EQ(typeFor(resource), typeid(InstLink::VisaIO)) << resource;
}

TEST(MakeConnection, IgnoresTheLetterCase)
{
    EXPECT_EQ(typeFor("asrl1::INSTR"), typeid(InstLink::VisaSerial));
    EXPECT_EQ(typeFor("Usb0::1::2::3"), typeid(InstLink::VisaUSB));
    EXPECT_EQ(typeFor("gpib0::5::instr"), typeid(InstLink::VisaGPIB));
    EXPECT_EQ(typeFor("tcpip0::h::5025::socket"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("Tcpip0::h::5025::Socket"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("tcpip0::h::instr"), typeid(InstLink::VisaTCPIP));
}

TEST(MakeConnection, FindsASocketAnywhereInALanDescriptor)
{
    EXPECT_EQ(typeFor("TCPIPSOCKET"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("TCPIP0::socket.example::inst0::INSTR"), typeid(InstLink::VisaTCPIPSocket));
    EXPECT_EQ(typeFor("TCPIP"), typeid(InstLink::VisaTCPIP));
    EXPECT_EQ(typeFor("TCPIP0::h::5025::SOCKE"), typeid(InstLink::VisaTCPIP));
    EXPECT_EQ(typeFor("USB0::SOCKET"), typeid(InstLink::VisaUSB));
    EXPECT_EQ(typeFor("GPIB0::SOCKET"), typeid(InstLink::VisaGPIB));
}

class Connect : public testing::Test
{
public:
    Connect() { kvxtest::reset(); }
    void TearDown() override { kvxtest::reset(); }

    ConnectionHolder holder;
};

TEST_F(Connect, PutsTheOpenConnectionIntoTheHolder)
{
    EXPECT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    ASSERT_NE(holder.connection, nullptr);
    EXPECT_TRUE(holder.connection->isOpen());
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
}

TEST_F(Connect, OpensTheDescriptorAsItIsWritten)
{
    EXPECT_EQ(connect(holder, "asrl1::Instr"), 0);
    EXPECT_THAT(calls(), Contains("viOpen(1, \"asrl1::Instr\", 0, 2000)"));
}

TEST_F(Connect, OpensAnyText)
{
    for (const std::string& resource : {std::string(), std::string(100000, 'x'), std::string("TCPIP\n\t\"")})
        EXPECT_EQ(connect(holder, resource), 0);
}

TEST_F(Connect, TakesTheSettingsOfTheHolder)
{
    holder.settings = {.openTimeoutMs = 3000, .timeoutMs = 4000, .baudRate = 19200};
    EXPECT_EQ(connect(holder, "ASRL1::INSTR"), 0);
    EXPECT_EQ(holder.connection->timeout(), 4000);
    EXPECT_THAT(calls(), Contains("viOpen(1, \"ASRL1::INSTR\", 0, 3000)"));
    EXPECT_THAT(calls(), Contains("viSetAttribute(2, VI_ATTR_TMO_VALUE, 4000)"));
    EXPECT_THAT(calls(), Contains("viSetAttribute(2, VI_ATTR_ASRL_BAUD, 19200)"));
}

TEST_F(Connect, ReturnsTheWarningThatTheConnectionOpenedWith)
{
    kvxtest::failCall("viSetBuf", kWarning);
    EXPECT_EQ(connect(holder, "GPIB0::5::INSTR"), kWarning);
    ASSERT_NE(holder.connection, nullptr);
    EXPECT_TRUE(holder.connection->isOpen());
}

TEST_F(Connect, ReturnsTheStatusOfWhicheverCallFailsAndLeavesNothingOpen)
{
    for (const char* resource : {"GPIB0::5::INSTR", "TCPIP0::h::5025::SOCKET", "ASRL1::INSTR"}) {
        std::size_t n = 1;
        for (;; ++n) {
            kvxtest::reset();
            kvxtest::failNthCall(n, kNotFound);
            ConnectionHolder fresh;
            const ViStatus status = connect(fresh, resource);
            if (!kvxtest::failureHappened()) {
                EXPECT_EQ(status, 0);
                break;
            }
            EXPECT_EQ(status, kNotFound) << resource << ", call " << n;
            EXPECT_EQ(fresh.connection, nullptr);
            EXPECT_EQ(kvxtest::openVisaSessions(), 0U) << resource << ", call " << n;
        }
        EXPECT_GT(n, 5U);
    }
}

TEST_F(Connect, ReturnsTheFirstStatusWhenTheCleanupFailsToo)
{
    kvxtest::failCall("viOpen", kNotFound);
    kvxtest::failCall("viClose", kClosingFailed);
    EXPECT_EQ(connect(holder, "GPIB0::5::INSTR"), kNotFound);
    EXPECT_THAT(calls("viClose"), ElementsAre("viClose(1)"));
}

TEST_F(Connect, ClosesNothingWhenNoResourceManagerOpened)
{
    kvxtest::failCall("viOpenDefaultRM", kNotFound);
    EXPECT_EQ(connect(holder, "GPIB0::5::INSTR"), kNotFound);
    EXPECT_THAT(calls(), ElementsAre("viOpenDefaultRM()"));
}

TEST_F(Connect, KeepsThePreviousConnectionWhateverCallFails)
{
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    const auto previous = holder.connection;
    for (std::size_t n = 1; n <= 16; ++n) {
        kvxtest::clearFailures();
        kvxtest::clearLog();
        kvxtest::failNthCall(n, kNotFound);
        EXPECT_EQ(connect(holder, "ASRL1::INSTR"), kNotFound) << n;
        EXPECT_EQ(holder.connection, previous);
        EXPECT_TRUE(previous->isOpen());
        EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
        EXPECT_THAT(calls(), testing::Not(Contains("viClose(1)")));
    }
    EXPECT_EQ(previous->write("*CLS"), 0);
}

TEST_F(Connect, ClosesThePreviousConnectionOnceTheNewOneIsOpen)
{
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    const auto previous = holder.connection;
    kvxtest::clearLog();
    ASSERT_EQ(connect(holder, "USB0::1::2::3::INSTR"), 0);
    EXPECT_THAT(calls(), ElementsAre("viOpenDefaultRM()", "viOpen(3, \"USB0::1::2::3::INSTR\", 0, 2000)",
                                     "viSetAttribute(4, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(4, VI_READ_BUF, 1024)",
                                     "viSetBuf(4, VI_WRITE_BUF, 1024)", "viClose(1)"));
    EXPECT_NE(holder.connection, previous);
    EXPECT_FALSE(previous->isOpen());
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
}

TEST_F(Connect, ClosesThePreviousConnectionNoSecondTime)
{
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    ASSERT_EQ(holder.connection->close(), 0);
    kvxtest::clearLog();
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    EXPECT_THAT(calls("viClose"), IsEmpty());
}

TEST_F(Connect, SucceedsWhenThePreviousConnectionDoesNotClose)
{
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    kvxtest::failCall("viClose", kClosingFailed);
    EXPECT_EQ(connect(holder, "GPIB0::6::INSTR"), 0);
    EXPECT_TRUE(holder.connection->isOpen());
}

} // namespace
