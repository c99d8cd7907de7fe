#include "tests/support/processes/own_network.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/virtual_instrument/clients/foreign_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

const char* const kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";

class Vxi11Clients : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const std::string complaint = enterOwnNetwork(); !complaint.empty())
            GTEST_SKIP() << complaint;
    }

    void needs(const char* program)
    {
        if (!std::filesystem::exists(program))
            GTEST_SKIP() << "without " << program << " (packages.txt)";
    }
};

TEST_F(Vxi11Clients, PyVisaHoldsASession)
{
    const VirtualInstrumentProcess instrument({"--vxi11", "--load", "CH1=10"});
    const auto outcome = run(KVX_CLIENT_PYTHON, {"-B", KVX_CLIENT_SCRIPT, "TCPIP0::127.0.0.1::inst0::INSTR"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
    EXPECT_THAT(outcome.lines, ElementsAre("done"));
}

TEST_F(Vxi11Clients, PyVisaHoldsASessionThroughOurVisa)
{
    if (std::string(KVX_CLIENT_VISA).empty())
        GTEST_SKIP() << "a Python without sanitizers does not load a library that has them";
    VirtualInstrumentProcess instrument({"--vxi11", "--load", "CH1=10"});
    const auto outcome =
        run(KVX_CLIENT_PYTHON, {"-B", KVX_CLIENT_SCRIPT, "TCPIP0::127.0.0.1::inst0::INSTR", KVX_CLIENT_VISA});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errorOutput;
    EXPECT_THAT(outcome.lines, ElementsAre("done"));
    EXPECT_EQ(instrument.receivedLines().at(0), ":SOUR1:VOLT 5");
}

TEST_F(Vxi11Clients, LxiToolsAskAndSet)
{
    needs(KVX_CLIENT_LXI);
    VirtualInstrumentProcess instrument({"--vxi11"});
    const auto send = [](const std::string& command) {
        return run(KVX_CLIENT_LXI, {"scpi", "--address", "127.0.0.1", "--timeout", "60", command}).lines;
    };
    EXPECT_THAT(send("*IDN?"), ElementsAre(kIdentity));
    EXPECT_THAT(send(":SOUR1:VOLT 5"), ElementsAre());
    EXPECT_THAT(send(":SOUR1:VOLT?"), ElementsAre("5.000000"));
    EXPECT_THAT(instrument.receivedLines(), ElementsAre("*IDN?", ":SOUR1:VOLT 5", ":SOUR1:VOLT?"));
}

TEST_F(Vxi11Clients, LxiToolsDiscoverItByABroadcast)
{
    needs(KVX_CLIENT_LXI);
    const VirtualInstrumentProcess instrument({"--vxi11", "--bind", "0.0.0.0"});
    EXPECT_THAT(run(KVX_CLIENT_LXI, {"discover"}).lines, Contains(HasSubstr(kIdentity)));
}

} // namespace
