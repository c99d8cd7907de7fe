#include "tests/support/driver/api_fixture.h"

#include <cmath>
#include <limits>

// What DriverSetup keys change. What a session without them does is what all other tests of exported functions say.

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kChannel = "OutputChannel3";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class DriverSetup : public ApiTest
{
public:
    /// Opens the session with these DriverSetup keys.
    void openWith(const std::string& keys, const std::string& options = "")
    {
        open(options + (options.empty() ? "" : ",") + "DriverSetup=" + keys);
    }

    /// Expects that init fails with this record and leaves nothing open but the IVI session.
    void expectRefused(const std::string& options, ViStatus status, const std::string& text)
    {
        startOver();
        EXPECT_EQ(init(options, &vi), status) << options;
        EXPECT_EQ(vi, ViSession{VI_NULL}) << options;
        EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{status, text})) << options;
        EXPECT_EQ(timesRecorded(), 1U) << options;
        EXPECT_EQ(openVisaSessions(), 0U) << options;
        EXPECT_EQ(openConfigHandles(), 0U) << options;
    }

    ViStatus readVoltage(ViReal64& volts) const
    {
        return KVX2800T_GetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
    }

    /// Expects this record of reading the voltage, whose output is unchanged.
    void expectVoltageFails(ViStatus status, const std::string& text) const
    {
        forget();
        ViReal64 volts = -1.0;
        EXPECT_EQ(readVoltage(volts), status);
        EXPECT_EQ(volts, -1.0);
        expectRecordedOnce(status, text);
    }

    ViBoolean isInState(ViInt32 state) const
    {
        ViBoolean inState = 77;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, kChannel, state, &inState), VI_SUCCESS);
        return inState;
    }
};

// Which text is looked at.

TEST_F(DriverSetup, KeysWithABadValueFailTheOpeningOnceTheConfigurationIsResolved)
{
    const std::string unknown = "' value in the option string is unknown.";
    expectRefused("DriverSetup=SafeErrors:maybe", code(0xBFFA004C), "The 'maybe" + unknown);
    expectRefused("DriverSetup=Model:X, Profile: Home ", code(0xBFFA004C), "The 'Home" + unknown);
    expectRefused("DriverSetup=BaudRate:fast", code(0xBFFA004C), "The 'fast" + unknown);
    expectRefused("DriverSetup=SafeErrors", code(0xBFFA004C), "The '" + unknown);
    EXPECT_THAT(calls("IviConfig_"), Not(IsEmpty()));
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(DriverSetup, AKeyInTwoSpellingsFailsTheOpening)
{
    expectRefused("DriverSetup=SafeErrors:1,SAFEERRORS:1", code(0xBFFA0000),
                  "Failure cannot recover.  DriverSetup option 'SAFEERRORS' appears more than once.");
}

TEST_F(DriverSetup, KeysOfTheStoreHoldWhereTheOptionStringHasNoDriverSetup)
{
    StoredDriverSession bench;
    bench.name = "BenchSupply";
    bench.driverSetup = "SafeErrors:1,IoTimeout:300";
    bench.ioResourceDescriptor = "TCPIP0::host::1::SOCKET";
    configurationStore().furtherSessions.push_back(bench);
    ASSERT_EQ(initOn("BenchSupply", "", &vi), VI_SUCCESS);
    answer(":SOUR3:VOLT?", "volts");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), code(0xBFFA0059));
    EXPECT_THAT(calls("viSetAttribute"), Contains("viSetAttribute(2, VI_ATTR_TMO_VALUE, 300)"));
    KVX2800T_close(vi);
    ASSERT_EQ(initOn("BenchSupply", "DriverSetup=Model:X", &vi), VI_SUCCESS);
    expectException<std::invalid_argument>(vi, "invalid stod argument", [&] { readVoltage(volts); });
}

TEST_F(DriverSetup, AnUnknownInherentOptionIsFoundBeforeABadKey)
{
    expectRefused("Banana=1,DriverSetup=SafeErrors:maybe", code(0xBFFA004B),
                  "The 'banana' name in the option string is unknown.");
}

// Settings of the connection

TEST_F(DriverSetup, TimeoutsTakeThePlaceOfTheDefaults)
{
    ASSERT_EQ(init("DriverSetup=OpenTimeout:5000, IoTimeout:300", &vi), VI_SUCCESS);
    EXPECT_THAT(calls("viOpen"), ElementsAre("viOpenDefaultRM()", "viOpen(1, \"TCPIP0::host::1::SOCKET\", 0, 5000)"));
    EXPECT_THAT(calls("viSetAttribute"), Contains("viSetAttribute(2, VI_ATTR_TMO_VALUE, 300)"));
    ViInt32 milliseconds = 0;
    EXPECT_EQ(KVX2800T_GetIoTimeout(vi, &milliseconds), VI_SUCCESS);
    EXPECT_EQ(milliseconds, 300);
}

TEST_F(DriverSetup, SerialParametersTakeThePlaceOfTheDefaults)
{
    ASSERT_EQ(initOn("ASRL1::INSTR",
                     "DriverSetup=BaudRate:115200,DataBits:7,Parity:Even,StopBits:2,FlowControl:XonXoff", &vi),
              VI_SUCCESS);
    const std::vector<std::string> attributes = calls("viSetAttribute");
    for (const char* const expected :
         {"viSetAttribute(2, VI_ATTR_ASRL_BAUD, 115200)", "viSetAttribute(2, VI_ATTR_ASRL_DATA_BITS, 7)",
          "viSetAttribute(2, VI_ATTR_ASRL_PARITY, 2)", "viSetAttribute(2, VI_ATTR_ASRL_STOP_BITS, 20)",
          "viSetAttribute(2, VI_ATTR_ASRL_FLOW_CNTRL, 1)", "viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)"})
        EXPECT_THAT(attributes, Contains(expected));
}

// SafeErrors

TEST_F(DriverSetup, SafeErrorsMakeARecordOfAReplyThatCannotBeRead)
{
    openWith("SafeErrors:1");
    answer(":SOUR3:VOLT?", "volts");
    expectVoltageFails(code(0xBFFA0059), "Unexpected response from instrument.  The reply was 'volts'.");
    answer(":SOUR3:VOLT?", "1e999");
    expectVoltageFails(code(0xBFFA0059), "Unexpected response from instrument.  The reply was '1e999'.");
    answer(":SOUR3:VOLT?", "2.5");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), VI_SUCCESS);
    EXPECT_EQ(volts, 2.5);
}

TEST_F(DriverSetup, SafeErrorsHoldInEveryKindOfFunction)
{
    openWith("SafeErrors:1", "QueryInstrStatus=1");
    const std::string unread = "Unexpected response from instrument.  The reply was 'maybe'.";
    for (const char* const query :
         {":OUTP:STAT? CH3", ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?", "*ESR?", ":SOUR3:VOLT?"})
        answer(query, "maybe");
    ViBoolean on = 77;
    forget();
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, kChannel, KVX2800T_ATTR_OUTPUT_ENABLED, &on), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), unread);
    forget();
    EXPECT_EQ(KVX2800T_QueryOutputState(vi, kChannel, KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT, &on), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), unread);
    forget();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 1.0), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), unread);
    forget();
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), unread);
    EXPECT_EQ(on, 77);
    EXPECT_EQ(volts, -1.0);
}

TEST_F(DriverSetup, SafeErrorsMakeARecordOfANumberInASelector)
{
    openWith("SafeErrors:1");
    const std::string text = "The range 'OutputChannel1-99999999999' is not valid for the repeated capability "
                             "'OutputChannel'.";
    const char* const selector = "OutputChannel4, OutputChannel1-99999999999";
    ViReal64 volts = -1.0;
    ViBoolean state = 77;
    const auto expectRefusal = [&](ViStatus status) {
        EXPECT_EQ(status, code(0xBFFA0064));
        expectRecordedOnce(code(0xBFFA0064), text);
        forget();
    };
    forget();
    expectRefusal(KVX2800T_ConfigureVoltageLevel(vi, selector, 1.0));
    expectRefusal(KVX2800T_GetAttributeViReal64(vi, selector, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts));
    expectRefusal(KVX2800T_SetAttributeViReal64(vi, selector, KVX2800T_ATTR_VOLTAGE_LEVEL, 1.0));
    expectRefusal(KVX2800T_QueryOutputState(vi, selector, KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT, &state));
    expectRefusal(KVX2800T_ResetOutputProtection(vi, selector));
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(DriverSetup, WithSafeErrorsOffExceptionsLeaveAsEver)
{
    openWith("Profile:Bench,SafeErrors:0,FreshReplies:0");
    answer(":SOUR3:VOLT?", "volts");
    ViReal64 volts = -1.0;
    expectException<std::invalid_argument>(vi, "invalid stod argument", [&] { readVoltage(volts); });
    expectException<std::out_of_range>(vi, "stoi argument out of range",
                                       [&] { KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1-99999999999", 1.0); });
}

TEST_F(DriverSetup, InstrumentSpecificFunctionsNeverThrowWhateverTheKeySays)
{
    openWith("SafeErrors:0");
    answer(":MEAS:VOLT? CH3", "volts");
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_MeasureOutput(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), code(0xBFFA0059));
    EXPECT_EQ(lockDepth(vi), 0U);
    forget();
    answer(":SOUR3:VOLT?", "volts");
    expectException<std::invalid_argument>(vi, "invalid stod argument", [&] { readVoltage(volts); });
}

// DetailedErrors

TEST_F(DriverSetup, DetailedErrorsNameTheResourceAndVisasStatusOfAFailedOpening)
{
    const std::string options = "DriverSetup=DetailedErrors:1";
    const std::string none = "Insufficient location information or resource not present in the system";
    failCall("viOpen", code(0xBFFF0011));
    EXPECT_EQ(init(options, &vi), kIoError);
    EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{kIoError, "I/O error.  " + none +
                                                                "  Resource 'TCPIP0::host::1::SOCKET': "
                                                                "VI_ERROR_RSRC_NFOUND, nothing answers there."}));
    startOver();
    failCall("viOpen", code(0xBFFF0015));
    EXPECT_EQ(init(options, &vi), code(0xBFFA4215));
    EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{code(0xBFFA4215), "I/O timeout error.  " + none +
                                                                        "  Resource 'TCPIP0::host::1::SOCKET': "
                                                                        "VI_ERROR_TMO, the time-out is over."}));
}

TEST_F(DriverSetup, DetailedErrorsNameTheResourceAndVisasStatusOfAFailedTransfer)
{
    openWith("DetailedErrors:1");
    expectVoltageFails(code(0xBFFA4215), "I/O timeout error.  Resource 'TCPIP0::host::1::SOCKET': VI_ERROR_TMO, the "
                                         "time-out is over.");
    answer(":SOUR3:VOLT?", "1.0");
    failCall("viWrite", code(0xBFFF00A6));
    ViReal64 volts = -1.0;
    clearLog();
    IviSession_ClearError(vi);
    EXPECT_EQ(readVoltage(volts), kIoError);
    expectRecordedOnce(kIoError, "I/O error.  Resource 'TCPIP0::host::1::SOCKET': VI_ERROR_CONN_LOST, the connection "
                                 "is lost.");
    forget();
    failCall("viWrite", code(0xBFFF7777));
    EXPECT_EQ(KVX2800T_reset(vi), kIoError);
    EXPECT_EQ(recorded(), (ErrorEntry{kIoError, "I/O error.  Resource 'TCPIP0::host::1::SOCKET': 0xBFFF7777."}));
}

TEST_F(DriverSetup, DetailedErrorsReachTheStatusCheckAndTheInstrumentsOwnFunctions)
{
    openWith("DetailedErrors:1", "QueryInstrStatus=1");
    const std::string text = "I/O error.  Resource 'TCPIP0::host::1::SOCKET': VI_ERROR_IO, the interface has failed.";
    // The setting itself is written, the query of the register is not.
    forget();
    failNthCallOf("viWrite", 2, code(0xBFFF003E));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 1.0), kIoError);
    expectRecordedOnce(kIoError, text);
    forget();
    failCall("viWrite", code(0xBFFF003E));
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_MeasureOutput(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), kIoError);
    expectRecordedOnce(kIoError, text);
    forget();
    failCall("viWrite", code(0xBFFF003E));
    std::string message = "*IDN?";
    ViInt64 count = -1;
    EXPECT_EQ(KVX2800T_viWrite(vi, reinterpret_cast<ViByte*>(message.data()), 5, &count), code(0xBFFF003E));
    expectRecordedOnce(code(0xBFFF003E), "The transfer has failed with VISA's status 0xBFFF003E.  Resource "
                                         "'TCPIP0::host::1::SOCKET': VI_ERROR_IO, the interface has failed.");
}

TEST_F(DriverSetup, DetailedErrorsNameChannelValueAndLimitsOfALevel)
{
    openWith("DetailedErrors:1");
    const std::string outOfRange = kOutOfRangeText;
    forget();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1,OutputChannel3", 16.5), kOutOfRange);
    expectRecordedOnce(kOutOfRange, outOfRange + "  OutputChannel3 takes 0 V to 16 V, not 16.5 V.");
    forget();
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, -1.0), kOutOfRange);
    expectRecordedOnce(kOutOfRange, outOfRange + "  OutputChannel3 takes 0 V to 16 V, not -1 V.");
    forget();
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, kChannel, 1, 99.0), kOutOfRange);
    EXPECT_THAT(recorded().text, testing::StartsWith(outOfRange + "  OutputChannel3 takes 0 A to "));
    EXPECT_THAT(recorded().text, testing::EndsWith(" A, not 99 A."));
    forget();
    EXPECT_EQ(KVX2800T_SetAttributeViInt32(vi, kChannel, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, 5), kOutOfRange);
    expectRecordedOnce(kOutOfRange, outOfRange + "  5 is none of the values.");
    forget();
    ViReal64 measurement = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, 17, &measurement), kOutOfRange);
    expectRecordedOnce(kOutOfRange, outOfRange + "  17 is none of the values.");
}

TEST_F(DriverSetup, DetailedErrorsDoNotBlameTheValueForAFailedTransfer)
{
    openWith("DetailedErrors:1");
    const std::string text = "I/O error.  Resource 'TCPIP0::host::1::SOCKET': VI_ERROR_IO, the interface has failed.";
    forget();
    failCall("viWrite", code(0xBFFF003E));
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_OVP_LIMIT, 999.0), kIoError);
    expectRecordedOnce(kIoError, text);
    forget();
    failCall("viWrite", code(0xBFFF003E));
    ViReal64 measurement = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &measurement), kIoError);
    expectRecordedOnce(kIoError, text);
}

TEST_F(DriverSetup, DetailedErrorsNameTheFaultyItemOfASelector)
{
    openWith("DetailedErrors:1");
    struct Case
    {
        const char* selector;
        ViStatus status;
        std::string text;
    };
    const std::string badlyFormed = "The repeated capability selector is badly-formed.";
    const std::vector<Case> cases = {
        {"OutputChannel1,Output Channel2", code(0xBFFA0066), badlyFormed + "  The item is 'Output Channel2'."},
        {"OutputChannel1,,OutputChannel2", code(0xBFFA0066), badlyFormed + "  The item is ''."},
        {"[OutputChannel1, *]", code(0xBFFA0066), badlyFormed + "  The item is '*'."},
        {"OutputChannel1,OutputChannel1", code(0xBFFA0066), badlyFormed + "  The item is 'OutputChannel1'."},
        {"OutputChannel1, OutputChannel3-2", code(0xBFFA0064),
         "The start index must be less than the end index.  The item is 'OutputChannel3-2'."},
        {"OutputChannel1-Input3", code(0xBFFA0064),
         "The base names do not match.  The item is 'OutputChannel1-Input3'."},
        {"OutputChannel1-3,OutputChannel2-4", code(0xBFFA0064),
         "An identifier in the range overlaps with another range.  The item is 'OutputChannel2-4'."},
        {"OutputChannel1:OutputChannel2", code(0xBFFA0063),
         "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability.  The item is "
         "'OutputChannel1:OutputChannel2'."},
        {"OutputChannel9", code(0xBFFA0067),
         "The identifier 'OutputChannel9' is not defined for repeated capability 'OutputChannel'."},
    };
    for (const Case& wrong : cases) {
        forget();
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, wrong.selector, VI_TRUE), wrong.status) << wrong.selector;
        expectRecordedOnce(wrong.status, wrong.text);
    }
    forget();
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1-2", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              code(0xBFFA0066));
    expectRecordedOnce(code(0xBFFA0066),
                       "Only a single repeated capability identifier can be specified for the current operation.  The "
                       "item is 'OutputChannel1-2'.");
}

TEST_F(DriverSetup, DetailedErrorsNameTheItemThatAVirtualNameStandsFor)
{
    configurationStore().driverSession.emplace().virtualNames = {{"Rail", "OutputChannel1,Output Channel2", {}}};
    openWith("DetailedErrors:1");
    forget();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3,Rail", VI_TRUE), code(0xBFFA0066));
    expectRecordedOnce(code(0xBFFA0066),
                       "The repeated capability selector is badly-formed.  The item is 'Output Channel2'.");
}

TEST_F(DriverSetup, DetailedErrorsQuoteAReplyWithAnUnknownWord)
{
    openWith("DetailedErrors:1");
    answer(":SOUR:Mode?", "SIDEWAYS");
    forget();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1", 1.0), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), "Unexpected response from instrument.  The reply was 'SIDEWAYS'.");
}

// TrueReadings

TEST_F(DriverSetup, TrueReadingsMeasureWithTheMeters)
{
    openWith("TrueReadings:1");
    answer(":MEAS:VOLT? CH3", "4.75");
    answer(":MEAS:CURR? CH3", "0.25");
    ViReal64 value = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &value), VI_SUCCESS);
    EXPECT_EQ(value, 4.75);
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_CURRENT, &value), VI_SUCCESS);
    EXPECT_EQ(value, 0.25);
    EXPECT_THAT(written(), ElementsAre(":MEAS:VOLT? CH3\n", ":MEAS:CURR? CH3\n"));
}

TEST_F(DriverSetup, TrueReadingsTellTheStateFromTheRegisterAndTheOutput)
{
    openWith("TrueReadings:1");
    struct Case
    {
        const char* condition;
        const char* output;
        /// Constant voltage, constant current, over-voltage, over-current, unregulated.
        std::vector<ViBoolean> states;
    };
    for (const Case& expected : std::initializer_list<Case>{{"0", "ON", {0, 0, 0, 0, 1}},
                                                            {"0", "OFF", {0, 0, 0, 0, 0}},
                                                            {"1", "ON", {0, 1, 0, 0, 0}},
                                                            {"2", "ON", {1, 0, 0, 0, 0}},
                                                            {"4", "OFF", {0, 0, 1, 0, 0}},
                                                            {"4", "ON", {0, 0, 1, 0, 0}},
                                                            {"8", "ON", {0, 0, 0, 1, 0}},
                                                            {"16", "ON", {0, 0, 0, 0, 1}}})
    {
        answer(":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?", expected.condition);
        answer(":OUTP:STAT? CH3", expected.output);
        const std::vector<ViBoolean> states = {
            isInState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), isInState(KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT),
            isInState(KVX2800T_VAL_OUTPUT_OVER_VOLTAGE), isInState(KVX2800T_VAL_OUTPUT_OVER_CURRENT),
            isInState(KVX2800T_VAL_OUTPUT_UNREGULATED)};
        EXPECT_EQ(states, expected.states) << expected.condition << expected.output;
    }
}

TEST_F(DriverSetup, TrueReadingsDoNotPretendToResetAProtection)
{
    openWith("TrueReadings:1");
    forget();
    EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, kChannel), code(0xBFFA4216));
    expectRecordedOnce(code(0xBFFA4216), "The operation (attribute or function) is not supported.");
    forget();
    EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, "OutputChannel9"), code(0xBFFA0067));
    EXPECT_EQ(KVX2800T_ConfigureOutputRange(vi, kChannel, 0, 1.0), VI_SUCCESS);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(DriverSetup, TrueReadingsReportThatDisableCouldNotBeSent)
{
    openWith("TrueReadings:1");
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    failCall("viWrite", 5);
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    failCall("viWrite", code(0xBFFF003E));
    clearLog();
    EXPECT_EQ(KVX2800T_Disable(vi), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
    EXPECT_THAT(calls("viWrite"), ElementsAre(R"(viWrite(2, ":OUTPut:STATe ALL,OFF\n"))"));
}

TEST_F(DriverSetup, WithoutTrueReadingsTheClassFunctionsTellWhatIsSet)
{
    openWith("Profile:Bench,TrueReadings:false");
    answer(":SOUR3:VOLT?", "5.0");
    ViReal64 value = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &value), VI_SUCCESS);
    EXPECT_EQ(value, 5.0);
    EXPECT_EQ(isInState(KVX2800T_VAL_OUTPUT_UNREGULATED), VI_FALSE);
    EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, kChannel), VI_SUCCESS);
    failCall("viWrite", code(0xBFFF003E));
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
}

// CheckedOptions

TEST_F(DriverSetup, CheckedOptionsReadTheOptionStringToTheLetter)
{
    const std::string checked = ",DriverSetup=CheckedOptions:1";
    const std::string noValue = "The option string is missing an option value.";
    expectRefused("Simulate" + checked, code(0xBFFA004A), noValue);
    expectRefused("Simulate=" + checked, code(0xBFFA004A), noValue);
    expectRefused("=1" + checked, code(0xBFFA0049), "The option string is missing an option name.");
    expectRefused("Cache=1" + checked + ",Simulate:1", code(0xBFFA004B),
                  "The 'Simulate' name in the option string is unknown.");
}

TEST_F(DriverSetup, WithoutCheckedOptionsTheSameTextsAreRead)
{
    for (const char* const options :
         {"Simulate", "Simulate=", "=1", "DriverSetup=Simulate:1", "Simulate=,DriverSetup=CheckedOptions:0"})
    {
        startOver();
        EXPECT_EQ(init(options, &vi), VI_SUCCESS) << options;
        EXPECT_THAT(calls("viOpen"), Not(IsEmpty())) << options;
        KVX2800T_close(vi);
        vi = VI_NULL;
    }
}

TEST_F(DriverSetup, CheckedOptionsWantAnInstrumentWithAModel)
{
    for (const char* const identity : {"garbage", "a,b,c", "Tessaro Instruments,,SN1,V2.34"}) {
        startOver();
        answer("*IDN?", identity);
        EXPECT_EQ(init("DriverSetup=CheckedOptions:1,Model:KVX2833T", &vi), code(0xBFFA005E)) << identity;
        EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed.  The reply was '" +
                                                                            std::string(identity) + "'."}));
        EXPECT_EQ(vi, ViSession{VI_NULL});
        EXPECT_EQ(openVisaSessions(), 0U);
    }
    startOver();
    answer("*IDN?", "garbage");
    EXPECT_EQ(init("DriverSetup=Model:KVX2833T", &vi), VI_SUCCESS);
}

TEST_F(DriverSetup, CheckedOptionsRefuseLevelsThatAreNoNumbers)
{
    openWith("CheckedOptions:1");
    const std::string outOfRange = kOutOfRangeText;
    for (const auto& [level, text] :
         std::initializer_list<std::pair<double, std::string>>{{kNaN, "nan"}, {kInfinity, "inf"}, {-kInfinity, "-inf"}})
    {
        forget();
        EXPECT_EQ(KVX2800T_ConfigureOVP(vi, kChannel, VI_TRUE, level), kOutOfRange);
        expectRecordedOnce(kOutOfRange, outOfRange + "  " + text + " is no finite number.");
        forget();
        EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, kChannel, 0, level), kOutOfRange);
        expectRecordedOnce(kOutOfRange, outOfRange + "  " + text + " is no finite number.");
        EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_OVP_LIMIT, level), kOutOfRange);
        EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_CURRENT_LIMIT, level), kOutOfRange);
        EXPECT_THAT(written(), IsEmpty());
    }
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, kChannel, VI_TRUE, 5.0), VI_SUCCESS);
}

TEST_F(DriverSetup, WithoutCheckedOptionsAProtectionLevelIsSentAsItIs)
{
    open();
    EXPECT_EQ(KVX2800T_SetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_OVP_LIMIT, kInfinity), VI_SUCCESS);
    EXPECT_EQ(written().size(), 1U);
}

// StatefulSimulation

TEST_F(DriverSetup, TheStatefulSimulationRemembersWhatIsSet)
{
    ASSERT_EQ(init("Simulate=1,DriverSetup=StatefulSimulation:1", &vi, VI_TRUE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(text(KVX2800T_ATTR_INSTRUMENT_MODEL), "KVX2833T");
    for (const char* const channel : {"OutputChannel1", "OutputChannel3", "CH4"}) {
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel, 4.25), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, channel, VI_TRUE), VI_SUCCESS);
        ViReal64 volts = -1.0;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
        EXPECT_EQ(volts, 4.25);
        EXPECT_EQ(KVX2800T_MeasureOutput(vi, channel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
        EXPECT_EQ(volts, 4.25);
        ViBoolean on = 77;
        EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, channel, KVX2800T_ATTR_OUTPUT_ENABLED, &on), VI_SUCCESS);
        EXPECT_EQ(on, VI_TRUE);
    }
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(DriverSetup, TrueReadingsOfAStatefulSimulationAreThoseOfItsMeters)
{
    openWith("StatefulSimulation:1,TrueReadings:1", "Simulate=1");
    ASSERT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 4.5), VI_SUCCESS);
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 0.0);
    ASSERT_EQ(KVX2800T_ConfigureOutputEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_Measure(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 4.5);
}

TEST_F(DriverSetup, TheStatefulSimulationKeepsTheLimitsAndTheNamesOfASimulation)
{
    openWith("StatefulSimulation:1", "Simulate=1,QueryInstrStatus=1");
    forget();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 16.5), kOutOfRange);
    expectRecordedOnce(kOutOfRange, kOutOfRangeText);
    EXPECT_EQ(KVX2800T_ConfigureOCPDelay(vi, kChannel, 1000.0), VI_SUCCESS);
    ViInt32 error = 0;
    std::array<ViChar, 256> message{};
    EXPECT_EQ(KVX2800T_error_query(vi, &error, message.data()), VI_SUCCESS);
    EXPECT_EQ(error, -222);
    std::array<ViChar, 256> driver{};
    std::array<ViChar, 256> instrument{};
    EXPECT_EQ(KVX2800T_revision_query(vi, driver.data(), instrument.data()), VI_SUCCESS);
    EXPECT_STREQ(instrument.data(), "Sim1.0.0.0");
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(DriverSetup, ARealSessionThatBeginsToSimulateRemembersToo)
{
    openWith("StatefulSimulation:1");
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 7.5), VI_SUCCESS);
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), VI_SUCCESS);
    EXPECT_EQ(volts, 7.5);
}

TEST_F(DriverSetup, WithoutTheStatefulSimulationAModelIsNotRecognised)
{
    EXPECT_EQ(init("Simulate=1,DriverSetup=StatefulSimulation:0,SafeErrors:1", &vi, VI_TRUE), code(0xBFFA005E));
    EXPECT_EQ(init("DriverSetup=StatefulSimulation:1", &vi), VI_SUCCESS);
    EXPECT_THAT(calls("viOpen("), Not(IsEmpty()));
}

// FreshReplies

TEST_F(DriverSetup, FreshRepliesOpenARawSocketAgainAfterATimeout)
{
    openWith("FreshReplies:1,OpenTimeout:700");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), kIoError);
    answer(":SOUR3:VOLT?", "5.0");
    clearLog();
    EXPECT_EQ(readVoltage(volts), VI_SUCCESS);
    EXPECT_EQ(volts, 5.0);
    EXPECT_THAT(calls("viOpen"), ElementsAre("viOpenDefaultRM()", "viOpen(3, \"TCPIP0::host::1::SOCKET\", 0, 700)"));
    EXPECT_THAT(calls("viClose"), ElementsAre("viClose(1)"));
    EXPECT_THAT(written(), ElementsAre("*IDN?\n", ":SOUR3:VOLT?\n"));
    EXPECT_EQ(openVisaSessions(), 2U);
}

TEST_F(DriverSetup, FreshRepliesReadALineUntilItIsSilentAndAskForTheIdentity)
{
    ASSERT_EQ(initOn("ASRL1::INSTR", "DriverSetup=FreshReplies:1", &vi), VI_SUCCESS);
    answer(":SOUR3:CURR?", "0.5");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), kIoError);
    queueReply("late\n");
    clearLog();
    ViReal64 amperes = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, kChannel, KVX2800T_ATTR_CURRENT_LIMIT, &amperes), VI_SUCCESS);
    EXPECT_EQ(amperes, 0.5);
    EXPECT_THAT(calls("vi"), ElementsAre("viRead(2, 1024)", "viRead(2, 1024)", R"(viWrite(2, "*IDN?\n"))",
                                         "viRead(2, 1024)", R"(viWrite(2, ":SOUR3:CURR?\n"))", "viRead(2, 1024)"));
}

TEST_F(DriverSetup, FreshRepliesTakeNoOtherInstrumentForTheirOwn)
{
    openWith("FreshReplies:1,DetailedErrors:1");
    expectVoltageFails(code(0xBFFA4215), "I/O timeout error.  Resource 'TCPIP0::host::1::SOCKET': VI_ERROR_TMO, the "
                                         "time-out is over.");
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN2,V2.34");
    answer(":SOUR3:VOLT?", "5.0");
    expectVoltageFails(kIoError, "I/O error.  Resource 'TCPIP0::host::1::SOCKET': another instrument answers than "
                                 "before.");
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), VI_SUCCESS);
    EXPECT_EQ(volts, 5.0);
}

TEST_F(DriverSetup, FreshRepliesKeepMessagesOfTheProgramsOwnFromAnotherInstrument)
{
    openWith("FreshReplies:1,DetailedErrors:1");
    ViReal64 volts = -1.0;
    EXPECT_LT(readVoltage(volts), 0);
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN2,V2.34");
    forget();
    std::string message = "*TRG";
    ViInt64 count = 77;
    EXPECT_EQ(KVX2800T_viWrite(vi, reinterpret_cast<ViByte*>(message.data()), 4, &count), kIoError);
    EXPECT_EQ(count, 0);
    expectRecordedOnce(kIoError,
                       "I/O error.  Resource 'TCPIP0::host::1::SOCKET': another instrument answers than before.");
    EXPECT_THAT(written(), testing::Not(testing::Contains("*TRG\n")));
}

TEST_F(DriverSetup, ASessionThatCannotBeOpenedAgainStillCloses)
{
    openWith("FreshReplies:1");
    ViReal64 volts = -1.0;
    EXPECT_EQ(readVoltage(volts), kIoError);
    failCall("viOpen", code(0xBFFF0011));
    EXPECT_EQ(readVoltage(volts), kIoError);
    EXPECT_EQ(readVoltage(volts), kIoError);
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    vi = VI_NULL;
    EXPECT_EQ(openIviSessions(), 0U);
}

} // namespace
