#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/virtual_instrument/clients/foreign_program.h"

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

void expectGoodSession(const std::string& resource, const std::vector<std::string>& library = {})
{
    std::vector<std::string> arguments{"-B", KVX_CLIENT_SCRIPT, resource};
    arguments.insert(arguments.end(), library.begin(), library.end());
    const auto outcome = run(KVX_CLIENT_PYTHON, arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
    EXPECT_THAT(outcome.lines, ElementsAre("done"));
}

TEST(PyVisa, HoldsASessionOverASocket)
{
    VirtualInstrumentProcess instrument({"--load", "CH1=10"});
    expectGoodSession(instrument.resource());
    EXPECT_EQ(instrument.receivedLines().at(0), "*IDN?");
    EXPECT_EQ(instrument.receivedLines().at(1), ":SOUR1:VOLT 5.000000");
}

TEST(PyVisa, HoldsASessionOverTheSerialLine)
{
    VirtualInstrumentProcess instrument({"--load", "CH1=10", "--serial"});
    expectGoodSession("ASRL" + instrument.serialPath() + "::INSTR");
    EXPECT_EQ(instrument.receivedLines().at(0), "*IDN?");
}

/// PyVISA on top of this project's VISA library.
class PyVisaThroughOurVisa : public testing::Test
{
protected:
    void SetUp() override
    {
        if (std::string(KVX_CLIENT_VISA).empty())
            GTEST_SKIP() << "a Python without sanitizers does not load a library that has them";
    }

    VirtualInstrumentProcess instrument_{{"--load", "CH1=10", "--serial", "--hislip", "0"}};
};

TEST_F(PyVisaThroughOurVisa, HoldsASessionOverASocket)
{
    expectGoodSession(instrument_.resource(), {KVX_CLIENT_VISA});
    EXPECT_EQ(instrument_.receivedLines().at(0), "*IDN?");
}

TEST_F(PyVisaThroughOurVisa, HoldsASessionOverTheSerialLine)
{
    expectGoodSession("ASRL" + instrument_.serialPath() + "::INSTR", {KVX_CLIENT_VISA});
    EXPECT_EQ(instrument_.receivedLines().at(0), "*IDN?");
}

TEST_F(PyVisaThroughOurVisa, HoldsASessionOverHislip)
{
    expectGoodSession("TCPIP0::127.0.0.1::hislip0," + std::to_string(instrument_.hislipPort()) + "::INSTR",
                      {KVX_CLIENT_VISA});
    EXPECT_EQ(instrument_.receivedLines().at(0), "*IDN?");
}

class LxiTools : public testing::Test
{
public:
    Outcome send(const std::string& command)
    {
        return run(KVX_CLIENT_LXI, {"scpi", "--address", "127.0.0.1", "--port", std::to_string(instrument.port()),
                                    "--timeout", "60", "--raw", command});
    }

    void expectReply(const std::string& reply, const std::string& query)
    {
        const auto outcome = send(query);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
        EXPECT_THAT(outcome.lines, ElementsAre(reply)) << query;
    }

    /// It leaves as soon as it has sent, so the next client must wait until the instrument has heard it.
    void expectSent(const std::string& command)
    {
        instrument.clearLog();
        const auto outcome = send(command);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
        EXPECT_THAT(outcome.lines, ElementsAre());
        EXPECT_THAT(instrument.receivedLines(), ElementsAre(command));
    }

    VirtualInstrumentProcess instrument{{"--load", "CH1=10"}};
};

TEST_F(LxiTools, Ask)
{
    expectReply("Tessaro Instruments,KVX2833T,VIRT0000001,V1.00", "*IDN?");
    expectReply("1;0", "*OPC?;*TST?");
}

TEST_F(LxiTools, SetAndMeasure)
{
    expectSent(":SOUR1:VOLT 5;CURR 1;:OUTP:STAT CH1,ON");
    expectReply("5.000,0.500,2.500", ":MEAS:ALL? CH1");
    expectReply("0,\"No error\"", ":SYST:ERR?");
}

TEST_F(LxiTools, RunAList)
{
    expectSent(":LIST:GROUP:PARA 1,7,1,3600;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    expectReply("7.000", ":MEAS:VOLT? CH1");
    expectSent(":LIST:STAT OFF");
    expectReply("STOPPED,0.000000,0,0", ":LIST:STATUS?");
}

} // namespace
