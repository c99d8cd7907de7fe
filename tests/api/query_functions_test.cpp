#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/channel_limits.h"

#include <cmath>
#include <initializer_list>
#include <limits>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

/// A query with the output that a test looks at.
struct Query
{
    const char* name;
    /// How the message of a null pointer calls the output.
    const char* parameter;
    /// Marks the output, calls and tells whether the output is still marked.
    ViStatus (*call)(ViSession vi, ViConstString channel, bool& isUntouched);
    ViStatus (*callWithNull)(ViSession vi, ViConstString channel);
    /// What it sends to OutputChannel3; null when it sends nothing.
    const char* command;
};

void PrintTo(const Query& query, std::ostream* stream)
{
    *stream << query.name;
}

constexpr auto kMark = 77;

template <class Value, class Call>
ViStatus callMarked(bool& isUntouched, Call call)
{
    Value value = kMark;
    const ViStatus status = call(&value);
    isUntouched = value == kMark;
    return status;
}

const Query kQueries[] = {
    {"QueryMaxCurrentLimit", "MaxCurrentLimit",
     [](ViSession vi, ViConstString channel, bool& isUntouched) {
         return callMarked<ViReal64>(
             isUntouched, [=](ViReal64* value) { return KVX2800T_QueryMaxCurrentLimit(vi, channel, 1.0, value); });
     },
     [](ViSession vi, ViConstString channel) { return KVX2800T_QueryMaxCurrentLimit(vi, channel, 1.0, nullptr); },
     nullptr},
    {"QueryMaxVoltageLevel", "MaxVoltageLevel",
     [](ViSession vi, ViConstString channel, bool& isUntouched) {
         return callMarked<ViReal64>(
             isUntouched, [=](ViReal64* value) { return KVX2800T_QueryMaxVoltageLevel(vi, channel, 1.0, value); });
     },
     [](ViSession vi, ViConstString channel) { return KVX2800T_QueryMaxVoltageLevel(vi, channel, 1.0, nullptr); },
     nullptr},
    {"QueryOutputState", "inState",
     [](ViSession vi, ViConstString channel, bool& isUntouched) {
         return callMarked<ViBoolean>(
             isUntouched, [=](ViBoolean* value) { return KVX2800T_QueryOutputState(vi, channel, 0, value); });
     },
     [](ViSession vi, ViConstString channel) { return KVX2800T_QueryOutputState(vi, channel, 0, nullptr); },
     ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?\n"},
    {"Measure", "Measurement",
     [](ViSession vi, ViConstString channel, bool& isUntouched) {
         return callMarked<ViReal64>(isUntouched,
                                     [=](ViReal64* value) { return KVX2800T_Measure(vi, channel, 1, value); });
     },
     [](ViSession vi, ViConstString channel) { return KVX2800T_Measure(vi, channel, 1, nullptr); }, ":SOUR3:VOLT?\n"},
};

class ChannelQuery : public ApiTest, public testing::WithParamInterface<Query>
{
public:
    ChannelQuery()
    {
        answer(":SOUR3:VOLT?", "3");
        answer(":SOUR4:VOLT?", "4");
        answer(":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?", "2");
        answer(":STATus:QUEStionable:INSTrument:ISUMmary4:CONDition?", "2");
    }

    ViStatus call(ViConstString channel) { return GetParam().call(vi, channel, isUntouched); }

    static std::vector<std::string> commands()
    {
        return GetParam().command == nullptr ? std::vector<std::string>{}
                                             : std::vector{std::string(GetParam().command)};
    }

    bool isUntouched = false;
};

TEST_P(ChannelQuery, AsksTheChannelAndNothingElse)
{
    open();
    EXPECT_EQ(call("OutputChannel3"), VI_SUCCESS);
    EXPECT_FALSE(isUntouched);
    EXPECT_EQ(written(), commands());
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_P(ChannelQuery, ChecksTheStatusOnceBehindTheLastChannel)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(call("OutputChannel3,OutputChannel4"), VI_SUCCESS);
    EXPECT_EQ(written().size(), (commands().size() * 2) + 1);
    EXPECT_EQ(written().back(), "*ESR?\n");
}

TEST_P(ChannelQuery, ReportsWhatTheInstrumentHasNotedWithTheOutputWritten)
{
    open("QueryInstrStatus=1");
    answer("*ESR?", "4");
    EXPECT_EQ(call("OutputChannel3"), code(0xBFFA0001));
    expectRecordedOnce(code(0xBFFA0001), "Instrument error detected.  Use ErrorQuery() to determine the error(s).");
    EXPECT_FALSE(isUntouched);
}

TEST_P(ChannelQuery, ReportsANullPointerBehindTheLockAndBeforeTheSelector)
{
    open("QueryInstrStatus=1");
    for (const char* selector : {"OutputChannel3", "OutputChannel9", "", static_cast<const char*>(nullptr)}) {
        forget();
        EXPECT_EQ(GetParam().callWithNull(vi, selector), kNullPointer);
        expectRecordedOnce(kNullPointer, std::string("Null pointer passed for function 'KVX2800T_") + GetParam().name +
                                             "', parameter '" + GetParam().parameter + "'.");
        EXPECT_EQ(calls("IviSession_Lock").size(), 1U);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
}

TEST_P(ChannelQuery, LooksAtTheSessionBeforeThePointer)
{
    EXPECT_EQ(GetParam().callWithNull(kUnknownSession, "OutputChannel3"), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(4711)"));
    open();
    failNthCallOf("IviSession_Lock", 1, kInjected);
    EXPECT_EQ(GetParam().callWithNull(vi, "OutputChannel3"), kInjected);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(ChannelQuery, RecordsABadSelectorOnceAndLeavesTheOutput)
{
    open("QueryInstrStatus=1");
    const std::pair<const char*, ViUInt32> selectors[] = {{nullptr, 0xBFFA0044},
                                                          {"", 0xBFFA0044},
                                                          {"OutputChannel1:OutputChannel2", 0xBFFA0063},
                                                          {"OutputChannel2-1", 0xBFFA0064},
                                                          {"a;b", 0xBFFA0066},
                                                          {"OutputChannel3,OutputChannel7", 0xBFFA0067}};
    for (const auto& [selector, bits] : selectors) {
        forget();
        EXPECT_EQ(call(selector), code(bits));
        EXPECT_EQ(recorded().code, code(bits));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_TRUE(isUntouched);
        EXPECT_THAT(calls("vi"), IsEmpty());
        EXPECT_EQ(lockDepth(vi), 0U);
    }
}

TEST_P(ChannelQuery, OfASimulatedInstrumentSendsNothing)
{
    open("Simulate=1, QueryInstrStatus=1");
    EXPECT_EQ(call("OutputChannel1-6"), VI_SUCCESS);
    EXPECT_FALSE(isUntouched);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Functions, ChannelQuery, testing::ValuesIn(kQueries),
                         [](const auto& query) { return std::string(query.param.name); });

class QueryFunctions : public ApiTest
{
};

TEST_F(QueryFunctions, TheMaximaOfEveryChannelAreTheSameWhateverTheOtherQuantity)
{
    open();
    for (const ChannelMaximum& maximum : kChannelMaxima)
        for (const ViReal64 other : {0.0, -1.0, 1e9, std::nan("")}) {
            ViReal64 volts = -1.0;
            ViReal64 amperes = -1.0;
            EXPECT_EQ(KVX2800T_QueryMaxVoltageLevel(vi, maximum.name().c_str(), other, &volts), VI_SUCCESS);
            EXPECT_EQ(KVX2800T_QueryMaxCurrentLimit(vi, maximum.name().c_str(), other, &amperes), VI_SUCCESS);
            EXPECT_EQ(volts, maximum.volts) << maximum.name();
            EXPECT_EQ(amperes, maximum.amperes) << maximum.name();
        }
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(QueryFunctions, ShortNamesOfChannelsAreKnown)
{
    open();
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_QueryMaxVoltageLevel(vi, "CH1", 0.0, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 33.0);
}

TEST_F(QueryFunctions, OfSeveralChannelsTheMaximumIsTheLastOnes)
{
    open();
    ViReal64 volts = -1.0;
    ViReal64 amperes = -1.0;
    EXPECT_EQ(KVX2800T_QueryMaxVoltageLevel(vi, "OutputChannel5,OutputChannel4", 0.0, &volts), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_QueryMaxCurrentLimit(vi, "OutputChannel4-6", 0.0, &amperes), VI_SUCCESS);
    EXPECT_EQ(volts, 6.2);
    EXPECT_EQ(amperes, 6.4);
}

// Output state

TEST_F(QueryFunctions, ConstantVoltageIsBit1AndConstantCurrentBit0OfTheCondition)
{
    open();
    const std::tuple<const char*, ViBoolean, ViBoolean> conditions[] = {
        {"0", VI_FALSE, VI_FALSE},  {"1", VI_FALSE, VI_TRUE},  {"2", VI_TRUE, VI_FALSE}, {"3", VI_TRUE, VI_TRUE},
        {"12", VI_FALSE, VI_FALSE}, {"14", VI_TRUE, VI_FALSE}, {"-1", VI_TRUE, VI_TRUE}, {"32766", VI_TRUE, VI_FALSE},
    };
    for (const auto& [condition, isConstantVoltage, isConstantCurrent] : conditions) {
        answer(":STATus:QUEStionable:INSTrument:ISUMmary2:CONDition?", condition);
        ViBoolean inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel2", KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE, &inState),
                  VI_SUCCESS);
        EXPECT_EQ(inState, isConstantVoltage) << condition;
        inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel2", KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT, &inState),
                  VI_SUCCESS);
        EXPECT_EQ(inState, isConstantCurrent) << condition;
    }
}

TEST_F(QueryFunctions, TheOutputStateOfEveryChannelIsAskedByItsNumber)
{
    open();
    for (const ChannelMaximum& maximum : kChannelMaxima) {
        const std::string query =
            ":STATus:QUEStionable:INSTrument:ISUMmary" + std::to_string(maximum.number) + ":CONDition?";
        answer(query, "1");
        clearLog();
        ViBoolean inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, maximum.name().c_str(), 1, &inState), VI_SUCCESS);
        EXPECT_EQ(inState, VI_TRUE);
        EXPECT_THAT(written(), ElementsAre(query + "\n"));
    }
}

TEST_F(QueryFunctions, TripsAndUnregulatedAreFalseWithoutIo)
{
    open();
    for (const ViInt32 state :
         {KVX2800T_VAL_OUTPUT_OVER_VOLTAGE, KVX2800T_VAL_OUTPUT_OVER_CURRENT, KVX2800T_VAL_OUTPUT_UNREGULATED})
    {
        ViBoolean inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel1-6", state, &inState), VI_SUCCESS);
        EXPECT_EQ(inState, VI_FALSE);
    }
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(QueryFunctions, TripsAndUnregulatedAreFollowedByTheStatusCheck)
{
    open("QueryInstrStatus=1");
    for (const ViInt32 state : {2, 3, 4}) {
        clearLog();
        ViBoolean inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel1", state, &inState), VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAre("*ESR?\n"));
    }
}

TEST_F(QueryFunctions, AnUnknownOutputStateSucceedsAndLeavesTheOutput)
{
    open();
    for (const ViInt32 state : std::initializer_list<ViInt32>{5, 7, -1, std::numeric_limits<ViInt32>::min(),
                                                              std::numeric_limits<ViInt32>::max()})
    {
        ViBoolean inState = kMark;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel1-6", state, &inState), VI_SUCCESS);
        EXPECT_EQ(inState, kMark);
    }
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(QueryFunctions, AnUnknownOutputStateStillNeedsAChannel)
{
    open();
    ViBoolean inState = kMark;
    EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel7", 7, &inState), code(0xBFFA0067));
    EXPECT_EQ(inState, kMark);
}

TEST_F(QueryFunctions, AConditionThatIsNoNumberLeavesAsAnException)
{
    open();
    ViBoolean inState = kMark;
    answer(":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?", "CV");
    expectException<std::invalid_argument>(vi, "invalid stoi argument",
                                           [&] { KVX2800T_QueryOutputState(vi, "OutputChannel1", 0, &inState); });
    answer(":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?", "99999999999");
    expectException<std::out_of_range>(vi, "stoi argument out of range",
                                       [&] { KVX2800T_QueryOutputState(vi, "OutputChannel1", 0, &inState); });
    EXPECT_EQ(inState, kMark);
}

// Measure

TEST_F(QueryFunctions, MeasureReadsTheLevelsThatAreSet)
{
    open();
    for (const ChannelMaximum& maximum : kChannelMaxima) {
        answer(maximum.source() + ":CURR?", "1.25");
        answer(maximum.source() + ":VOLT?", "5.5");
        clearLog();
        ViReal64 amperes = kMark;
        ViReal64 volts = kMark;
        EXPECT_EQ(KVX2800T_Measure(vi, maximum.name().c_str(), KVX2800T_VAL_MEASURE_CURRENT, &amperes), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_Measure(vi, maximum.name().c_str(), KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
        EXPECT_EQ(amperes, 1.25);
        EXPECT_EQ(volts, 5.5);
        EXPECT_THAT(written(), ElementsAre(maximum.source() + ":CURR?\n", maximum.source() + ":VOLT?\n"));
    }
}

TEST_F(QueryFunctions, OfSeveralChannelsTheMeasurementIsTheLastOnes)
{
    open();
    answer(":SOUR4:VOLT?", "4");
    answer(":SOUR1:VOLT?", "1");
    ViReal64 volts = kMark;
    EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel4,OutputChannel1", KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 1.0);
    EXPECT_THAT(written(), ElementsAre(":SOUR4:VOLT?\n", ":SOUR1:VOLT?\n"));
}

TEST_F(QueryFunctions, AFailedMeasurementOfSeveralChannelsKeepsTheLastGoodOne)
{
    open("QueryInstrStatus=1");
    for (int number = 1; number <= 4; ++number)
        answer(":SOUR" + std::to_string(number) + ":VOLT?", std::to_string(number));
    for (const char* function : {"viWrite", "viRead"})
        for (std::size_t n = 1; n <= 4; ++n) {
            SCOPED_TRACE(function + std::to_string(n));
            forget();
            failNthCallOf(function, n, VI_ERROR_TMO);
            ViReal64 volts = kMark;
            EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel1-4", KVX2800T_VAL_MEASURE_VOLTAGE, &volts), kIoError);
            EXPECT_EQ(volts, n == 1 ? ViReal64{kMark} : static_cast<ViReal64>(n - 1));
            expectRecordedOnce(kIoError, "I/O error.");
            EXPECT_THAT(written(), testing::Not(testing::Contains("*ESR?\n")));
        }
}

TEST_F(QueryFunctions, AFailedStateOfSeveralChannelsKeepsTheLastGoodOne)
{
    open("QueryInstrStatus=1");
    answer(":STATus:QUEStionable:INSTrument:ISUMmary1:CONDition?", "2");
    failNthCallOf("viRead", 2, VI_ERROR_TMO);
    ViBoolean inState = kMark;
    EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel1-3", 0, &inState), kIoError);
    EXPECT_EQ(inState, VI_TRUE);
    expectRecordedOnce(kIoError, "I/O error.");
}

TEST_F(QueryFunctions, AnUnknownMeasurementTypeIsOutOfRange)
{
    open("QueryInstrStatus=1");
    for (const ViInt32 type : std::initializer_list<ViInt32>{2, -1, std::numeric_limits<ViInt32>::min(),
                                                             std::numeric_limits<ViInt32>::max()})
    {
        forget();
        ViReal64 value = kMark;
        EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel1-3", type, &value), kOutOfRange);
        EXPECT_EQ(value, kMark);
        expectRecordedOnce(kOutOfRange, kOutOfRangeText);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
}

TEST_F(QueryFunctions, ABadSelectorComesBeforeAnUnknownMeasurementType)
{
    open();
    ViReal64 value = kMark;
    EXPECT_EQ(KVX2800T_Measure(vi, "OutputChannel7", 2, &value), code(0xBFFA0067));
}

TEST_F(QueryFunctions, AMeasurementThatIsNoNumberLeavesAsAnException)
{
    open();
    ViReal64 value = kMark;
    answer(":SOUR1:CURR?", "amperes");
    expectException<std::invalid_argument>(vi, "invalid stod argument",
                                           [&] { KVX2800T_Measure(vi, "OutputChannel1", 0, &value); });
    EXPECT_EQ(value, kMark);
}

// Channel names

class ChannelName : public ApiTest
{
public:
    ChannelName()
    {
        open("QueryInstrStatus=1");
        name.fill('#');
    }

    ViStatus get(ViInt32 index, ViInt32 size) { return KVX2800T_GetChannelName(vi, index, size, name.data()); }

    void expectNothingWritten() const { EXPECT_THAT(name, testing::Each('#')); }

    std::array<ViChar, 40> name{};
};

TEST_F(ChannelName, CountsFromOne)
{
    for (ViInt32 index = 1; index <= 6; ++index) {
        EXPECT_EQ(get(index, 40), VI_SUCCESS);
        EXPECT_EQ(name.data(), "OutputChannel" + std::to_string(index));
        EXPECT_EQ(name[15], '#');
    }
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(ChannelName, IsCutToTheBufferWithoutAWord)
{
    const std::string whole = "OutputChannel1";
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        name.fill('#');
        EXPECT_EQ(get(1, static_cast<ViInt32>(size)), VI_SUCCESS) << size;
        const std::string expected = whole.substr(0, size - 1);
        EXPECT_EQ(name.data(), expected);
        EXPECT_EQ(name[expected.size() + 1], '#');
    }
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ChannelName, OfABufferOfNoSizeIsNotWritten)
{
    for (const ViInt32 size : std::initializer_list<ViInt32>{0, -1, std::numeric_limits<ViInt32>::min()}) {
        EXPECT_EQ(get(1, size), VI_SUCCESS);
        expectNothingWritten();
    }
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ChannelName, OfAnotherIndexIsRefusedWithThePosition)
{
    const std::pair<ViInt32, const char*> indexes[] = {{0, "-1"},
                                                       {-1, "-2"},
                                                       {7, "6"},
                                                       {1000, "999"},
                                                       {std::numeric_limits<ViInt32>::max(), "2147483646"},
                                                       {std::numeric_limits<ViInt32>::min(), "-2147483649"}};
    for (const auto& [index, position] : indexes)
        for (const ViInt32 size : {40, 0, -1}) {
            forget();
            EXPECT_EQ(get(index, size), code(0xBFFA0010));
            expectRecordedOnce(code(0xBFFA0010), std::string("Invalid value '") + position +
                                                     "' for function 'GetOutputChannelName', parameter 'Index'.");
            expectNothingWritten();
        }
}

TEST_F(ChannelName, ANullBufferIsReportedFirstWhateverTheSizeAndTheIndex)
{
    for (const ViInt32 index : {1, 0, 7})
        for (const ViInt32 size : {40, 0, -1}) {
            forget();
            EXPECT_EQ(KVX2800T_GetChannelName(vi, index, size, nullptr), kNullPointer);
            expectRecordedOnce(kNullPointer, "Null pointer passed for function 'KVX2800T_GetChannelName', parameter "
                                             "'Name'.");
        }
}

TEST_F(ChannelName, LooksAtTheSessionBeforeTheBuffer)
{
    EXPECT_EQ(KVX2800T_GetChannelName(kUnknownSession, 1, 40, nullptr), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(4711)"));
}

TEST_F(ChannelName, ChecksNoStatus)
{
    EXPECT_EQ(get(1, 40), VI_SUCCESS);
    EXPECT_THAT(written(), IsEmpty());
}

} // namespace
