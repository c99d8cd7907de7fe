#include "tests/end_to_end/examples/python_program.h"
#include "tests/end_to_end/examples/received_lines.h"
#include "tests/support/environment.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

using TextLines = std::vector<std::string>;

constexpr double kInterval = 0.1;

/// A CSV file: its times, and its lines without them.
struct Log
{
    explicit Log(const std::string& path)
    {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            const std::size_t comma = line.find(',');
            if (!values.empty())
                seconds.push_back(std::stod(line.substr(0, comma)));
            values.push_back(line.substr(comma + 1));
        }
    }

    std::vector<double> seconds;
    TextLines values;
};

class SoakLog : public testing::Test
{
protected:
    /// Ends a line of a CSV file, as RFC 4180 says.
    static std::string row(const std::string& values) { return values + "\r"; }

    TemporaryFolder folder;
    std::string path = folder / "soak.csv";
};

TEST_F(SoakLog, WritesWhatTheMetersReadWithTheTimeSinceTheStart)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runPython({KVX_SOAK_LOG, instrument.resource(), path, "--channels", "OutputChannel3,OutputChannel4",
                         "--interval", "0.1", "--samples", "3"}),
              (FinishedProgram{0, "OutputChannel3,OutputChannel4: 5.000 V, at most 1.000 A\n3 samples\n", ""}));
    const Log log(path);
    EXPECT_EQ(log.values,
              (TextLines{row("OutputChannel3 V,OutputChannel3 A,OutputChannel3 W,OutputChannel4 V,"
                             "OutputChannel4 A,OutputChannel4 W"),
                         row("5.000,0.500,2.500,5.000,0.000,0.000"), row("5.000,0.500,2.500,5.000,0.000,0.000"),
                         row("5.000,0.500,2.500,5.000,0.000,0.000")}));
    ASSERT_EQ(log.seconds.size(), 3U);
    EXPECT_GE(log.seconds[0], 0.0);
    EXPECT_GE(log.seconds[1], kInterval);
    EXPECT_GE(log.seconds[2], 2 * kInterval);
    TextLines sample{":MEAS:ALL? CH3", ":MEAS:ALL? CH4", ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                     ":STATus:QUEStionable:INSTrument:ISUMmary4:CONDition?"};
    TextLines expected{"*IDN?",
                       "*CLS",
                       "*RST",
                       ":SOUR3:VOLT 5.000000",
                       ":SOUR4:VOLT 5.000000",
                       ":SOUR3:CURR 1.000000",
                       ":SOUR3:CURR:PROT 1.000000",
                       ":SOUR3:CURR:PROT:STAT ON",
                       ":SOUR4:CURR 1.000000",
                       ":SOUR4:CURR:PROT 1.000000",
                       ":SOUR4:CURR:PROT:STAT ON",
                       ":OUTP:STAT CH3,ON",
                       ":OUTP:STAT CH4,ON"};
    for (int number = 0; number < 3; ++number)
        expected.insert(expected.end(), sample.begin(), sample.end());
    expected.emplace_back(":OUTPut:STATe ALL,OFF");
    EXPECT_EQ(withoutStatusChecks(instrument.receivedLines()), expected);
}

TEST_F(SoakLog, EndsWithATripAndKeepsWhatItHas)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runPython({KVX_SOAK_LOG, instrument.resource(), path, "--amperes", "0.3"}),
              (FinishedProgram{1, "OutputChannel3: 5.000 V, at most 0.300 A\n",
                               "soak_log.py: OutputChannel3 has tripped: over-current\n"}));
    EXPECT_EQ(Log(path).values,
              (TextLines{row("OutputChannel3 V,OutputChannel3 A,OutputChannel3 W"), row("0.000,0.000,0.000")}));
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST_F(SoakLog, EndsWithCtrlC)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    const EnvironmentVariable package("PYTHONPATH", KVX_PYTHON_PACKAGE);
    const EnvironmentVariable store("IVI_MASTER_STORE", nullptr);
    const EnvironmentVariable noStore("XDG_CONFIG_HOME", "/no-such-folder");
    ChildProcess program(KVX_PYTHON, {"-B", KVX_SOAK_LOG, instrument.resource(), path, "--samples", "1000000"});
    EXPECT_EQ(program.readLine(), "OutputChannel3: 5.000 V, at most 1.000 A");
    program.interrupt();
    EXPECT_EQ(program.readLine(), "stopped by hand");
    EXPECT_EQ(program.wait(), 0) << program.errorOutput();
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST_F(SoakLog, SaysThatItCannotWriteItsFile)
{
    VirtualInstrumentProcess instrument;
    const std::string missing = folder / "no-such-folder/soak.csv";
    EXPECT_EQ(runPython({KVX_SOAK_LOG, instrument.resource(), missing}),
              (FinishedProgram{1, "", "soak_log.py: [Errno 2] No such file or directory: '" + missing + "'\n"}));
    EXPECT_EQ(instrument.receivedLines(), (TextLines{}));
}

} // namespace
} // namespace kvxtest
