#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/instrument_calls.h"

#include <cmath>
#include <limits>

// The instrument-specific functions: first all of them, by their table, then what each does beyond its operation.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr ViStatus kUnreadReply = code(0xBFFA0059);
constexpr ViStatus kInvalidValue = code(0xBFFA0010);
constexpr ViStatus kTruncated = code(0x3FFA4001);

std::vector<std::string> withLineFeeds(std::vector<std::string> lines)
{
    for (std::string& line : lines)
        line += '\n';
    return lines;
}

/// What the instrument answers in another source mode than the normal one.
void answerSourceMode(const char* mode)
{
    answer(":SOUR:Mode?", mode);
}

class InstrumentFunctions : public ApiTest
{
public:
    /// Lets the instrument answer a call; a setting's queries are answered by the fixture.
    static void answerCall(const InstrumentCall& call)
    {
        if (call.isQuery())
            answer(call.lines.back(), call.reply);
    }

    /// Expects that a call is refused with this text and sends nothing.
    void expectRefused(ViStatus status, ViStatus expected, const std::string& text)
    {
        EXPECT_EQ(status, expected);
        expectRecordedOnce(expected, text);
        EXPECT_THAT(written(), IsEmpty());
        forget();
    }
};

std::string outOfRange(const std::string& detail)
{
    return std::string(kOutOfRangeText) + "  " + detail;
}

std::string unread(const std::string& reply)
{
    return "Unexpected response from instrument.  The reply was '" + reply + "'.";
}

class EachInstrumentFunction : public InstrumentFunctions, public testing::WithParamInterface<InstrumentCall>
{
};

INSTANTIATE_TEST_SUITE_P(All, EachInstrumentFunction, testing::ValuesIn(instrumentCalls()),
                         [](const auto& call) { return std::to_string(call.index) + "_" + call.param.name; });

TEST_P(EachInstrumentFunction, SendsItsLinesAndGivesWhatTheInstrumentAnswers)
{
    const InstrumentCall& call = GetParam();
    answerCall(call);
    open();
    std::vector<double> outputs;
    EXPECT_EQ(call.run(vi, "OutputChannel3", outputs, kNone), VI_SUCCESS);
    EXPECT_EQ(written(), withLineFeeds(call.lines));
    EXPECT_EQ(outputs, call.results);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_P(EachInstrumentFunction, ChecksTheStatusBehindSettingsOnly)
{
    const InstrumentCall& call = GetParam();
    answerCall(call);
    answer("*ESR?", "32");
    open();
    KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE);
    clearLog();
    if (call.lines.back() == "*ESR?")
        return; // asks for the status itself
    EXPECT_EQ(call(vi), call.isQuery() ? VI_SUCCESS : code(0xBFFA0001));
    EXPECT_EQ(written().back() == "*ESR?\n", !call.isQuery());
    EXPECT_EQ(timesRecorded(), call.isQuery() ? 0U : 1U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_P(EachInstrumentFunction, RecordsEveryFailureOfVisaOnceAndLeavesTheOutputs)
{
    const InstrumentCall& call = GetParam();
    answerCall(call);
    open();
    std::vector<double> outputs;
    call.run(vi, "OutputChannel3", outputs, kNone);
    const std::size_t steps = calls("vi").size();
    for (std::size_t n = 1; n <= steps; ++n) {
        forget();
        failNthCall(n + 3, VI_ERROR_CONN_LOST); // behind the look-up, the lock and the second look-up
        EXPECT_EQ(call.run(vi, "OutputChannel3", outputs, kNone), kIoError) << n;
        clearFailures();
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(recorded(), (ErrorEntry{kIoError, "I/O error."}));
        EXPECT_EQ(lockDepth(vi), 0U);
        EXPECT_EQ(outputs, std::vector<double>(call.outputs.size(), kUntouched));
    }
}

TEST_P(EachInstrumentFunction, QuotesAReplyThatCannotBeRead)
{
    const InstrumentCall& call = GetParam();
    if (!call.isQuery())
        return;
    open();
    for (const auto& [reply, shown] : std::vector<std::pair<std::string, std::string>>{
             {"what\tever", "what\\x09ever"}, {"-", "-"}, {std::string(90, 'z'), std::string(80, 'z') + "..."}})
    {
        answer(call.lines.back(), reply);
        std::vector<double> outputs;
        EXPECT_EQ(call.run(vi, "OutputChannel3", outputs, kNone), kUnreadReply) << reply;
        expectRecordedOnce(kUnreadReply, unread(shown));
        EXPECT_EQ(outputs, std::vector<double>(call.outputs.size(), kUntouched));
        forget();
    }
}

TEST_P(EachInstrumentFunction, NamesAnOutputThatIsNull)
{
    const InstrumentCall& call = GetParam();
    answerCall(call);
    open();
    for (std::size_t i = 0; i < call.outputs.size(); ++i) {
        std::vector<double> outputs;
        const ViStatus status = call.run(vi, "OutputChannel3", outputs, i);
        expectRefused(status, kNullPointer,
                      "Null pointer passed for function '" + call.name + "', parameter '" + call.outputs[i] + "'.");
        EXPECT_EQ(outputs, std::vector<double>(call.outputs.size(), kUntouched));
    }
}

TEST_P(EachInstrumentFunction, ChecksItsChannels)
{
    const InstrumentCall& call = GetParam();
    if (!call.takesChannel)
        return;
    answerCall(call);
    open();
    const std::string required = "No selector was specified for repeated capability 'OutputChannel'.";
    EXPECT_EQ(call(vi, ""), code(0xBFFA0044));
    EXPECT_THAT(recorded().text, HasSubstr(required));
    forget();
    EXPECT_EQ(call(vi, nullptr), code(0xBFFA0044));
    forget();
    expectRefused(call(vi, "OutputChannel7"), code(0xBFFA0067),
                  "The identifier 'OutputChannel7' is not defined for repeated capability 'OutputChannel'.");
    expectRefused(call(vi, "OutputChannel1-99999999999"), code(0xBFFA0064),
                  "The range 'OutputChannel1-99999999999' is not valid for the repeated capability 'OutputChannel'.");
}

TEST_P(EachInstrumentFunction, KnowsAClosedSession)
{
    const InstrumentCall& call = GetParam();
    open();
    KVX2800T_close(vi);
    const ViSession closed = std::exchange(vi, VI_NULL);
    clearLog();
    EXPECT_EQ(call(closed), kInvalidSession);
    EXPECT_EQ(call(VI_NULL), kInvalidSession);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(EachInstrumentFunction, ReturnsTheStatusOfALockThatIsNotToBeHad)
{
    const InstrumentCall& call = GetParam();
    open();
    failCall("IviSession_Lock", kInjected);
    EXPECT_EQ(call(vi), kInjected);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_P(EachInstrumentFunction, WorksOnASimulatedInstrument)
{
    open("Simulate=1");
    // Random values may be that of an untouched output, but not time and again.
    std::vector<bool> given(GetParam().results.size(), false);
    for (int i = 0; i < 5; ++i) {
        std::vector<double> outputs;
        EXPECT_EQ(GetParam().run(vi, "OutputChannel3", outputs, kNone), VI_SUCCESS);
        for (std::size_t output = 0; output < given.size(); ++output)
            given[output] = given[output] || outputs[output] != kUntouched;
    }
    EXPECT_EQ(given, std::vector<bool>(given.size(), true));
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_EQ(lockDepth(vi), 0U);
}

// ---- Channels, source mode and order

TEST_F(InstrumentFunctions, SettingsGoToEveryChannelInTheModeItNeeds)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureTracking(vi, "OutputChannel4,OutputChannel1-2", VI_FALSE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":OUTP:TRAC:STAT CH4,OFF\n", ":SOUR:Mode?\n", ":OUTP:TRAC:STAT CH1,OFF\n",
                                       ":SOUR:Mode?\n", ":OUTP:TRAC:STAT CH2,OFF\n"));
}

TEST_F(InstrumentFunctions, ProgramsOfTheCombinationsAreSetInTheirMode)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureListCycles(vi, "OutputChannel5", 7), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode SER\n", ":INST:SELE SER\n", ":LIST:CYCLE 7\n"));
}

TEST_F(InstrumentFunctions, QueriesLeaveTheModeAloneAndTakeOneChannel)
{
    answer(":OUTP:TRAC:STAT? PAR", "0");
    open();
    ViBoolean enabled = VI_TRUE;
    EXPECT_EQ(KVX2800T_QueryTracking(vi, "OutputChannel6", &enabled), VI_SUCCESS);
    EXPECT_EQ(enabled, VI_FALSE);
    EXPECT_THAT(written(), ElementsAre(":OUTP:TRAC:STAT? PAR\n"));
    clearLog();
    expectRefused(KVX2800T_QueryTracking(vi, "OutputChannel1,OutputChannel2", &enabled), code(0xBFFA0066),
                  "Only a single repeated capability identifier can be specified for the current operation.");
}

TEST_F(InstrumentFunctions, TheFirstChannelThatFailsEndsACall)
{
    open();
    failNthCallOf("viWrite", 2, VI_ERROR_TMO);
    EXPECT_EQ(KVX2800T_ConfigureOVPValue(vi, "OutputChannel3-4", 1.0), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
    EXPECT_EQ(calls("viWrite").size(), 2U);
}

TEST_F(InstrumentFunctions, AnUnreadableSourceModeIsQuoted)
{
    answerSourceMode("TURBO");
    open();
    EXPECT_EQ(KVX2800T_ConfigureTracking(vi, "OutputChannel1", VI_TRUE), kUnreadReply);
    expectRecordedOnce(kUnreadReply, unread("TURBO"));
}

TEST_F(InstrumentFunctions, AnUnreadableEventStatusIsQuoted)
{
    open();
    KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE);
    answer("*ESR?", "many");
    clearLog();
    EXPECT_EQ(KVX2800T_ConfigureTracking(vi, "OutputChannel3", VI_TRUE), kUnreadReply);
    expectRecordedOnce(kUnreadReply, unread("many"));
}

TEST_F(InstrumentFunctions, ARangeWithTooLargeANumberDoesNotBlameTheLastReply)
{
    answer(":OUTP:TRAC:STAT? CH3", "x");
    open();
    ViBoolean enabled = VI_TRUE;
    EXPECT_EQ(KVX2800T_QueryTracking(vi, "OutputChannel3", &enabled), kUnreadReply);
    forget();
    expectRefused(KVX2800T_QueryTracking(vi, "OutputChannel1-99999999999", &enabled), code(0xBFFA0064),
                  "The range 'OutputChannel1-99999999999' is not valid for the repeated capability 'OutputChannel'.");
}

// ---- Values

TEST_F(InstrumentFunctions, NumbersMustBeFinite)
{
    open();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const std::vector<std::pair<double, std::string>> numbers = {
        {std::nan(""), "nan"}, {kInfinite, "inf"}, {-kInfinite, "-inf"}};
    for (const auto& [number, shown] : numbers) {
        const std::string text = outOfRange(shown + " is no finite number.");
        expectRefused(KVX2800T_ConfigureOVPValue(vi, "OutputChannel3", number), kOutOfRange, text);
        expectRefused(KVX2800T_ConfigureOCPDelay(vi, "OutputChannel3", number), kOutOfRange, text);
        expectRefused(KVX2800T_ConfigureListTemplatePeriod(vi, "OutputChannel3", number), kOutOfRange, text);
        expectRefused(KVX2800T_ConfigureDelayGroup(vi, "OutputChannel3", 1, VI_TRUE, number), kOutOfRange, text);
        expectRefused(KVX2800T_ConfigureListGroup(vi, "OutputChannel3", 1, 1.0, 1.0, number), kOutOfRange, text);
    }
}

TEST_F(InstrumentFunctions, WhatHasNoLimitInTheDriverIsLeftToTheInstrument)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOVPValue(vi, "OutputChannel3", -1e9), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListCycles(vi, "OutputChannel3", -5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateMaximum(vi, "OutputChannel3", 99.5), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":OUTP:OVP:VAL CH3,-1000000000.000000\n", ":INST:SELE CH3\n", ":LIST:CYCLE -5\n",
                                       ":INST:SELE CH3\n", ":LIST:TEMP:MAXV 99.500000\n"));
}

TEST_F(InstrumentFunctions, EveryValueOfAnEnumerationIsSpelledAndNoOther)
{
    struct Enumeration
    {
        std::function<ViStatus(ViSession vi, ViInt32 value)> configure;
        std::string line;
        std::vector<std::pair<ViInt32, std::string>> values;
    };
    const auto setOf = [](ViStatus(_VI_FUNC * function)(ViSession, ViConstString, ViInt32)) {
        return [function](ViSession session, ViInt32 value) { return function(session, "OutputChannel3", value); };
    };
    const std::vector<Enumeration> enumerations = {
        {setOf(KVX2800T_ConfigureCurrentProtectionDelayMode),
         ":SOUR3:CURR:PROT:DEL:MODE ",
         {{KVX2800T_VAL_PROTECTION_DELAY_ANY, "ANY"}, {KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED, "SCH"}}},
        {setOf(KVX2800T_ConfigureOCPDelayMode),
         ":OUTP:OCP:DEL:MODE CH3,",
         {{KVX2800T_VAL_PROTECTION_DELAY_ANY, "ANY"}, {KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED, "SCH"}}},
        {setOf(KVX2800T_ConfigurePowerOnState),
         ":OUTP:PONS:STAT CH3,",
         {{KVX2800T_VAL_POWER_ON_RESET, "RST"},
          {KVX2800T_VAL_POWER_ON_LAST, "LAST"},
          {KVX2800T_VAL_POWER_ON_LAST_OFF, "LOFF"}}},
        {setOf(KVX2800T_ConfigurePairing),
         ":OUTP:PAIR CH3,",
         {{KVX2800T_VAL_PAIRING_OFF, "OFF"},
          {KVX2800T_VAL_PAIRING_SERIES, "SER"},
          {KVX2800T_VAL_PAIRING_PARALLEL, "PAR"}}},
        {setOf(KVX2800T_ConfigureOutputOffMode),
         ":OUTP:OFFM CH3,",
         {{KVX2800T_VAL_OUTPUT_OFF_BLEEDER_ON, "BLEON"}, {KVX2800T_VAL_OUTPUT_OFF_BLEEDER_OFF, "BLEOFF"}}},
        {setOf(KVX2800T_ConfigureCurrentRange),
         ":MEAS:CURR:RANG CH3,",
         {{KVX2800T_VAL_CURRENT_RANGE_AUTO, "AUTO"},
          {KVX2800T_VAL_CURRENT_RANGE_LOW, "LOW"},
          {KVX2800T_VAL_CURRENT_RANGE_HIGH, "HIGH"}}},
        {setOf(KVX2800T_ConfigureCurrentRate),
         ":MEAS:CURR:RATE CH3,",
         {{KVX2800T_VAL_CURRENT_RATE_62, "62"},
          {KVX2800T_VAL_CURRENT_RATE_4000, "4000"},
          {KVX2800T_VAL_CURRENT_RATE_8000, "8000"}}},
        {setOf(KVX2800T_ConfigureListEndState),
         ":LIST:ENDS ",
         {{KVX2800T_VAL_LIST_END_OFF, "OFF"}, {KVX2800T_VAL_LIST_END_LAST, "LAST"}}},
        {setOf(KVX2800T_ConfigureListTemplateWaveform),
         ":LIST:TEMP:SEL ",
         {{KVX2800T_VAL_LIST_WAVEFORM_SINE, "SINE"},
          {KVX2800T_VAL_LIST_WAVEFORM_PULSE, "PULSE"},
          {KVX2800T_VAL_LIST_WAVEFORM_RAMP, "RAMP"},
          {KVX2800T_VAL_LIST_WAVEFORM_UP, "UP"},
          {KVX2800T_VAL_LIST_WAVEFORM_DOWN, "DN"},
          {KVX2800T_VAL_LIST_WAVEFORM_UP_DOWN, "UPDN"},
          {KVX2800T_VAL_LIST_WAVEFORM_RISE, "RISE"},
          {KVX2800T_VAL_LIST_WAVEFORM_FALL, "FALL"}}},
        {setOf(KVX2800T_ConfigureDelayEndState),
         ":DELAY:ENDState ",
         {{KVX2800T_VAL_DELAY_END_OFF, "OFF"},
          {KVX2800T_VAL_DELAY_END_ON, "ON"},
          {KVX2800T_VAL_DELAY_END_LAST, "LAST"}}},
        {setOf(KVX2800T_ConfigureDelayGenerateMode),
         ":DELAY:GENerate:SELect ",
         {{KVX2800T_VAL_DELAY_GENERATE_FIXED, "FIX"},
          {KVX2800T_VAL_DELAY_GENERATE_INCREASING, "INC"},
          {KVX2800T_VAL_DELAY_GENERATE_DECREASING, "DEC"}}},
        {setOf(KVX2800T_ConfigureDelayGeneratePattern),
         ":DELAY:GENerate:PATT ",
         {{KVX2800T_VAL_DELAY_PATTERN_OFF_ON, "01P"}, {KVX2800T_VAL_DELAY_PATTERN_ON_OFF, "10P"}}},
        {[](ViSession session, ViInt32 value) {
             return KVX2800T_ConfigureListTemplateObject(session, "OutputChannel3", value, 1);
         },
         ":LIST:TEMP:OBJ ",
         {{KVX2800T_VAL_LIST_OBJECT_VOLTAGE, "V,1.000000"}, {KVX2800T_VAL_LIST_OBJECT_CURRENT, "C,1.000000"}}},
        {[](ViSession session, ViInt32 value) { return KVX2800T_ConfigureSourceMode(session, value); },
         ":SOUR:Mode ",
         {{KVX2800T_VAL_SOURCE_MODE_SERIES, "SER"}, {KVX2800T_VAL_SOURCE_MODE_PARALLEL, "PARA"}}},
    };
    open();
    for (const Enumeration& enumeration : enumerations) {
        for (const auto& [value, keyword] : enumeration.values) {
            clearLog();
            EXPECT_EQ(enumeration.configure(vi, value), VI_SUCCESS);
            EXPECT_EQ(written().back(), enumeration.line + keyword + '\n');
        }
        clearLog();
        const ViInt32 beyond = enumeration.values.back().first + 1;
        expectRefused(enumeration.configure(vi, beyond), kOutOfRange,
                      outOfRange(std::to_string(beyond) + " is none of the values."));
        expectRefused(enumeration.configure(vi, -1), kOutOfRange, outOfRange("-1 is none of the values."));
    }
}

TEST_F(InstrumentFunctions, EveryBooleanButFalseIsOn)
{
    open();
    for (const ViBoolean on : std::initializer_list<ViBoolean>{VI_TRUE, 2, 0xFFFF})
        EXPECT_EQ(KVX2800T_ConfigureBleeder(vi, on), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureBleeder(vi, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureDelayGroup(vi, "OutputChannel3", 1, 2, 0.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureDelayGroup(vi, "OutputChannel3", 2, VI_FALSE, 1), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:BLE ON\n", ":SOUR:BLE ON\n", ":SOUR:BLE ON\n", ":SOUR:BLE OFF\n",
                                       ":INST:SELE CH3\n", ":DELAY:GROUP:PARAmeter 1,ON,0.500000\n", ":INST:SELE CH3\n",
                                       ":DELAY:GROUP:PARAmeter 2,OFF,1.000000\n"));
}

// ---- Source mode

TEST_F(InstrumentFunctions, ASourceModeThatHoldsIsNotSetAgain)
{
    answerSourceMode("PARA");
    open();
    EXPECT_EQ(KVX2800T_ConfigureSourceMode(vi, KVX2800T_VAL_SOURCE_MODE_PARALLEL), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n"));
    clearLog();
    EXPECT_EQ(KVX2800T_ConfigureSourceMode(vi, KVX2800T_VAL_SOURCE_MODE_NORMAL), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode NORMAL\n"));
}

// ---- Protection state

TEST_F(InstrumentFunctions, ProtectionStateReadsTheTwoTripsOfTheCondition)
{
    open();
    for (ViInt32 condition = 0; condition < 16; ++condition) {
        answer(":STATus:QUEStionable:INSTrument:ISUMmary4:CONDition?", std::to_string(condition));
        ViBoolean overVoltage = 77;
        ViBoolean overCurrent = 77;
        EXPECT_EQ(KVX2800T_QueryProtectionState(vi, "OutputChannel4", &overVoltage, &overCurrent), VI_SUCCESS);
        EXPECT_EQ(overVoltage, (condition & 4) != 0 ? VI_TRUE : VI_FALSE) << condition;
        EXPECT_EQ(overCurrent, (condition & 8) != 0 ? VI_TRUE : VI_FALSE) << condition;
    }
}

// ---- Meters

TEST_F(InstrumentFunctions, MeasureOutputHasThreeTypes)
{
    open();
    ViReal64 value = kUntouched;
    for (const ViInt32 type : {3, -1}) {
        EXPECT_EQ(KVX2800T_MeasureOutput(vi, "OutputChannel3", type, &value), kOutOfRange);
        expectRecordedOnce(kOutOfRange, kOutOfRangeText);
        EXPECT_THAT(written(), IsEmpty());
        EXPECT_EQ(value, kUntouched);
        forget();
    }
}

class MeasureAll : public InstrumentFunctions
{
public:
    ViStatus measure(const char* channels, ViInt32 size)
    {
        volts = amperes = watts = {77, 77, 77, 77};
        count = 77;
        return KVX2800T_MeasureAll(vi, channels, size, volts.data(), amperes.data(), watts.data(), &count);
    }

    static void answerMeters()
    {
        answer(":MEAS:ALL? CH4", "5.000,1.200,6.000");
        answer(":MEAS:ALL? CH1", "1.5,2,3");
        answer(":MEAS:ALL? PAR", "-0.001,0,0");
    }

    std::array<ViReal64, 4> volts{};
    std::array<ViReal64, 4> amperes{};
    std::array<ViReal64, 4> watts{};
    ViInt32 count = 0;
};

TEST_F(MeasureAll, ReadsEveryChannelInTheSelectorsOrderAndLeavesTheModeAlone)
{
    answerMeters();
    open();
    EXPECT_EQ(measure("OutputChannel4,OutputChannel1,OutputChannel6", 4), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":MEAS:ALL? CH4\n", ":MEAS:ALL? CH1\n", ":MEAS:ALL? PAR\n"));
    EXPECT_EQ(count, 3);
    EXPECT_THAT(volts, ElementsAre(5.0, 1.5, -0.001, 77));
    EXPECT_THAT(amperes, ElementsAre(1.2, 2.0, 0.0, 77));
    EXPECT_THAT(watts, ElementsAre(6.0, 3.0, 0.0, 77));
}

TEST_F(MeasureAll, MeasuresNoMoreChannelsThanTheArraysTake)
{
    answerMeters();
    open();
    EXPECT_EQ(measure("OutputChannel4,OutputChannel1", 1), kTruncated);
    EXPECT_THAT(written(), ElementsAre(":MEAS:ALL? CH4\n"));
    EXPECT_EQ(count, 1);
    EXPECT_THAT(volts, ElementsAre(5.0, 77, 77, 77));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(measure("OutputChannel4", 0), kTruncated);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(measure("OutputChannel4,OutputChannel1", 2), VI_SUCCESS);
    EXPECT_EQ(count, 2);
}

TEST_F(MeasureAll, TellsHowManyChannelsWereMeasuredBeforeAFailure)
{
    answerMeters();
    answer(":MEAS:ALL? CH3", "1,2");
    open();
    EXPECT_EQ(measure("OutputChannel4,OutputChannel3,OutputChannel1", 4), kUnreadReply);
    expectRecordedOnce(kUnreadReply, unread("1,2"));
    EXPECT_EQ(count, 1);
    EXPECT_THAT(volts, ElementsAre(5.0, 77, 77, 77));
    EXPECT_THAT(amperes, ElementsAre(1.2, 77, 77, 77));
}

TEST_F(MeasureAll, ChecksItsArguments)
{
    open();
    const ViStatus status = measure("OutputChannel4", -1);
    EXPECT_EQ(count, 0);
    expectRefused(status, kInvalidValue, "Invalid value '-1' for function 'MeasureAll', parameter 'Size'.");
    ViReal64 value = 0;
    const auto refusedAt = [this](ViStatus refused, const std::string& parameter) {
        expectRefused(refused, kNullPointer,
                      "Null pointer passed for function 'KVX2800T_MeasureAll', parameter '" + parameter + "'.");
    };
    refusedAt(KVX2800T_MeasureAll(vi, "OutputChannel4", 1, nullptr, &value, &value, &count), "Volts");
    refusedAt(KVX2800T_MeasureAll(vi, "OutputChannel4", 1, &value, nullptr, &value, &count), "Amperes");
    refusedAt(KVX2800T_MeasureAll(vi, "OutputChannel4", 1, &value, &value, nullptr, &count), "Watts");
    refusedAt(KVX2800T_MeasureAll(vi, "OutputChannel4", 1, &value, &value, &value, nullptr), "Count");
}

// ---- List and delay mode

constexpr std::array<ViReal64, 3> kVolts = {0.0, 16.0, 5.5};
constexpr std::array<ViReal64, 3> kAmperes = {3.2, 0.0, 1.0};
constexpr std::array<ViReal64, 3> kSeconds = {0.001, 10.0, 3600.0};
constexpr std::array<ViBoolean, 3> kOn = {VI_FALSE, VI_TRUE, 2};

TEST_F(InstrumentFunctions, LoadListReplacesTheGroupsOfEveryChannel)
{
    open();
    EXPECT_EQ(KVX2800T_LoadList(vi, "OutputChannel3", 3, kVolts.data(), kAmperes.data(), kSeconds.data()), VI_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre(":INST:SELE CH3\n", ":LIST:GROUP:CLE\n", ":LIST:GROUP:PARA 1,0.000000,3.200000,0.001000\n",
                            ":LIST:GROUP:PARA 2,16.000000,0.000000,10.000000\n",
                            ":LIST:GROUP:PARA 3,5.500000,1.000000,3600.000000\n"));
    clearLog();
    EXPECT_EQ(
        KVX2800T_LoadList(vi, "OutputChannel4,OutputChannel2", 1, kVolts.data(), kAmperes.data(), kSeconds.data()),
        VI_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre(":INST:SELE CH4\n", ":LIST:GROUP:CLE\n", ":LIST:GROUP:PARA 1,0.000000,3.200000,0.001000\n",
                            ":SOUR:Mode?\n", ":INST:SELE CH2\n", ":LIST:GROUP:CLE\n",
                            ":LIST:GROUP:PARA 1,0.000000,3.200000,0.001000\n"));
}

TEST_F(InstrumentFunctions, LoadDelayReplacesTheGroupsOfEveryChannel)
{
    open();
    EXPECT_EQ(KVX2800T_LoadDelay(vi, "OutputChannel3-4", 3, kOn.data(), kSeconds.data()), VI_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre(":INST:SELE CH3\n", ":DELAY:GROUP:CLEar\n", ":DELAY:GROUP:PARAmeter 1,OFF,0.001000\n",
                            ":DELAY:GROUP:PARAmeter 2,ON,10.000000\n", ":DELAY:GROUP:PARAmeter 3,ON,3600.000000\n",
                            ":INST:SELE CH4\n", ":DELAY:GROUP:CLEar\n", ":DELAY:GROUP:PARAmeter 1,OFF,0.001000\n",
                            ":DELAY:GROUP:PARAmeter 2,ON,10.000000\n", ":DELAY:GROUP:PARAmeter 3,ON,3600.000000\n"));
}

TEST_F(InstrumentFunctions, NoGroupsEmptyAProgramAndNeedNoArrays)
{
    open();
    EXPECT_EQ(KVX2800T_LoadList(vi, "OutputChannel3", 0, nullptr, nullptr, nullptr), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_LoadDelay(vi, "OutputChannel3", 0, nullptr, nullptr), VI_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre(":INST:SELE CH3\n", ":LIST:GROUP:CLE\n", ":INST:SELE CH3\n", ":DELAY:GROUP:CLEar\n"));
}

TEST_F(InstrumentFunctions, AProgramHasUpTo512Groups)
{
    open();
    const std::vector<ViReal64> numbers(512, 1.0);
    const std::vector<ViBoolean> on(512, VI_TRUE);
    EXPECT_EQ(KVX2800T_LoadList(vi, "OutputChannel3", 512, numbers.data(), numbers.data(), numbers.data()), VI_SUCCESS);
    EXPECT_EQ(written().size(), 514U);
    EXPECT_EQ(written().back(), ":LIST:GROUP:PARA 512,1.000000,1.000000,1.000000\n");
    clearLog();
    EXPECT_EQ(KVX2800T_LoadDelay(vi, "OutputChannel3", 512, on.data(), numbers.data()), VI_SUCCESS);
    EXPECT_EQ(written().back(), ":DELAY:GROUP:PARAmeter 512,ON,1.000000\n");
    clearLog();
    for (const ViInt32 count : std::initializer_list<ViInt32>{513, -1, std::numeric_limits<ViInt32>::min()}) {
        const std::string value = "Invalid value '" + std::to_string(count) + "' for function '";
        expectRefused(KVX2800T_LoadList(vi, "OutputChannel3", count, numbers.data(), numbers.data(), numbers.data()),
                      kInvalidValue, value + "LoadList', parameter 'Count'.");
        expectRefused(KVX2800T_LoadDelay(vi, "OutputChannel3", count, on.data(), numbers.data()), kInvalidValue,
                      value + "LoadDelay', parameter 'Count'.");
    }
}

TEST_F(InstrumentFunctions, ArraysOfAProgramMustBeThere)
{
    open();
    const auto refusedAt = [this](ViStatus status, const std::string& function, const std::string& parameter) {
        expectRefused(status, kNullPointer,
                      "Null pointer passed for function '" + function + "', parameter '" + parameter + "'.");
    };
    const ViReal64* const real = kVolts.data();
    refusedAt(KVX2800T_LoadList(vi, "OutputChannel3", 1, nullptr, real, real), "KVX2800T_LoadList", "Volts");
    refusedAt(KVX2800T_LoadList(vi, "OutputChannel3", 1, real, nullptr, real), "KVX2800T_LoadList", "Amperes");
    refusedAt(KVX2800T_LoadList(vi, "OutputChannel3", 1, real, real, nullptr), "KVX2800T_LoadList", "Seconds");
    refusedAt(KVX2800T_LoadDelay(vi, "OutputChannel3", 1, nullptr, real), "KVX2800T_LoadDelay", "On");
    refusedAt(KVX2800T_LoadDelay(vi, "OutputChannel3", 1, kOn.data(), nullptr), "KVX2800T_LoadDelay", "Seconds");
}

TEST_F(InstrumentFunctions, NothingOfAProgramIsSentUnlessAllOfItIsInRange)
{
    open();
    const auto load = [this](const char* channels, std::array<ViReal64, 2> volts, std::array<ViReal64, 2> amperes,
                             std::array<ViReal64, 2> seconds) {
        return KVX2800T_LoadList(vi, channels, 2, volts.data(), amperes.data(), seconds.data());
    };
    expectRefused(load("OutputChannel3", {1, 16.5}, {1, 1}, {1, 1}), kOutOfRange,
                  outOfRange("OutputChannel3 takes 0 V to 16 V, not 16.5 V."));
    expectRefused(load("OutputChannel3-4", {6.2, 6.25}, {1, 1}, {1, 1}), kOutOfRange,
                  outOfRange("OutputChannel4 takes 0 V to 6.2 V, not 6.25 V."));
    expectRefused(load("OutputChannel5", {66, 66}, {3.2, 3.3}, {1, 1}), kOutOfRange,
                  outOfRange("OutputChannel5 takes 0 A to 3.2 A, not 3.3 A."));
    expectRefused(load("OutputChannel3", {-1, 1}, {1, 1}, {1, 1}), kOutOfRange,
                  outOfRange("OutputChannel3 takes 0 V to 16 V, not -1 V."));
    expectRefused(load("OutputChannel3", {1, std::nan("")}, {1, 1}, {1, 1}), kOutOfRange,
                  outOfRange("OutputChannel3 takes 0 V to 16 V, not nan V."));
    expectRefused(load("OutputChannel3", {1, 1}, {1, 1}, {1, HUGE_VAL}), kOutOfRange,
                  outOfRange("inf is no finite number."));
    const std::array<ViReal64, 2> seconds = {1, std::nan("")};
    expectRefused(KVX2800T_LoadDelay(vi, "OutputChannel3", 2, kOn.data(), seconds.data()), kOutOfRange,
                  outOfRange("nan is no finite number."));
}

TEST_F(InstrumentFunctions, LevelsOfAGroupHaveTheLimitsOfEachChannel)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureListGroup(vi, "OutputChannel4", 1, 6.2, 10.5, -1.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":INST:SELE CH4\n", ":LIST:GROUP:PARA 1,6.200000,10.500000,-1.000000\n"));
    clearLog();
    expectRefused(KVX2800T_ConfigureListGroup(vi, "OutputChannel4", 1, 6.2, 10.6, 1.0), kOutOfRange,
                  outOfRange("OutputChannel4 takes 0 A to 10.5 A, not 10.6 A."));
    expectRefused(KVX2800T_ConfigureListGroup(vi, "OutputChannel3,OutputChannel4", 1, 7.0, 1.0, 1.0), kOutOfRange,
                  outOfRange("OutputChannel4 takes 0 V to 6.2 V, not 7 V."));
}

TEST_F(InstrumentFunctions, TheConstantLevelOfATemplateHasTheLimitsOfItsQuantity)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureListTemplateObject(vi, "OutputChannel4", KVX2800T_VAL_LIST_OBJECT_VOLTAGE, 10.5),
              VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateObject(vi, "OutputChannel3", KVX2800T_VAL_LIST_OBJECT_CURRENT, 16.0),
              VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":INST:SELE CH4\n", ":LIST:TEMP:OBJ V,10.500000\n", ":INST:SELE CH3\n",
                                       ":LIST:TEMP:OBJ C,16.000000\n"));
    clearLog();
    expectRefused(KVX2800T_ConfigureListTemplateObject(vi, "OutputChannel4", KVX2800T_VAL_LIST_OBJECT_CURRENT, 10.5),
                  kOutOfRange, outOfRange("OutputChannel4 takes 0 V to 6.2 V, not 10.5 V."));
    expectRefused(KVX2800T_ConfigureListTemplateObject(vi, "OutputChannel3", KVX2800T_VAL_LIST_OBJECT_VOLTAGE, 16.0),
                  kOutOfRange, outOfRange("OutputChannel3 takes 0 A to 3.2 A, not 16 A."));
}

TEST_F(InstrumentFunctions, AGroupThatCannotBeSentEndsTheLoading)
{
    open();
    for (std::size_t n = 1; n <= 5; ++n) {
        failNthCallOf("viWrite", n, VI_ERROR_TMO);
        EXPECT_EQ(KVX2800T_LoadList(vi, "OutputChannel3", 3, kVolts.data(), kAmperes.data(), kSeconds.data()),
                  kIoError);
        expectRecordedOnce(kIoError, "I/O error.");
        EXPECT_EQ(calls("viWrite").size(), n);
        forget();
    }
}

// ---- Time-out and inherent functions

TEST_F(InstrumentFunctions, TheIoTimeoutIsThatOfTheConnection)
{
    open();
    ViInt32 milliseconds = 0;
    EXPECT_EQ(KVX2800T_GetIoTimeout(vi, &milliseconds), VI_SUCCESS);
    EXPECT_EQ(milliseconds, 2000);
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(KVX2800T_SetIoTimeout(vi, 150), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 150)"));
    EXPECT_EQ(KVX2800T_GetIoTimeout(vi, &milliseconds), VI_SUCCESS);
    EXPECT_EQ(milliseconds, 150);
    forget();
    for (const ViInt32 refused : std::initializer_list<ViInt32>{-1, std::numeric_limits<ViInt32>::min()})
        expectRefused(KVX2800T_SetIoTimeout(vi, refused), kOutOfRange, kOutOfRangeText);
    expectRefused(KVX2800T_GetIoTimeout(vi, nullptr), kNullPointer,
                  "Null pointer passed for function 'KVX2800T_GetIoTimeout', parameter 'Milliseconds'.");
    failCall("viSetAttribute", VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(KVX2800T_SetIoTimeout(vi, 0), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
    EXPECT_EQ(KVX2800T_GetIoTimeout(vi, &milliseconds), VI_SUCCESS);
    EXPECT_EQ(milliseconds, 0);
    EXPECT_EQ(KVX2800T_GetIoTimeout(kUnknownSession, &milliseconds), kInvalidSession);
    EXPECT_EQ(KVX2800T_SetIoTimeout(kUnknownSession, 100), kInvalidSession);
}

TEST_F(InstrumentFunctions, ASimulatedInstrumentHasNoIoTimeout)
{
    open("Simulate=1");
    ViInt32 milliseconds = 77;
    EXPECT_EQ(KVX2800T_SetIoTimeout(vi, 100), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetIoTimeout(vi, &milliseconds), VI_SUCCESS);
    EXPECT_EQ(milliseconds, 0);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(InstrumentFunctions, RecordsOfCoercionsAndWarningsAreEmpty)
{
    open();
    const auto functions = {std::pair(&KVX2800T_GetNextCoercionRecord, "CoercionRecord"),
                            std::pair(&KVX2800T_GetNextInterchangeWarning, "InterchangeWarning")};
    for (const auto& [function, parameter] : functions) {
        for (const ViInt32 size : {1, 256, -1}) {
            std::array<ViChar, 3> text = {'#', '#', '#'};
            EXPECT_EQ(function(vi, size, text.data()), VI_SUCCESS);
            EXPECT_THAT(text, ElementsAre('\0', '#', '#'));
        }
        std::array<ViChar, 1> text = {'#'};
        EXPECT_EQ(function(vi, 0, text.data()), 1);
        EXPECT_EQ(function(vi, 0, nullptr), 1);
        EXPECT_THAT(text, ElementsAre('#'));
        clearLog();
        expectRefused(function(vi, 1, nullptr), kNullPointer,
                      "Null pointer passed for function 'KVX2800T_GetNext" + std::string(parameter) + "', parameter '" +
                          parameter + "'.");
        EXPECT_EQ(function(kUnknownSession, 0, nullptr), kInvalidSession);
    }
    EXPECT_EQ(KVX2800T_ResetInterchangeCheck(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ClearInterchangeWarnings(vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ResetInterchangeCheck(kUnknownSession), kInvalidSession);
    EXPECT_EQ(KVX2800T_ClearInterchangeWarnings(kUnknownSession), kInvalidSession);
    EXPECT_THAT(written(), IsEmpty());
}

} // namespace
