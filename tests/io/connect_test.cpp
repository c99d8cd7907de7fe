#include "io/visa_io.h"
#include "tests/support/driver/scripted_connection.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"

#include <initializer_list>
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
using kvxtest::kClosingFailed;
using kvxtest::kNotFound;
using kvxtest::kWarning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::type_index typeFor(const std::string& resource)
{
    const auto connection = makeConnection(resource, {});
    const InstLink::VisaIO& object = *connection;
    return typeid(object);
}

void expectType(std::type_index type, std::initializer_list<const char*> resources)
{
    for (const char* resource : resources)
        EXPECT_EQ(typeFor(resource), type) << resource;
}

TEST(MakeConnection, ChoosesTheClassByTheInterfaceInAnyLetterCaseWhateverFollows)
{
    expectType(typeid(InstLink::VisaSerial), {"ASRL1::INSTR", "asrl1::INSTR", "ASRL", "ASRL/dev/ttyUSB0::INSTR"});
    expectType(typeid(InstLink::VisaUSB), {"USB0::0x1234::0x5678::SN::INSTR", "Usb0::1::2::3", "USB", "USB0::SOCKET"});
    expectType(typeid(InstLink::VisaGPIB), {"GPIB0::5::INSTR", "gpib0::5::instr", "GPIB", "GPIB0::SOCKET"});
    expectType(typeid(InstLink::VisaTCPIP), {"TCPIP0::192.0.2.1::inst0::INSTR", "tcpip0::h::instr", "TCPIP::h::INSTR",
                                             "TCPIP", "TCPIP0::h::5025::SOCKE"});
}

TEST(MakeConnection, FindsASocketAnywhereInALanDescriptor)
{
    expectType(typeid(InstLink::VisaTCPIPSocket),
               {"TCPIP0::192.0.2.1::5025::SOCKET", "TCPIP::h::1::SOCKET", "tcpip0::h::5025::socket",
                "Tcpip0::h::5025::Socket", "TCPIPSOCKET", "TCPIP0::socket.example::inst0::INSTR"});
}

TEST(MakeConnection, ChoosesThePlainConnectionForAnythingElse)
{
    expectType(typeid(InstLink::VisaIO), {"PXI0::5::INSTR", "", "A", "ASR", "US", "GPI", "TCPI", "VXI0::1", " USB0::1",
                                          "KVX", "SOCKET", "::ASRL", "TCPI0"});
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

TEST_F(Connect, ClosesThePreviousConnectionForOneThatNeedsNoResource)
{
    ASSERT_EQ(connect(holder, "GPIB0::5::INSTR"), 0);
    holder.settings.timeoutMs = 7000;
    kvxtest::clearLog();
    const auto without = std::make_shared<kvxtest::ScriptedConnection>();
    connect(holder, without);
    EXPECT_THAT(calls(), ElementsAre("viClose(1)"));
    EXPECT_EQ(holder.connection, without);
    EXPECT_EQ(without->timeout(), 7000);
}

} // namespace
