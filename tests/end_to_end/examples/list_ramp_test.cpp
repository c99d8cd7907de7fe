#include "tests/end_to_end/examples/received_lines.h"
#include "tests/support/processes/finished_program.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

using TextLines = std::vector<std::string>;

TEST(ListRamp, LoadsAListRunsItAndMeasuresAtItsEnd)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runProgram(KVX_LIST_RAMP, {instrument.resource(), "4", "0.5"}),
              (FinishedProgram{0,
                               "OutputChannel3: 10 steps up to 4.00 V, 0.050 s each\n"
                               "at its end: 4.000 V, 0.400 A, 1.600 W\n",
                               ""}));
    const TextLines lines = instrument.receivedLines();
    EXPECT_GT(std::count(lines.begin(), lines.end(), ":LIST:STATUS?"), 0);
    EXPECT_EQ(withoutPolls(withoutStatusChecks(lines), ":LIST:STATUS?"),
              (TextLines{"*IDN?",
                         "*CLS",
                         "*RST",
                         ":SOUR3:CURR 0.500000",
                         ":SOUR3:CURR:PROT 0.500000",
                         ":SOUR3:CURR:PROT:STAT ON",
                         ":INST:SELE CH3",
                         ":LIST:GROUP:CLE",
                         ":LIST:GROUP:PARA 1,0.400000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 2,0.800000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 3,1.200000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 4,1.600000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 5,2.000000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 6,2.400000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 7,2.800000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 8,3.200000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 9,3.600000,0.500000,0.050000",
                         ":LIST:GROUP:PARA 10,4.000000,0.500000,0.050000",
                         ":INST:SELE CH3",
                         ":LIST:CYCLE 1",
                         ":INST:SELE CH3",
                         ":LIST:ENDS LAST",
                         ":INST:SELE CH3",
                         ":LIST:STAT ON",
                         ":OUTP:STAT CH3,ON",
                         ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                         ":MEAS:ALL? CH3",
                         ":OUTPut:STATe ALL,OFF"}));
}

TEST(ListRamp, SaysThatTheLoadHasTrippedIt)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runProgram(KVX_LIST_RAMP, {instrument.resource(), "9", "0.5"}),
              (FinishedProgram{1, "OutputChannel3: 10 steps up to 9.00 V, 0.050 s each\n",
                               "list_ramp: the over-current protection has tripped\n"}));
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST(ListRamp, LoadsNothingBeyondTheChannelsLimits)
{
    VirtualInstrumentProcess instrument;
    const FinishedProgram program = runProgram(KVX_LIST_RAMP, {instrument.resource(), "20"});
    EXPECT_EQ(program.exitCode, 1);
    EXPECT_EQ(program.output, "");
    EXPECT_EQ(
        program.errorOutput,
        "list_ramp: 0xBFFA4217 Attribute or function parameter value is invalid (out of range or not supported).  "
        "OutputChannel3 takes 0 V to 16 V, not 18 V.\n");
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST(ListRamp, WantsAResource)
{
    EXPECT_EQ(runProgram(KVX_LIST_RAMP, {}), (FinishedProgram{1, "", "usage: list_ramp RESOURCE [VOLTS [SECONDS]]\n"}));
}

} // namespace
} // namespace kvxtest
