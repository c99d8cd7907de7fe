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

// What loading can break: each function is found, and takes its arguments in their order.

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
}

TEST_F(LoadedSession, GetErrorFollowsTheBufferRulesAndClearErrorForgets)
{
    open();
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 99.0), KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    const ViInt32 needed = 82;
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

TEST_F(LoadedSession, SelfTestWarnsAndWritesNothing)
{
    open();
    ViInt16 result = 77;
    std::array<ViChar, 256> message{"as it was"};
    EXPECT_EQ(driver.self_test(vi, &result, message.data()), IVI_WARN_NSUP_SELF_TEST);
    EXPECT_EQ(result, 77);
    EXPECT_STREQ(message.data(), "as it was");
}

TEST_F(LoadedSession, SettingsSendTheirArguments)
{
    open();
    EXPECT_EQ(driver.ConfigureOutputEnabled(vi, "OutputChannel3", 9), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 1.5), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureCurrentLimit(vi, "OutputChannel4", KVX2800T_VAL_CURRENT_TRIP, 2.5), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOVP(vi, "OutputChannel3", VI_FALSE, 6.0), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOutputRange(vi, "OutputChannel3", KVX2800T_VAL_RANGE_CURRENT, 10.0), VI_SUCCESS);
    EXPECT_EQ(driver.ResetOutputProtection(vi, "OutputChannel3"), VI_SUCCESS);
    EXPECT_EQ(newLines(),
              (Lines{":OUTP:STAT CH3,ON", ":SOUR3:VOLT 1.500000", ":SOUR4:CURR 2.500000", ":SOUR4:CURR:PROT 2.500000",
                     ":SOUR4:CURR:PROT:STAT ON", ":SOUR3:VOLT:PROT 6.000000", ":SOUR3:VOLT:PROT:STAT OFF"}));
}

TEST_F(LoadedSession, QueriesWriteTheirOutput)
{
    open();
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel4", 5.25), VI_SUCCESS);
    newLines();
    ViReal64 volts = -1.0;
    ViReal64 amperes = -1.0;
    ViReal64 measured = -1.0;
    ViBoolean isIn = 77;
    std::array<ViChar, 16> name{};
    EXPECT_EQ(driver.QueryMaxVoltageLevel(vi, "OutputChannel1", 1e9, &volts), VI_SUCCESS);
    EXPECT_EQ(driver.QueryMaxCurrentLimit(vi, "OutputChannel4", -1e9, &amperes), VI_SUCCESS);
    EXPECT_EQ(driver.QueryOutputState(vi, "OutputChannel3", KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT, &isIn), VI_SUCCESS);
    EXPECT_EQ(driver.Measure(vi, "OutputChannel4", KVX2800T_VAL_MEASURE_VOLTAGE, &measured), VI_SUCCESS);
    EXPECT_EQ(driver.GetChannelName(vi, 6, 16, name.data()), VI_SUCCESS);
    EXPECT_EQ(volts, 33.0);
    EXPECT_EQ(amperes, 10.5);
    EXPECT_EQ(isIn, VI_FALSE);
    EXPECT_EQ(measured, 5.25);
    EXPECT_STREQ(name.data(), "OutputChannel6");
    EXPECT_EQ(newLines(), (Lines{":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?", ":SOUR4:VOLT?"}));
}

TEST_F(LoadedSession, AttributesAreSetAndReadByTheFunctionOfTheirType)
{
    open();
    const char* const channel = "OutputChannel3";
    EXPECT_EQ(driver.SetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, 2.5), VI_SUCCESS);
    EXPECT_EQ(driver.SetAttributeViInt32(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, KVX2800T_VAL_CURRENT_TRIP),
              VI_SUCCESS);
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OVP_ENABLED, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT 2.500000", ":SOUR3:CURR:PROT:STAT ON", ":SOUR3:VOLT:PROT:STAT ON"}));
    ViReal64 volts = -1.0;
    ViInt32 behavior = -1;
    ViBoolean protection = 77;
    std::array<ViChar, 6> model{};
    EXPECT_EQ(driver.GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(driver.GetAttributeViInt32(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, &behavior), VI_SUCCESS);
    EXPECT_EQ(driver.GetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OVP_ENABLED, &protection), VI_SUCCESS);
    EXPECT_EQ(driver.GetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 5, model.data()), 4096);
    EXPECT_EQ(volts, 2.5);
    EXPECT_EQ(behavior, KVX2800T_VAL_CURRENT_TRIP);
    EXPECT_EQ(protection, VI_TRUE);
    EXPECT_STREQ(model.data(), "KVX2");
}

TEST_F(LoadedSession, TheFunctionsOfTypesWithoutASettableAttributeRefuseTheirs)
{
    open();
    ViSession session = 77;
    const ViAttr level = KVX2800T_ATTR_VOLTAGE_LEVEL;
    const std::string ofType = " called for attribute 'KVX2800T_ATTR_VOLTAGE_LEVEL' of type 'ViReal64'.";
    EXPECT_EQ(driver.GetAttributeViSession(vi, "", level, &session), IVI_ERROR_TYPES_DO_NOT_MATCH);
    EXPECT_EQ(recorded(vi), (RecordedError{IVI_ERROR_TYPES_DO_NOT_MATCH, "GetAttributeViSession" + ofType}));
    EXPECT_EQ(driver.SetAttributeViSession(vi, "", level, 1), IVI_ERROR_TYPES_DO_NOT_MATCH);
    EXPECT_EQ(recorded(vi), (RecordedError{IVI_ERROR_TYPES_DO_NOT_MATCH, "SetAttributeViSession" + ofType}));
    EXPECT_EQ(driver.SetAttributeViString(vi, "", level, "text"), IVI_ERROR_TYPES_DO_NOT_MATCH);
    EXPECT_EQ(recorded(vi), (RecordedError{IVI_ERROR_TYPES_DO_NOT_MATCH, "SetAttributeViString" + ofType}));
    EXPECT_EQ(session, 77U);
    EXPECT_EQ(newLines(), Lines{});
}

} // namespace
} // namespace kvxtest
