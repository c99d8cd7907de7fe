#include "tools/kvx2800t/command_line/exit_codes.h"

#include "tools/kvx2800t/command_line/status_names.h"

#include <KVX2800T.h>
#include <gtest/gtest.h>
#include <visa.h>

namespace command_line
{
namespace
{

TEST(ExitCodes, ArePrintedInTheirOrderWithoutAGap)
{
    int next = 0;
    for (const ExitCodeMeaning& row : exitCodeMeanings())
        EXPECT_EQ(static_cast<int>(row.code), next++) << row.meaning;
    EXPECT_EQ(next, 11);
}

TEST(ExitCodes, TellTheKindOfAFailure)
{
    EXPECT_EQ(exitCodeOf(KVX2800T_ERROR_IO_TIMEOUT, Phase::Working), ExitCode::LinkFailed);
    EXPECT_EQ(exitCodeOf(IVI_ERROR_ID_QUERY_FAILED, Phase::Opening), ExitCode::WrongInstrument);
    EXPECT_EQ(exitCodeOf(KVX2800T_ERROR_VALUE_OUT_OF_RANGE, Phase::Working), ExitCode::Refused);
    EXPECT_EQ(exitCodeOf(IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER, Phase::Working), ExitCode::UnknownChannel);
    EXPECT_EQ(exitCodeOf(IVI_ERROR_INSTRUMENT_STATUS, Phase::Working), ExitCode::InstrumentError);
    EXPECT_EQ(exitCodeOf(IVI_ERROR_BAD_OPTION_VALUE, Phase::Opening), ExitCode::Configuration);
    EXPECT_EQ(exitCodeOf(IVI_ERROR_OUT_OF_MEMORY, Phase::Working), ExitCode::Internal);
}

TEST(ExitCodes, ALinkThatFailsWhileOpeningIsOneThatNeverWas)
{
    EXPECT_EQ(exitCodeOf(KVX2800T_ERROR_IO, Phase::Opening), ExitCode::Unreachable);
    EXPECT_EQ(exitCodeOf(KVX2800T_ERROR_IO, Phase::Working), ExitCode::LinkFailed);
    EXPECT_EQ(exitCodeOf(VI_ERROR_TMO, Phase::Opening), ExitCode::Unreachable);
    EXPECT_EQ(exitCodeOf(VI_ERROR_TMO, Phase::Working), ExitCode::LinkFailed);
}

TEST(ExitCodes, TheConfigurationServersStatusesAreOneKind)
{
    for (const ViUInt32 bits : {0xBFFA1200U, 0xBFFA1206U, 0xBFFA1224U, 0xBFFF009EU})
        EXPECT_EQ(exitCodeOf(static_cast<ViStatus>(bits), Phase::Opening), ExitCode::Configuration);
}

TEST(StatusNames, AreThoseOfTheHeaders)
{
    EXPECT_EQ(statusText(KVX2800T_ERROR_IO), "0xBFFA4214 KVX2800T_ERROR_IO");
    EXPECT_EQ(statusText(VI_ERROR_TMO), "0xBFFF0015 VI_ERROR_TMO");
    EXPECT_EQ(statusText(static_cast<ViStatus>(0xBFFA1206U)), "0xBFFA1206 IVICONFIG_ERROR_MASTER_NOT_FOUND");
    EXPECT_EQ(statusText(static_cast<ViStatus>(0x80001234U)), "0x80001234");
}

} // namespace
} // namespace command_line
