#include "tests/support/processes/finished_program.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

using testing::HasSubstr;

/// The program, with an instrument.
class CommandLineProgram : public testing::Test
{
protected:
    FinishedProgram run(const std::vector<std::string>& arguments) const
    {
        return runProgram(KVX_TOOL, arguments, {{"KVX2800T_RESOURCE", instrument_.resource()}});
    }

private:
    VirtualInstrumentProcess instrument_{{"--load", "CH1=10"}};
};

TEST_F(CommandLineProgram, SetsAndMeasures)
{
    EXPECT_EQ(run({"set", "CH1", "5V", "1A", "on"}), (FinishedProgram{0, "", ""}));
    EXPECT_EQ(run({"measure", "CH1"}), (FinishedProgram{0,
                                                        "Channel  Voltage  Current  Power    State\n"
                                                        "CH1      5.000 V  0.500 A  2.500 W  CV\n",
                                                        ""}));
}

TEST_F(CommandLineProgram, SaysWhatIsWrong)
{
    EXPECT_EQ(run({"set", "CH1", "5"}),
              (FinishedProgram{2, "", "kvx2800t: neither a voltage (5V) nor a current (500mA), on or off: 5\n"}));
    const FinishedProgram doctor = run({"doctor", "TCPIP0::127.0.0.1::1::SOCKET"});
    EXPECT_EQ(doctor.exitCode, 3);
    EXPECT_THAT(doctor.output, HasSubstr("\nok      host         127.0.0.1\nBROKEN  connection   "));
    EXPECT_THAT(doctor.errorOutput, HasSubstr("kvx2800t: 0xBFFF0011 VI_ERROR_RSRC_NFOUND: "));
}

TEST_F(CommandLineProgram, AsksTheVisaOfTheDriver)
{
    const FinishedProgram doctor = run({"doctor"});
    EXPECT_EQ(doctor.exitCode, 0);
    EXPECT_THAT(doctor.output, HasSubstr("\nok      VISA         KVX2800T stand-in VISA, "));
    EXPECT_THAT(doctor.output, HasSubstr("\nok      error queue  empty\n"));
}

} // namespace
} // namespace kvxtest
