#include "tests/support/processes/finished_program.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

using TextLines = std::vector<std::string>;

constexpr const char* kNoInstrumentLine =
    "0xBFFA4214 I/O error.  Insufficient location information or resource not present in the system\n";

/// A line of the list of attributes.
std::string row(std::string name, const std::string& value)
{
    constexpr std::size_t kColumn = 41;
    name.resize(kColumn, ' ');
    return name + value + "\n";
}

std::string driverRows()
{
    return row("SPECIFIC_DRIVER_DESCRIPTION", "\"IVI-C Driver for KVX2800T\"") +
           row("SPECIFIC_DRIVER_PREFIX", "\"KVX2800T\"") + row("SPECIFIC_DRIVER_VENDOR", "\"Tessaro Instruments\"") +
           row("SPECIFIC_DRIVER_REVISION", "\"1.0.0.0\"") + row("SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION", "3") +
           row("SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION", "0") +
           row("GROUP_CAPABILITIES", "\"IviDCPwrBase,IviDCPwrMeasurement\"") +
           row("SUPPORTED_INSTRUMENT_MODELS", "\"KVX2833T\"") + row("CHANNEL_COUNT", "6");
}

std::string switchRows(const std::string& statusChecking, const std::string& simulate)
{
    return row("RANGE_CHECK", "true") + row("QUERY_INSTRUMENT_STATUS", statusChecking) + row("CACHE", "false") +
           row("SIMULATE", simulate) + row("RECORD_COERCIONS", "false") + row("INTERCHANGE_CHECK", "false");
}

std::string connectionRows(const std::string& resource, const std::string& model)
{
    return row("LOGICAL_NAME", "\"\"") + row("IO_RESOURCE_DESCRIPTOR", "\"" + resource + "\"") +
           row("DRIVER_SETUP", "\"\"") + row("INSTRUMENT_MANUFACTURER", "\"Tessaro Instruments\"") +
           row("INSTRUMENT_MODEL", "\"" + model + "\"") + row("INSTRUMENT_FIRMWARE_REVISION", "\"V1.00\"");
}

/// A channel as *RST leaves it.
std::string channelRows(const std::string& channel, const std::string& ovpLimit)
{
    return "\n" + channel + "\n" + row("VOLTAGE_LEVEL", "0.000") + row("OVP_ENABLED", "false") +
           row("OVP_LIMIT", ovpLimit) + row("CURRENT_LIMIT_BEHAVIOR", "0") + row("CURRENT_LIMIT", "0.100") +
           row("OUTPUT_ENABLED", "false");
}

std::string rowsOfAllChannels()
{
    return channelRows("OutputChannel1", "36.300") + channelRows("OutputChannel2", "36.300") +
           channelRows("OutputChannel3", "17.600") + channelRows("OutputChannel4", "6.820") +
           channelRows("OutputChannel5", "72.600") + channelRows("OutputChannel6", "36.300");
}

TEST(FirstSession, PrintsWhatItConfiguredAndTheRecordedError)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_EQ(runProgram(KVX_FIRST_SESSION, {instrument.resource()}),
              (FinishedProgram{0,
                               "driver 1.0.0.0, firmware V1.00\n"
                               "OutputChannel1: 5.000 V, 1.000 A, output on\n"
                               "OutputChannel3: 3.300 V, 0.500 A, output on\n"
                               "16.5 V on OutputChannel3: 0xBFFA4217 Attribute or function parameter value is invalid "
                               "(out of range or not supported).\n"
                               "closed\n",
                               ""}));
}

TEST(FirstSession, SaysWhyItCouldNotOpen)
{
    EXPECT_EQ(runProgram(KVX_FIRST_SESSION, {"BANANA"}),
              (FinishedProgram{1, "", std::string("InitWithOptions: ") + kNoInstrumentLine}));
}

TEST(FirstSession, WantsOneResource)
{
    EXPECT_EQ(runProgram(KVX_FIRST_SESSION, {}), (FinishedProgram{1, "", "usage: first_session RESOURCE\n"}));
}

TEST(AllAttributes, ListsThemAllOfEveryChannel)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {instrument.resource()}),
              (FinishedProgram{0,
                               driverRows() + switchRows("false", "false") +
                                   connectionRows(instrument.resource(), "KVX2833T") + rowsOfAllChannels(),
                               ""}));
}

TEST(AllAttributes, TakesOptions)
{
    // The levels of a simulated instrument are drawn at random.
    const FinishedProgram program = runProgram(KVX_ALL_ATTRIBUTES, {"", "Simulate=1,QueryInstrStatus=1"});
    EXPECT_EQ(program.exitCode, 0);
    EXPECT_TRUE(program.output.starts_with(driverRows() + switchRows("true", "true") + connectionRows("", "KVX2803T") +
                                           "\nOutputChannel1\nVOLTAGE_LEVEL "))
        << program.output;
    EXPECT_NE(program.output.find("\n\nOutputChannel6\nVOLTAGE_LEVEL "), std::string::npos) << program.output;
    EXPECT_EQ(program.errorOutput, "");
}

TEST(AllAttributes, SaysWhyItCouldNotOpen)
{
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {"BANANA"}),
              (FinishedProgram{1, "", "all_attributes: " + std::string(kNoInstrumentLine)}));
    EXPECT_EQ(
        runProgram(KVX_ALL_ATTRIBUTES, {"", "Simulate=1,Banana=1"}),
        (FinishedProgram{1, "", "all_attributes: 0xBFFA004B The 'banana' name in the option string is unknown.\n"}));
}

TEST(AllAttributes, SaysWhyItStopped)
{
    VirtualInstrumentProcess instrument;
    // Identifies itself; the voltage of channel 1 never comes to its end.
    instrument.control("answer Tessaro Instruments,KVX2833T,1,V1.00");
    instrument.control("answer-bytes 1");
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {instrument.resource()}),
              (FinishedProgram{1,
                               driverRows() + switchRows("false", "false") +
                                   connectionRows(instrument.resource(), "KVX2833T") + "\nOutputChannel1\n",
                               "all_attributes: 0xBFFA4214 I/O error.\n"}));
}

TEST(AllAttributes, WantsAResource)
{
    const FinishedProgram usage{1, "", "usage: all_attributes RESOURCE [OPTIONS]\n"};
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {}), usage);
    EXPECT_EQ(runProgram(KVX_ALL_ATTRIBUTES, {"A", "B", "C"}), usage);
}

TEST(ErrorHandling, ShowsStatusesTextsAndTheInstrumentsErrors)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_EQ(
        runProgram(KVX_ERROR_HANDLING, {instrument.resource()}),
        (FinishedProgram{
            0,
            "open: done\n"
            "16 V on channel 3: done\n"
            "16.5 V on channel 3: error 0xBFFA4217 Attribute or function parameter value is invalid (out of range or "
            "not supported).\n"
            "1 V on channel 9: error 0xBFFA0067 The identifier 'OutputChannel9' is not defined for repeated capability "
            "'OutputChannel'.\n"
            "1 V without a channel: error 0xBFFA0044 No selector was specified for repeated capability "
            "'OutputChannel'.  The repeated capability identifier can be null or empty only when there is exactly one "
            "physical name defined.  Repeated capability 'OutputChannel' has 6 physical names defined.\n"
            "the output switch as a number: error 0xBFFA0015 GetAttributeViReal64 called for attribute "
            "'KVX2800T_ATTR_OUTPUT_ENABLED' of type 'ViBoolean'.\n"
            "7 V on channels 3 and 4: error 0xBFFA4217 Attribute or function parameter value is invalid (out of range "
            "or not supported).\n"
            "  channel 3 has 7.0 V\n"
            "self test: warning 0x3FFA0067 Self test is not supported by this instrument.\n"
            "1000 V protection, unchecked: done\n"
            "  the instrument says -222 \"Data out of range\"\n"
            "status checking on: done\n"
            "1000 V protection, checked: error 0xBFFA0001 Instrument error detected.  Use ErrorQuery() to determine "
            "the error(s).\n"
            "  the instrument says -222 \"Data out of range\"\n"
            "10 V protection, checked: done\n"
            "reset after close: error 0xBFFA1190 Invalid session handle.\n",
            ""}));
}

TEST(ErrorHandling, FailsWithoutAnInstrument)
{
    EXPECT_EQ(runProgram(KVX_ERROR_HANDLING, {"BANANA"}),
              (FinishedProgram{1, "open: error " + std::string(kNoInstrumentLine), ""}));
}

TEST(ErrorHandling, WantsOneResource)
{
    EXPECT_EQ(runProgram(KVX_ERROR_HANDLING, {}), (FinishedProgram{1, "", "usage: error_handling RESOURCE\n"}));
}

#ifdef KVX_TWO_SUPPLIES

TextLines linesOfARamp(const TextLines& levels)
{
    TextLines lines{"*IDN?", "*RST", ":OUTP:STAT CH3,ON"};
    for (const std::string& level : levels) {
        lines.push_back(":SOUR3:VOLT " + level);
        lines.emplace_back(":SOUR3:VOLT?");
    }
    lines.emplace_back(":OUTPut:STATe ALL,OFF");
    return lines;
}

TEST(TwoSupplies, RampsBoth)
{
    VirtualInstrumentProcess first;
    VirtualInstrumentProcess second;
    EXPECT_EQ(runProgram(KVX_TWO_SUPPLIES, {first.resource(), second.resource()}),
              (FinishedProgram{0,
                               "first: 1.0 V 2.0 V 3.0 V 4.0 V 5.0 V\n"
                               "second: 3.0 V 6.0 V 9.0 V 12.0 V 15.0 V\n",
                               ""}));
    EXPECT_EQ(first.receivedLines(), linesOfARamp({"1.000000", "2.000000", "3.000000", "4.000000", "5.000000"}));
    EXPECT_EQ(second.receivedLines(), linesOfARamp({"3.000000", "6.000000", "9.000000", "12.000000", "15.000000"}));
}

TEST(TwoSupplies, OneWorksWithoutTheOther)
{
    const VirtualInstrumentProcess second;
    EXPECT_EQ(runProgram(KVX_TWO_SUPPLIES, {"BANANA", second.resource()}),
              (FinishedProgram{
                  1, "first: " + std::string(kNoInstrumentLine) + "second: 3.0 V 6.0 V 9.0 V 12.0 V 15.0 V\n", ""}));
}

TEST(TwoSupplies, WantsTwoResources)
{
    EXPECT_EQ(runProgram(KVX_TWO_SUPPLIES, {"A"}), (FinishedProgram{1, "", "usage: two_supplies RESOURCE RESOURCE\n"}));
}

#endif

} // namespace
} // namespace kvxtest
