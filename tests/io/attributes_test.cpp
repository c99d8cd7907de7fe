// What each kind of connection sets on a session that was just opened: the calls, their arguments and their order.

#include "io/visa_io.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using InstLink::IoSettings;
using InstLink::makeConnection;
using kvxtest::calls;
using kvxtest::kWarning;
using testing::ElementsAreArray;

constexpr ViStatus kNotSupported = static_cast<ViStatus>(0xBFFF001D);

using Calls = std::vector<std::string>;

const Calls kPlain = {"viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(2, VI_READ_BUF, 1024)",
                      "viSetBuf(2, VI_WRITE_BUF, 1024)"};

const Calls kSocket = {"viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)",
                       "viSetBuf(2, VI_READ_BUF, 1024)",
                       "viSetBuf(2, VI_WRITE_BUF, 1024)",
                       "viSetAttribute(2, VI_ATTR_TERMCHAR, 10)",
                       "viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 1)",
                       "viSetBuf(2, VI_IO_IN_BUF, 1024)",
                       "viSetBuf(2, VI_IO_OUT_BUF, 1024)"};

const Calls kSerial = {"viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)",
                       "viSetBuf(2, VI_READ_BUF, 1024)",
                       "viSetBuf(2, VI_WRITE_BUF, 1024)",
                       "viSetAttribute(2, VI_ATTR_TERMCHAR, 10)",
                       "viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 1)",
                       "viSetAttribute(2, VI_ATTR_ASRL_END_IN, 2)",
                       "viSetAttribute(2, VI_ATTR_ASRL_END_OUT, 0)",
                       "viSetBuf(2, VI_IO_IN_BUF, 1024)",
                       "viSetBuf(2, VI_IO_OUT_BUF, 1024)",
                       "viSetAttribute(2, VI_ATTR_ASRL_BAUD, 9600)",
                       "viSetAttribute(2, VI_ATTR_ASRL_DATA_BITS, 8)",
                       "viSetAttribute(2, VI_ATTR_ASRL_STOP_BITS, 10)",
                       "viSetAttribute(2, VI_ATTR_ASRL_PARITY, 0)",
                       "viSetAttribute(2, VI_ATTR_ASRL_FLOW_CNTRL, 0)"};

struct Interface
{
    std::string name;
    std::string resource;
    Calls attributes;
};

Calls openingOf(const Interface& interface)
{
    Calls opening = {"viOpenDefaultRM()", "viOpen(1, \"" + interface.resource + "\", 0, 2000)"};
    opening.insert(opening.end(), interface.attributes.begin(), interface.attributes.end());
    return opening;
}

class Attributes : public testing::TestWithParam<Interface>
{
public:
    Attributes() { kvxtest::reset(); }
    void TearDown() override { kvxtest::reset(); }
};

TEST_P(Attributes, AreSetInOrderOnTheOpenedSession)
{
    const auto connection = makeConnection(GetParam().resource, {});
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(connection->open(GetParam().resource), 0);
    EXPECT_THAT(calls(), ElementsAreArray(openingOf(GetParam())));
}

TEST_P(Attributes, StopAtTheFirstCallThatFails)
{
    const Calls opening = openingOf(GetParam());
    for (std::size_t n = 1; n <= opening.size(); ++n) {
        SCOPED_TRACE(opening[n - 1]);
        kvxtest::reset();
        kvxtest::failNthCall(n, kNotSupported);
        const auto connection = makeConnection(GetParam().resource, {});
        EXPECT_EQ(connection->open(GetParam().resource), kNotSupported);
        EXPECT_THAT(calls(), ElementsAreArray(opening.begin(), opening.begin() + static_cast<std::ptrdiff_t>(n)));
        // A session that was opened stays open until its owner releases it.
        EXPECT_EQ(connection->isOpen(), n > 2);
        EXPECT_EQ(kvxtest::openVisaSessions(), n > 2 ? 2U : n - 1);
    }
}

TEST_P(Attributes, GoOnAfterAWarningAndReturnThatOfTheLastCallOnly)
{
    const Calls opening = openingOf(GetParam());
    for (std::size_t n = 1; n <= opening.size(); ++n) {
        SCOPED_TRACE(opening[n - 1]);
        kvxtest::reset();
        kvxtest::failNthCall(n, kWarning);
        const auto connection = makeConnection(GetParam().resource, {});
        EXPECT_EQ(connection->open(GetParam().resource), n == opening.size() ? kWarning : 0);
        EXPECT_THAT(calls(), ElementsAreArray(opening));
        EXPECT_TRUE(connection->isOpen());
    }
}

TEST_P(Attributes, KeepTheConnectionsOwnBufferSizes)
{
    const IoSettings settings{.readBufferSize = 16, .writeBufferSize = 17};
    EXPECT_EQ(makeConnection(GetParam().resource, settings)->open(GetParam().resource), 0);
    EXPECT_THAT(calls(), ElementsAreArray(openingOf(GetParam())));
}

TEST_P(Attributes, CarryTheTimeoutsOfTheSettings)
{
    const IoSettings settings{.openTimeoutMs = 3000, .timeoutMs = 4000};
    EXPECT_EQ(makeConnection(GetParam().resource, settings)->open(GetParam().resource), 0);
    Calls expected = openingOf(GetParam());
    expected[1] = "viOpen(1, \"" + GetParam().resource + "\", 0, 3000)";
    expected[2] = "viSetAttribute(2, VI_ATTR_TMO_VALUE, 4000)";
    EXPECT_THAT(calls(), ElementsAreArray(expected));
}

TEST_P(Attributes, CarryTheLowThirtyTwoBitsOfTheTimeouts)
{
    const IoSettings settings{.openTimeoutMs = 0x500000BB8, .timeoutMs = -1};
    EXPECT_EQ(makeConnection(GetParam().resource, settings)->open(GetParam().resource), 0);
    Calls expected = openingOf(GetParam());
    expected[1] = "viOpen(1, \"" + GetParam().resource + "\", 0, 3000)";
    expected[2] = "viSetAttribute(2, VI_ATTR_TMO_VALUE, 4294967295)";
    EXPECT_THAT(calls(), ElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(Interfaces, Attributes,
                         testing::Values(Interface{"Serial", "ASRL1::INSTR", kSerial},
                                         Interface{"Usb", "USB0::1::2::3::INSTR", kPlain},
                                         Interface{"Gpib", "GPIB0::5::INSTR", kPlain},
                                         Interface{"Socket", "TCPIP0::h::5025::SOCKET", kSocket},
                                         Interface{"Lan", "TCPIP0::h::inst0::INSTR", kPlain},
                                         Interface{"Other", "PXI0::5::INSTR", kPlain}),
                         [](const testing::TestParamInfo<Interface>& each) { return each.param.name; });

class AttributesOfSettings : public testing::Test
{
public:
    AttributesOfSettings() { kvxtest::reset(); }
    void TearDown() override { kvxtest::reset(); }

    static Calls opened(const std::string& resource, const IoSettings& settings)
    {
        EXPECT_EQ(makeConnection(resource, settings)->open(resource), 0);
        const Calls all = calls();
        return {all.begin() + 2, all.end()};
    }
};

TEST_F(AttributesOfSettings, CarryTheTerminationOfASocket)
{
    Calls expected = kSocket;
    expected[3] = "viSetAttribute(2, VI_ATTR_TERMCHAR, 255)";
    expected[4] = "viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 0)";
    EXPECT_THAT(opened("TCPIP0::h::5025::SOCKET", {.termChar = 0xFF, .termCharEnabled = false}),
                ElementsAreArray(expected));
}

TEST_F(AttributesOfSettings, CarryTheTerminationOfASerialLine)
{
    Calls expected = kSerial;
    expected[3] = "viSetAttribute(2, VI_ATTR_TERMCHAR, 13)";
    expected[4] = "viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 0)";
    expected[5] = "viSetAttribute(2, VI_ATTR_ASRL_END_IN, 0)";
    EXPECT_THAT(opened("ASRL1::INSTR", {.termChar = '\r', .termCharEnabled = false}), ElementsAreArray(expected));
}

TEST_F(AttributesOfSettings, CarryTheLineParameters)
{
    const IoSettings settings{.baudRate = 115200, .dataBits = 7, .flowControl = 2, .parity = 1, .stopBits = 20};
    Calls expected = kSerial;
    expected[9] = "viSetAttribute(2, VI_ATTR_ASRL_BAUD, 115200)";
    expected[10] = "viSetAttribute(2, VI_ATTR_ASRL_DATA_BITS, 7)";
    expected[11] = "viSetAttribute(2, VI_ATTR_ASRL_STOP_BITS, 20)";
    expected[12] = "viSetAttribute(2, VI_ATTR_ASRL_PARITY, 1)";
    expected[13] = "viSetAttribute(2, VI_ATTR_ASRL_FLOW_CNTRL, 2)";
    EXPECT_THAT(opened("ASRL1::INSTR", settings), ElementsAreArray(expected));
}

TEST_F(AttributesOfSettings, AreTheDefaultsForASerialConnectionOfItsOwn)
{
    InstLink::VisaSerial connection;
    EXPECT_EQ(connection.open("ASRL1::INSTR"), 0);
    const Calls all = calls();
    EXPECT_THAT(Calls(all.begin() + 2, all.end()), ElementsAreArray(kSerial));
}

} // namespace
