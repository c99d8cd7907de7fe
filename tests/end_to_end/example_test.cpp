#include "support/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

namespace kvxtest
{
namespace
{

/// What a command prints, and its exit status as wait() gives it.
struct FinishedProgram
{
    std::string output;
    int status;
};

FinishedProgram run(const std::string& command)
{
    FinishedProgram result{"", -1};
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        return result;
    std::array<char, 256> chunk{};
    while (std::fgets(chunk.data(), chunk.size(), pipe) != nullptr)
        result.output += chunk.data();
    result.status = pclose(pipe);
    return result;
}

TEST(FirstSession, PrintsWhatItConfiguredAndTheRecordedError)
{
    const VirtualInstrumentProcess instrument;
    const FinishedProgram example = run(std::string(KVX_FIRST_SESSION) + " " + instrument.resource());
    EXPECT_EQ(example.status, 0);
    EXPECT_EQ(example.output,
              "driver 1.0.0.0, firmware V1.00\n"
              "OutputChannel1: 5.000 V, 1.000 A, output on\n"
              "OutputChannel3: 3.300 V, 0.500 A, output on\n"
              "16.5 V on OutputChannel3: 0xBFFA4217 Attribute or function parameter value is invalid (out of range or "
              "not supported).\n"
              "closed\n");
}

TEST(FirstSession, SaysWhyItCouldNotOpen)
{
    const FinishedProgram example = run(std::string(KVX_FIRST_SESSION) + " BANANA");
    EXPECT_NE(example.status, 0);
    EXPECT_EQ(example.output, "InitWithOptions: 0xBFFA4214 I/O error.  Insufficient location information or resource "
                              "not present in the system\n");
}

} // namespace
} // namespace kvxtest
