#include "tests/support/driver/api_fixture.h"

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class AttributeFunctions : public ApiTest
{
public:
    AttributeFunctions() { open(); }

    ViStatus get(ViConstString channel, ViAttr id, ViInt32& value) const
    {
        return KVX2800T_GetAttributeViInt32(vi, channel, id, &value);
    }
    ViStatus get(ViConstString channel, ViAttr id, ViReal64& value) const
    {
        return KVX2800T_GetAttributeViReal64(vi, channel, id, &value);
    }
    ViStatus get(ViConstString channel, ViAttr id, ViBoolean& value) const
    {
        return KVX2800T_GetAttributeViBoolean(vi, channel, id, &value);
    }

    /// Expects that an attribute of a channel is read with one query.
    template <class Value>
    void expectRead(const char* channel, ViAttr id, const char* query, const char* reply, Value expected)
    {
        answer(query, reply);
        clearLog();
        auto value = static_cast<Value>(99);
        EXPECT_EQ(get(channel, id, value), VI_SUCCESS) << query;
        EXPECT_EQ(value, expected) << query;
        EXPECT_THAT(written(), ElementsAre(std::string(query) + "\n"));
        EXPECT_EQ(timesRecorded(), 0U);
    }

    /// Expects that a read fails with this record, without I/O, and leaves the value.
    template <class Value>
    void expectRefusal(const char* channel, ViAttr id, ViStatus status, const std::string& text)
    {
        clearLog();
        auto value = static_cast<Value>(99);
        EXPECT_EQ(get(channel, id, value), status);
        EXPECT_EQ(value, static_cast<Value>(99));
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_THAT(calls("vi"), IsEmpty());
        EXPECT_EQ(lockDepth(vi), 0U);
        IviSession_ClearError(vi);
    }
};

TEST_F(AttributeFunctions, VoltageLevelAsksTheChannel)
{
    expectRead<ViReal64>("OutputChannel1", 1250001, ":SOUR1:VOLT?", "5.25", 5.25);
    expectRead<ViReal64>("OutputChannel5", 1250001, ":SOUR5:VOLT?", "6.0E+01", 60.0);
}

TEST_F(AttributeFunctions, CurrentLimitAsksTheChannel)
{
    expectRead<ViReal64>("OutputChannel4", 1250005, ":SOUR4:CURR?", "10.5", 10.5);
    expectRead<ViReal64>("[OutputChannel6]", 1250005, ":SOUR6:CURR?", "0", 0.0);
}

TEST_F(AttributeFunctions, CurrentLimitBehaviorIsTheStateOfTheProtection)
{
    expectRead<ViInt32>("OutputChannel2", 1250004, ":SOUR2:CURR:PROT:STAT?", "ON", 1);
    expectRead<ViInt32>("OutputChannel2", 1250004, ":SOUR2:CURR:PROT:STAT?", "0", 0);
}

TEST_F(AttributeFunctions, OutputEnabledNamesTheChannelBehindTheQuery)
{
    expectRead<ViBoolean>("OutputChannel3", 1250006, ":OUTP:STAT? CH3", "1", VI_TRUE);
    expectRead<ViBoolean>("OutputChannel5", 1250006, ":OUTP:STAT? SER", "OFF", VI_FALSE);
    expectRead<ViBoolean>("OutputChannel6", 1250006, ":OUTP:STAT? PAR", "ON", VI_TRUE);
}

TEST_F(AttributeFunctions, OvpAttributesAreLevelAndStateOfTheProtection)
{
    expectRead<ViReal64>("OutputChannel1", 1250003, ":SOUR1:VOLT:PROT?", "33.5", 33.5);
    expectRead<ViReal64>("CH6", 1250003, ":SOUR6:VOLT:PROT?", "-0.5", -0.5);
    expectRead<ViBoolean>("OutputChannel4", 1250002, ":SOUR4:VOLT:PROT:STAT?", "ON", VI_TRUE);
    expectRead<ViBoolean>("OutputChannel5", 1250002, ":SOUR5:VOLT:PROT:STAT?", "0", VI_FALSE);
}

TEST_F(AttributeFunctions, ReadingChecksNoStatus)
{
    KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE);
    expectRead<ViReal64>("OutputChannel1", 1250001, ":SOUR1:VOLT?", "5", 5.0);
}

TEST_F(AttributeFunctions, ANullValueIsReportedBeforeEverythingElse)
{
    const auto expectNull = [this](ViStatus status, const char* function) {
        EXPECT_EQ(status, kNullPointer);
        EXPECT_EQ(recorded(), (ErrorEntry{kNullPointer, std::string("Null pointer passed for function '") + function +
                                                            "', parameter 'AttributeValue'."}));
        EXPECT_EQ(calls().size(), 1U);
        IviSession_ClearError(vi);
        clearLog();
    };
    expectNull(KVX2800T_GetAttributeViInt32(vi, "?", 0, nullptr), "KVX2800T_GetAttributeViInt32");
    expectNull(KVX2800T_GetAttributeViReal64(vi, "?", 0, nullptr), "KVX2800T_GetAttributeViReal64");
    expectNull(KVX2800T_GetAttributeViBoolean(vi, "?", 0, nullptr), "KVX2800T_GetAttributeViBoolean");
}

TEST_F(AttributeFunctions, OneChannelIsNeeded)
{
    const std::string single =
        "Only a single repeated capability identifier can be specified for the current operation.";
    const std::string none =
        "No selector was specified for repeated capability 'OutputChannel'.  The repeated capability identifier can be "
        "null or empty only when there is exactly one physical name defined.  Repeated capability 'OutputChannel' has "
        "6 "
        "physical names defined.";
    expectRefusal<ViReal64>("OutputChannel1-2", 1250001, code(0xBFFA0066), single);
    expectRefusal<ViBoolean>("OutputChannel1,OutputChannel2", 1250006, code(0xBFFA0066), single);
    expectRefusal<ViReal64>("", 1250005, code(0xBFFA0044), none);
    expectRefusal<ViInt32>(nullptr, 1250004, code(0xBFFA0044), none);
    expectRefusal<ViReal64>("CH7", 1250001, code(0xBFFA0067),
                            "The identifier 'CH7' is not defined for repeated capability 'OutputChannel'.");
}

TEST_F(AttributeFunctions, AFailureIsRecordedOnceAndLeavesTheValue)
{
    for (const char* function : {"viWrite", "viRead"}) {
        failCall(function, VI_ERROR_TMO);
        clearLog();
        ViReal64 value = 99;
        EXPECT_EQ(get("OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, value), kIoError);
        EXPECT_EQ(value, 99);
        EXPECT_EQ(recorded(), (ErrorEntry{kIoError, "I/O error."}));
        EXPECT_EQ(timesRecorded(), 1U);
        clearFailures();
        IviSession_ClearError(vi);
    }
}

TEST_F(AttributeFunctions, AnUnreadableNumberLeavesAsAnException)
{
    ViReal64 value = 99;
    answer(":SOUR1:VOLT?", "volts");
    expectException<std::invalid_argument>(vi, "invalid stod argument",
                                           [&] { get("OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, value); });
    answer(":SOUR1:CURR?", "1e999");
    expectException<std::out_of_range>(vi, "stod argument out of range",
                                       [&] { get("OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT, value); });
    EXPECT_EQ(value, 99);
}

TEST_F(AttributeFunctions, AnUnreadableSwitchLeavesAsAnException)
{
    ViBoolean enabled = 99;
    ViInt32 behavior = 99;
    answer(":OUTP:STAT? CH1", "maybe");
    expectException<std::invalid_argument>(vi, "Visa::parseBool Unknown ret:maybe",
                                           [&] { get("OutputChannel1", KVX2800T_ATTR_OUTPUT_ENABLED, enabled); });
    answer(":SOUR1:CURR:PROT:STAT?", "2");
    expectException<std::invalid_argument>(vi, "Visa::parseBool Unknown ret:2", [&] {
        get("OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, behavior);
    });
    EXPECT_EQ(enabled, 99);
    EXPECT_EQ(behavior, 99);
}

TEST_F(AttributeFunctions, AnEmptyReplyIsNoNumber)
{
    ViReal64 value = 99;
    answer(":SOUR1:VOLT?", "");
    expectException<std::invalid_argument>(vi, "invalid stod argument",
                                           [&] { get("OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, value); });
}

TEST_F(AttributeFunctions, ASimulatedInstrumentAnswersWithoutIo)
{
    KVX2800T_close(vi);
    open("Simulate=1");
    ViReal64 volts = -1;
    EXPECT_EQ(get("OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, volts), VI_SUCCESS);
    EXPECT_GE(volts, 0.0);
    EXPECT_LE(volts, 16.0);
    ViInt32 behavior = 99;
    EXPECT_EQ(get("OutputChannel3", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, behavior), VI_SUCCESS);
    EXPECT_THAT(behavior, testing::AnyOf(0, 1));
    EXPECT_THAT(calls("vi"), IsEmpty());
}

} // namespace
