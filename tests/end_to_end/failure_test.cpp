#include "tests/support/driver/driver_end_to_end.h"

#include <stdexcept>
#include <thread>

namespace kvxtest
{
namespace
{

class Failure : public DriverEndToEnd
{
};

TEST_F(Failure, LevelOutOfRangeIsRecordedAndNothingIsSent)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 16.5), KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(newLines(), Lines{});
    EXPECT_EQ(recordedError(vi),
              (RecordedError{KVX2800T_ERROR_VALUE_OUT_OF_RANGE,
                             "Attribute or function parameter value is invalid (out of range or not supported)."}));
    EXPECT_EQ(recordedError(vi), (RecordedError{VI_SUCCESS, ""}));
}

TEST_F(Failure, FirstChannelOutOfRangeLeavesTheOnesBehindItUntouched)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1,OutputChannel4,OutputChannel3", 10.0),
              KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR1:VOLT 10.000000"}));
}

TEST_F(Failure, FirstErrorOfASessionStaysUntilItIsRead)
{
    open();
    KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel7", 1.0);
    KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 99.0);
    EXPECT_EQ(
        recordedError(vi),
        (RecordedError{status(0xBFFA0067), "The identifier 'OutputChannel7' is not defined for repeated capability "
                                           "'OutputChannel'."}));
}

TEST_F(Failure, InstrumentErrorIsFoundByStatusChecking)
{
    open("QueryInstrStatus=1");
    instrument.control("inject -222 \"Data out of range\"");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), status(0xBFFA0001));
    EXPECT_EQ(
        recordedError(vi),
        (RecordedError{status(0xBFFA0001), "Instrument error detected.  Use ErrorQuery() to determine the error(s)."}));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
}

TEST_F(Failure, WithoutStatusCheckingTheInstrumentErrorGoesUnnoticed)
{
    open();
    instrument.control("inject -222 \"Data out of range\"");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
}

TEST_F(Failure, ReplyThatNeverComesIsAnIoError)
{
    open();
    instrument.control("swallow 1");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              KVX2800T_ERROR_IO);
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(recordedError(vi), (RecordedError{KVX2800T_ERROR_IO, "I/O error."}));
}

TEST_F(Failure, LostConnectionIsAnIoErrorAndTheSessionStillCloses)
{
    open();
    instrument.control("disconnect");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              KVX2800T_ERROR_IO);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    vi = VI_NULL;
}

TEST_F(Failure, UnreadableReplyLeavesAsAnExceptionWithTheSessionLockedAndNothingRecorded)
{
    open();
    instrument.control("answer volts");
    ViReal64 volts = -1.0;
    try {
        KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
        FAIL() << "no exception";
    } catch (const std::invalid_argument& exception) {
        EXPECT_STREQ(exception.what(), "invalid stod argument");
    }
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(recordedError(vi), (RecordedError{VI_SUCCESS, ""}));

    // The lock is this thread's until it gives it back: another thread's call waits for that.
    std::thread other([this] {
        ViReal64 value = 0.0;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &value), VI_SUCCESS);
    });
    ViReal64 own = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &own), VI_SUCCESS);
    EXPECT_EQ(newLines().back(), ":SOUR1:VOLT?");
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
    other.join();
    EXPECT_EQ(newLines(), Lines{":SOUR3:VOLT?"});
}

TEST_F(Failure, UnreadableBooleanNamesTheWholeReply)
{
    open();
    instrument.control("answer maybe");
    ViBoolean enabled = VI_FALSE;
    try {
        KVX2800T_GetAttributeViBoolean(vi, "OutputChannel1", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled);
        FAIL() << "no exception";
    } catch (const std::invalid_argument& exception) {
        EXPECT_STREQ(exception.what(), "Visa::parseBool Unknown ret:maybe");
    }
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
}

TEST_F(Failure, UnknownSourceModeIsAnUnexpectedResponse)
{
    open();
    newLines();
    instrument.control("answer TRIPLE");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1", 1.0), status(0xBFFA0059));
    EXPECT_EQ(newLines(), Lines{":SOUR:Mode?"});
    EXPECT_EQ(recordedError(vi), (RecordedError{status(0xBFFA0059), "Unexpected response from instrument."}));
}

TEST_F(Failure, IdentityOfThreeFieldsIsNoError)
{
    instrument.control("answer A,B,C");
    open();
    char driver[256] = "";
    char firmware[256] = "x";
    EXPECT_EQ(KVX2800T_revision_query(vi, driver, firmware), VI_SUCCESS);
    EXPECT_STREQ(firmware, "");
}

TEST(NoInstrument, InitFailsAndTheThreadKeepsTheText)
{
    KVX2800T_ClearError(VI_NULL);
    std::string resource;
    {
        const VirtualInstrumentProcess gone;
        resource = gone.resource();
    }
    ViSession vi = 7;
    EXPECT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi), KVX2800T_ERROR_IO);
    EXPECT_EQ(vi, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(recordedError(VI_NULL),
              (RecordedError{KVX2800T_ERROR_IO, "I/O error.  Insufficient location information or resource not present "
                                                "in the system"}));
}

TEST(NoInstrument, UnparsableResourceIsAnIoErrorToo)
{
    KVX2800T_ClearError(VI_NULL);
    char resource[] = "BANANA";
    ViSession vi = 7;
    EXPECT_EQ(KVX2800T_init(resource, VI_FALSE, VI_FALSE, &vi), KVX2800T_ERROR_IO);
    EXPECT_EQ(KVX2800T_init(nullptr, VI_FALSE, VI_FALSE, &vi), KVX2800T_ERROR_IO);
    EXPECT_EQ(KVX2800T_init(resource, VI_FALSE, VI_FALSE, nullptr), status(0xBFFA0058));
}

} // namespace
} // namespace kvxtest
