#include "tests/support/environment.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/processes/finished_program.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

using TextLines = std::vector<std::string>;

const TextLines kConfigured{":SOUR3:VOLT 3.300000",      ":SOUR3:CURR 0.500000",      ":SOUR3:CURR:PROT 0.500000",
                            ":SOUR3:CURR:PROT:STAT OFF", ":SOUR3:VOLT:PROT 4.000000", ":SOUR3:VOLT:PROT:STAT ON",
                            ":OUTP:STAT CH3,ON"};
const TextLines kVerified{":SOUR3:VOLT?",      ":SOUR3:CURR?",           ":SOUR3:CURR:PROT:STAT?",
                          ":SOUR3:VOLT:PROT?", ":SOUR3:VOLT:PROT:STAT?", ":OUTP:STAT? CH3"};
const std::string kOff = ":OUTPut:STATe ALL,OFF";

std::string reading(int number)
{
    return "reading " + std::to_string(number) + ": 3.300 V, 0.330 A";
}

std::string failure(int number)
{
    return "reading " + std::to_string(number) + ": failed with 0xBFFA4214, waiting for the instrument";
}

/// The reading that has failed; nothing when none has.
std::optional<int> failedReading(const TextLines& output)
{
    for (int number = 1; number <= static_cast<int>(output.size()); ++number)
        if (std::find(output.begin(), output.end(), failure(number)) != output.end())
            return number;
    return std::nullopt;
}

/// What the program prints when that one of `count` readings fails once.
TextLines outputWithFailure(int failed, int count, const std::string& recovery)
{
    TextLines output;
    for (int number = 1; number <= count; ++number) {
        if (number == failed)
            output.insert(output.end(), {failure(number), recovery});
        output.push_back(reading(number));
    }
    return output;
}

/// Connecting and measuring aside: how often the program does so is the connection's business.
TextLines settingsIn(TextLines lines)
{
    std::erase(lines, "*IDN?");
    std::erase(lines, ":MEAS:ALL? CH3");
    return lines;
}

TextLines operator+(TextLines first, const TextLines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// The program, which knows no configuration store. It may connect again with the session that it has, or with a new
/// one at once.
class PulledCable : public testing::TestWithParam<TextLines>
{
protected:
    std::unique_ptr<ChildProcess> start(const TextLines& arguments) const
    {
        return std::make_unique<ChildProcess>(KVX_PULLED_CABLE, arguments + GetParam());
    }

    /// Its further lines.
    static TextLines toItsEnd(ChildProcess& program, TextLines output)
    {
        while (const auto line = program.readLine())
            output.push_back(*line);
        return output;
    }

private:
    EnvironmentVariable store_{"IVI_MASTER_STORE", nullptr};
    EnvironmentVariable folder_{"XDG_CONFIG_HOME", "/no-such-folder"};
};

TEST_P(PulledCable, GoesOnAfterItsConnectionWasCut)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    const auto program = start({instrument.resource(), "40", "30"});
    const std::optional<std::string> first = program->readLine();
    ASSERT_EQ(first, reading(1));
    instrument.control("disconnect");
    const TextLines output = toItsEnd(*program, {*first});
    EXPECT_EQ(program->wait(), 0);
    EXPECT_EQ(program->errorOutput(), "");
    const std::optional<int> failed = failedReading(output);
    ASSERT_TRUE(failed);
    EXPECT_EQ(output, outputWithFailure(*failed, 40, "connected again, settings as they were"));
    EXPECT_EQ(settingsIn(instrument.receivedLines()), kConfigured + kVerified + TextLines{kOff});
}

TEST_P(PulledCable, SetsWhatAPowerFailureHasReset)
{
    std::optional<VirtualInstrumentProcess> instrument(std::in_place, TextLines{"--load", "CH3=10"});
    const std::string port = std::to_string(instrument->port());
    const auto program = start({instrument->resource(), "5", "200"});
    TextLines output{program->readLine().value_or("")};
    ASSERT_EQ(output, TextLines{reading(1)});
    instrument->kill();
    while (!failedReading(output))
        output.push_back(program->readLine().value());
    instrument.emplace(TextLines{"--load", "CH3=10", "--port", port});
    const int failed = *failedReading(output);
    output = toItsEnd(*program, output);
    EXPECT_EQ(program->wait(), 0);
    EXPECT_EQ(program->errorOutput(), "");
    EXPECT_EQ(output, outputWithFailure(failed, 5, "connected again, settings were lost and are set again"));
    EXPECT_EQ(settingsIn(instrument->receivedLines()), TextLines{":SOUR3:VOLT?"} + kConfigured + TextLines{kOff});
}

TEST_P(PulledCable, SaysThatTheInstrumentDoesNotComeBack)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    const auto program = start({instrument.resource(), "3", "20"});
    const std::optional<std::string> first = program->readLine();
    ASSERT_EQ(first, reading(1));
    instrument.kill();
    const TextLines output = toItsEnd(*program, {*first});
    EXPECT_EQ(program->wait(), 1);
    const std::optional<int> failed = failedReading(output);
    ASSERT_TRUE(failed);
    EXPECT_EQ(output.back(), failure(*failed));
    EXPECT_TRUE(program->errorOutput().starts_with("pulled_cable: 0xBFFA4214 I/O error.")) << program->errorOutput();
}

INSTANTIATE_TEST_SUITE_P(WithItsSession, PulledCable, testing::Values(TextLines{}));
INSTANTIATE_TEST_SUITE_P(WithANewOne, PulledCable, testing::Values(TextLines{"--reopen"}));

TEST(PulledCableProgram, ReadsUndisturbed)
{
    VirtualInstrumentProcess instrument({"--load", "CH3=10"});
    EXPECT_EQ(runProgram(KVX_PULLED_CABLE, {instrument.resource(), "2", "0"}),
              (FinishedProgram{0, reading(1) + "\n" + reading(2) + "\n", ""}));
    const TextLines measured{":MEAS:ALL? CH3", ":MEAS:ALL? CH3", kOff};
    EXPECT_EQ(instrument.receivedLines(), TextLines{"*IDN?"} + kConfigured + measured);
}

TEST(PulledCableProgram, WantsAResource)
{
    const FinishedProgram usage{1, "", "usage: pulled_cable RESOURCE [READINGS [MILLISECONDS]] [--reopen]\n"};
    EXPECT_EQ(runProgram(KVX_PULLED_CABLE, {}), usage);
    EXPECT_EQ(runProgram(KVX_PULLED_CABLE, {"A", "1", "1", "B"}), usage);
}

} // namespace
} // namespace kvxtest
