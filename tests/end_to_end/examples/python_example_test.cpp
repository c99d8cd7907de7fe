#include "tests/end_to_end/examples/python_program.h"
#include "tests/support/platform/store_file.h"
#include "tests/support/processes/finished_program.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

FinishedProgram runDemonstration(std::vector<std::string> arguments, const std::vector<Variable>& environment = {})
{
    arguments.insert(arguments.begin(), {"-m", "kvx2800t"});
    return runPython(arguments, environment);
}

/// What it prints without the profile; with it, details follow.
std::string demonstrationOn(const std::string& channel)
{
    return "KVX2833T, firmware V1.00\n" + channel +
           ": 3.300 V, 0.500 A, output on\n"
           "100 V: KVX2800T_SetAttributeViReal64: 0xBFFA4217 Attribute or function parameter value is invalid (out of "
           "range or not supported).";
}

FinishedProgram withDetails(const std::string& demonstration, const std::string& details)
{
    return {0, demonstration + "  " + details + "\n", ""};
}

TEST(PythonDemonstration, ConfiguresAChannelAndShowsAnError)
{
    VirtualInstrumentProcess instrument;
    EXPECT_EQ(runDemonstration({instrument.resource()}),
              withDetails(demonstrationOn("OutputChannel3"), "OutputChannel3 takes 0 V to 16 V, not 100 V."));
    EXPECT_EQ(instrument.receivedLines(),
              (std::vector<std::string>{"*IDN?", ":SOUR3:VOLT 3.300000", ":SOUR3:CURR 0.500000",
                                        ":SOUR3:CURR:PROT 0.500000", ":SOUR3:CURR:PROT:STAT OFF", ":OUTP:STAT CH3,ON",
                                        ":SOUR3:VOLT?", ":SOUR3:CURR?", ":OUTP:STAT? CH3", ":OUTPut:STATe ALL,OFF"}));
}

TEST(PythonDemonstration, RunsWithoutTheProfile)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_EQ(runDemonstration({instrument.resource(), "--no-profile"}),
              (FinishedProgram{0, demonstrationOn("OutputChannel3") + "\n", ""}));
}

TEST(PythonDemonstration, TakesALogicalNameAndAVirtualOne)
{
    VirtualInstrumentProcess instrument;
    const StoreFile store(instrument.resource());
    EXPECT_EQ(runDemonstration({"BenchSupply", "--channel", "Core"}, {{"IVI_MASTER_STORE", store.path()}}),
              withDetails(demonstrationOn("Core"), "OutputChannel4 takes 0 V to 6.2 V, not 100 V."));
    const std::vector<std::string> lines = instrument.receivedLines();
    EXPECT_EQ((std::vector<std::string>(lines.begin(), lines.begin() + 5)),
              (std::vector<std::string>{"*IDN?", "*CLS", "*ESR?", ":SOUR4:VOLT 3.300000", "*ESR?"}));
}

TEST(PythonDemonstration, SimulatesWithALibraryOfItsOwn)
{
    const FinishedProgram program = runDemonstration({"", "--simulate", "--no-profile", "--library", KVX_DRIVER_FILE});
    EXPECT_EQ(program.exitCode, 0);
    EXPECT_TRUE(program.output.starts_with("KVX2803T, firmware Sim1.0.0.0\nOutputChannel3: ")) << program.output;
    EXPECT_EQ(program.errorOutput, "");
}

TEST(PythonDemonstration, SaysWhyItCouldNotOpen)
{
    EXPECT_EQ(runDemonstration({"BANANA", "--no-profile"}),
              (FinishedProgram{
                  1, "",
                  "kvx2800t: KVX2800T_init: 0xBFFA4214 I/O error.  Insufficient location information or resource not "
                  "present in the system\n"}));
}

TEST(PythonDemonstration, SaysThatThereIsNoLibrary)
{
    EXPECT_EQ(runDemonstration({"BANANA", "--library", "/no-such-folder/driver.so"}),
              (FinishedProgram{1, "",
                               "kvx2800t: the KVX2800T driver is not installed, or its library cannot be loaded. "
                               "Looked at:\n  /no-such-folder/driver.so: there is no such file\n"
                               "Install the driver, or name its library by the environment variable "
                               "KVX2800T_LIBRARY.\n"}));
}

TEST(PythonDemonstration, WantsAResource)
{
    const FinishedProgram program = runDemonstration({});
    EXPECT_EQ(program.exitCode, 2);
    EXPECT_EQ(program.output, "");
    EXPECT_TRUE(program.errorOutput.ends_with("error: the following arguments are required: resource\n"))
        << program.errorOutput;
}

} // namespace
} // namespace kvxtest
