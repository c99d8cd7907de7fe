#include "tests/support/driver/loaded_driver.h"

#include <stdexcept>

namespace kvxtest
{
namespace
{

TEST(LoadedLibrary, FindsThePlatformBesideItself)
{
    const LoadedDriver driver;
    char text[256] = "";
    EXPECT_EQ(driver.error_message(VI_NULL, KVX2800T_ERROR_IO, text), VI_SUCCESS);
    EXPECT_STREQ(text, "I/O error.");
}

TEST(LoadedLibrary, WorksAgainAfterItWasUnloaded)
{
    for (int round = 0; round < 10; ++round) {
        const LoadedDriver driver;
        ViSession vi = VI_NULL;
        EXPECT_EQ(driver.InitWithOptions(nullptr, VI_FALSE, VI_FALSE, "Simulate=1", &vi), VI_SUCCESS);
        EXPECT_EQ(driver.close(vi), VI_SUCCESS);
    }
}

class LoadedSession : public LoadedDriverTest
{
};

TEST_F(LoadedSession, ExceptionsCrossTheLibrarysBorder)
{
    open();
    instrument.control("answer 1e999");
    ViReal64 volts = -1.0;
    try {
        driver.GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
        FAIL() << "no exception";
    } catch (const std::out_of_range& exception) {
        EXPECT_STREQ(exception.what(), "stod argument out of range");
    }
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(driver.UnlockSession(vi, nullptr), VI_SUCCESS);
}

TEST_F(LoadedSession, InitConnectsAndIdentifies)
{
    std::string resource = instrument.resource();
    EXPECT_EQ(driver.init(resource.data(), VI_TRUE, VI_FALSE, &vi), VI_SUCCESS);
    EXPECT_NE(vi, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
}

TEST_F(LoadedSession, InitWithOptionsClearsChecksAndResets)
{
    EXPECT_EQ(init("QueryInstrStatus=1", VI_TRUE, 2), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*IDN?", "*CLS", "*ESR?", "*RST"}));
}

TEST_F(LoadedSession, BothInitsRefuseANullSessionUnrecorded)
{
    std::string resource = instrument.resource();
    EXPECT_EQ(driver.init(resource.data(), VI_FALSE, VI_FALSE, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(driver.InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, "", nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(recorded(VI_NULL), (RecordedError{VI_SUCCESS, ""}));
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, AFailedInitLeavesNoHandleAndItsTextToTheThread)
{
    vi = 4711;
    EXPECT_EQ(init("InterchangeCheck=1"), IVI_ERROR_BAD_OPTION_VALUE);
    EXPECT_EQ(vi, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(recorded(VI_NULL), (RecordedError{IVI_ERROR_BAD_OPTION_VALUE,
                                                "The 'True' value in the option string is unknown.  Interchange "
                                                "checking is not supported by the driver."}));
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, SelfTestIsNotSupported)
{
    open();
    ViInt16 result = 77;
    std::array<ViChar, 256> message{"as it was"};
    EXPECT_EQ(driver.self_test(vi, &result, message.data()), IVI_WARN_NSUP_SELF_TEST);
    EXPECT_EQ(result, 77);
    EXPECT_STREQ(message.data(), "as it was");
    expectNullPointerRefused(driver.self_test(vi, nullptr, message.data()), "KVX2800T_self_test", "TestResult");
    expectNullPointerRefused(driver.self_test(vi, &result, nullptr), "KVX2800T_self_test", "TestMessage");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, RevisionQueryTellsWhatInitHasRead)
{
    open();
    std::array<ViChar, 256> ofDriver{};
    std::array<ViChar, 256> ofInstrument{};
    EXPECT_EQ(driver.revision_query(vi, ofDriver.data(), ofInstrument.data()), VI_SUCCESS);
    EXPECT_STREQ(ofDriver.data(), "1.0.0.0");
    EXPECT_STREQ(ofInstrument.data(), "V1.00");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, RevisionQueryOfASimulationNamesTheDriversRevision)
{
    open("Simulate=1");
    std::array<ViChar, 256> ofDriver{};
    std::array<ViChar, 256> ofInstrument{};
    EXPECT_EQ(driver.revision_query(vi, ofDriver.data(), ofInstrument.data()), VI_SUCCESS);
    EXPECT_STREQ(ofDriver.data(), "1.0.0.0");
    EXPECT_STREQ(ofInstrument.data(), "Sim1.0.0.0");
}

TEST_F(LoadedSession, ErrorMessageGivesTemplates)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(driver.error_message(VI_NULL, IVI_ERROR_NULL_POINTER, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "Null pointer passed for function '%s', parameter '%s'.");
    EXPECT_EQ(driver.error_message(VI_NULL, VI_SUCCESS, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "Success.");
    EXPECT_EQ(driver.error_message(VI_NULL, IVI_WARN_NSUP_RESET, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "Reset is not supported by this instrument.");
}

TEST_F(LoadedSession, ErrorMessageOfAnUnknownCodeIsRecordedOnASessionOnly)
{
    open();
    std::array<ViChar, 256> text{"as it was"};
    EXPECT_EQ(driver.error_message(VI_NULL, 12345, text.data()), IVI_ERROR_INVALID_VALUE);
    EXPECT_EQ(recorded(VI_NULL), (RecordedError{VI_SUCCESS, ""}));
    expectRefused(driver.error_message(vi, 12345, text.data()), IVI_ERROR_INVALID_VALUE,
                  "Invalid value '12345' for function 'error_message', parameter 'ErrorCode'.  The error code supplied "
                  "is not defined by the driver.");
    EXPECT_STREQ(text.data(), "as it was");
    expectNullPointerRefused(driver.error_message(vi, VI_SUCCESS, nullptr), "KVX2800T_error_message", "ErrorMessage");
}

TEST_F(LoadedSession, ErrorQueryReadsTheInstrumentsQueue)
{
    open();
    instrument.control("inject -113 \"Undefined header\"");
    ViInt32 code = 1;
    std::array<ViChar, 256> message{};
    EXPECT_EQ(driver.error_query(vi, &code, message.data()), VI_SUCCESS);
    EXPECT_EQ(code, -113);
    EXPECT_STREQ(message.data(), "\"Undefined header\"");
    EXPECT_EQ(newLines(), Lines{":SYSTem:ERRor?"});
    expectNullPointerRefused(driver.error_query(vi, nullptr, message.data()), "KVX2800T_error_query", "ErrorCode");
    expectNullPointerRefused(driver.error_query(vi, &code, nullptr), "KVX2800T_error_query", "ErrorMessage");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, GetErrorFollowsTheBufferRulesAndClearErrorForgets)
{
    open();
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 99.0), KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    const ViInt32 needed = static_cast<ViInt32>(std::string(kOutOfRangeText).size()) + 1;
    ViStatus code = 0;
    std::array<ViChar, 10> text{};
    EXPECT_EQ(driver.GetError(vi, &code, 0, nullptr), needed);
    EXPECT_EQ(driver.GetError(vi, &code, 10, text.data()), needed);
    EXPECT_EQ(code, KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_STREQ(text.data(), "Attribute");
    EXPECT_EQ(recorded(vi), (RecordedError{VI_SUCCESS, ""}));

    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 99.0), KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(driver.ClearError(vi), VI_SUCCESS);
    EXPECT_EQ(recorded(vi), (RecordedError{VI_SUCCESS, ""}));
}

TEST_F(LoadedSession, UtilitiesSendTheirCommand)
{
    open();
    EXPECT_EQ(driver.reset(vi), VI_SUCCESS);
    EXPECT_EQ(driver.ResetWithDefaults(vi), VI_SUCCESS);
    EXPECT_EQ(driver.Disable(vi), VI_SUCCESS);
    EXPECT_EQ(driver.InvalidateAllAttributes(vi), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*RST", "*RST", ":OUTPut:STATe ALL,OFF"}));
}

TEST_F(LoadedSession, LocksCountAndTheVariableLetsOneUnlockMatchSeveral)
{
    open();
    ViBoolean hasLock = VI_FALSE;
    EXPECT_EQ(driver.LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_TRUE);
    EXPECT_EQ(driver.LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(driver.LockSession(vi, nullptr), VI_SUCCESS);
    EXPECT_EQ(driver.UnlockSession(vi, nullptr), VI_SUCCESS);
    EXPECT_EQ(driver.UnlockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_FALSE);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedSession, NoFunctionTakesAClosedSession)
{
    open();
    const ViSession gone = closed();
    const char* const channel = "OutputChannel3";
    ViInt16 result = 0;
    ViInt32 number = 0;
    ViReal64 value = 0.0;
    ViBoolean state = VI_FALSE;
    std::array<ViChar, 256> text{};
    const std::array returned = {
        driver.close(gone),
        driver.LockSession(gone, nullptr),
        driver.UnlockSession(gone, nullptr),
        driver.GetError(gone, &number, 256, text.data()),
        driver.ClearError(gone),
        driver.error_message(gone, 12345, text.data()),
        driver.error_query(gone, &number, text.data()),
        driver.reset(gone),
        driver.ResetWithDefaults(gone),
        driver.Disable(gone),
        driver.self_test(gone, &result, text.data()),
        driver.revision_query(gone, text.data(), text.data()),
        driver.InvalidateAllAttributes(gone),
        driver.ConfigureOutputEnabled(gone, channel, VI_TRUE),
        driver.ConfigureVoltageLevel(gone, channel, 1.0),
        driver.ConfigureCurrentLimit(gone, channel, KVX2800T_VAL_CURRENT_TRIP, 1.0),
        driver.ConfigureOVP(gone, channel, VI_TRUE, 1.0),
        driver.ConfigureOutputRange(gone, channel, KVX2800T_VAL_RANGE_VOLTAGE, 1.0),
        driver.ResetOutputProtection(gone, channel),
        driver.QueryMaxCurrentLimit(gone, channel, 0.0, &value),
        driver.QueryMaxVoltageLevel(gone, channel, 0.0, &value),
        driver.QueryOutputState(gone, channel, KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE, &state),
        driver.Measure(gone, channel, KVX2800T_VAL_MEASURE_VOLTAGE, &value),
        driver.GetChannelName(gone, 1, 256, text.data()),
    };
    for (std::size_t i = 0; i < returned.size(); ++i)
        EXPECT_EQ(returned[i], KVX2800T_ERROR_INVALID_SESSION_HANDLE) << i;
    EXPECT_EQ(newLines(), Lines{});
}

} // namespace
} // namespace kvxtest
