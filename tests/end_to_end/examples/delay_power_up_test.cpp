#include "tests/end_to_end/examples/python_program.h"
#include "tests/end_to_end/examples/received_lines.h"
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

TEST(DelayPowerUp, LoadsAProgramForEachRailAndStartsThemTogether)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runPython({KVX_DELAY_POWER_UP, instrument.resource(), "--gap", "0.2"}),
              (FinishedProgram{0,
                               "OutputChannel4: 1.800 V after 0.000 s\n"
                               "OutputChannel3: 3.300 V after 0.200 s\n"
                               "OutputChannel4: 1.800 V, 0.000 A\n"
                               "OutputChannel3: 3.300 V, 0.330 A\n"
                               "power is up\n",
                               ""}));
    const TextLines lines = instrument.receivedLines();
    EXPECT_GT(std::count(lines.begin(), lines.end(), ":DELAY:STATUS?"), 0);
    EXPECT_EQ(withoutPolls(withoutStatusChecks(lines), ":DELAY:STATUS?"),
              (TextLines{"*IDN?",
                         "*CLS",
                         "*RST",
                         ":SOUR4:VOLT 1.800000",
                         ":SOUR4:CURR 0.500000",
                         ":SOUR4:CURR:PROT 0.500000",
                         ":SOUR4:CURR:PROT:STAT ON",
                         ":INST:SELE CH4",
                         ":DELAY:GROUP:CLEar",
                         ":DELAY:GROUP:PARAmeter 1,ON,0.100000",
                         ":INST:SELE CH4",
                         ":DELAY:CYCLEs 1",
                         ":INST:SELE CH4",
                         ":DELAY:ENDState ON",
                         ":SOUR3:VOLT 3.300000",
                         ":SOUR3:CURR 0.500000",
                         ":SOUR3:CURR:PROT 0.500000",
                         ":SOUR3:CURR:PROT:STAT ON",
                         ":INST:SELE CH3",
                         ":DELAY:GROUP:CLEar",
                         ":DELAY:GROUP:PARAmeter 1,OFF,0.200000",
                         ":DELAY:GROUP:PARAmeter 2,ON,0.100000",
                         ":INST:SELE CH3",
                         ":DELAY:CYCLEs 1",
                         ":INST:SELE CH3",
                         ":DELAY:ENDState ON",
                         ":INST:SELE CH4",
                         ":DELAY:STATe ON",
                         ":INST:SELE CH3",
                         ":DELAY:STATe ON",
                         ":STATus:QUEStionable:INSTrument:ISUMmary4:CONDition?",
                         ":OUTP:STAT? CH4",
                         ":OUTP:CVCC? CH4",
                         ":MEAS:ALL? CH4",
                         ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                         ":OUTP:STAT? CH3",
                         ":OUTP:CVCC? CH3",
                         ":MEAS:ALL? CH3"}));
}

TEST(DelayPowerUp, TakesRailsInTheirOrder)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_EQ(runPython({KVX_DELAY_POWER_UP, instrument.resource(), "--gap", "0.1", "--rail", "OutputChannel3=12",
                         "--rail", "OutputChannel1=5", "--rail", "OutputChannel4=0.9"}),
              (FinishedProgram{0,
                               "OutputChannel3: 12.000 V after 0.000 s\n"
                               "OutputChannel1: 5.000 V after 0.100 s\n"
                               "OutputChannel4: 0.900 V after 0.200 s\n"
                               "OutputChannel3: 12.000 V, 0.000 A\n"
                               "OutputChannel1: 5.000 V, 0.000 A\n"
                               "OutputChannel4: 0.900 V, 0.000 A\n"
                               "power is up\n",
                               ""}));
}

TEST(DelayPowerUp, SwitchesAllOffWhenOneTrips)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runPython({KVX_DELAY_POWER_UP, instrument.resource(), "--gap", "0.2", "--amperes", "0.1"}),
              (FinishedProgram{1,
                               "OutputChannel4: 1.800 V after 0.000 s\n"
                               "OutputChannel3: 3.300 V after 0.200 s\n"
                               "OutputChannel4: 1.800 V, 0.000 A\n",
                               "delay_power_up.py: OutputChannel3 has tripped: over-current\n"}));
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST(DelayPowerUp, SaysWhyItCouldNotOpen)
{
    EXPECT_EQ(
        runPython({KVX_DELAY_POWER_UP, "BANANA"}),
        (FinishedProgram{1, "",
                         "delay_power_up.py: KVX2800T_InitWithOptions: 0xBFFA4214 I/O error.  Insufficient location "
                         "information or resource "
                         "not present in the system  Resource 'BANANA': VI_ERROR_INV_RSRC_NAME, the resource name "
                         "cannot be read.\n"}));
}

TEST(DelayPowerUp, WantsRailsThatItUnderstands)
{
    const FinishedProgram program = runPython({KVX_DELAY_POWER_UP, "BANANA", "--rail", "five volts"});
    EXPECT_EQ(program.exitCode, 2);
    EXPECT_TRUE(program.errorOutput.ends_with("error: argument --rail: invalid rail value: 'five volts'\n"))
        << program.errorOutput;
}

} // namespace
} // namespace kvxtest
