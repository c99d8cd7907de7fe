#include "instrument/kvx2800t.h"

#include "scripted_connection.h"
#include "thrown.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using kvxtest::kInvalidKey;
using kvxtest::portOn;
using kvxtest::ScriptedConnection;
using kvxtest::throwsExactly;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace TSRO;

constexpr ViStatus kWarning = 0x3FFF0084;
constexpr ViStatus kTermChar = 0x3FFF0005;
constexpr ViStatus kTimedOut = statusCode(0xBFFF0015);
constexpr ViStatus kNoConnection = statusCode(0xBFFF000E);

class KVX2800TTest : public testing::Test
{
public:
    std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
    KVX2800T instrument{portOn(connection)};
    KVX2800T unconnected;
};

// ---- Settings

struct Setting
{
    std::string name;
    std::function<ViStatus(InstBase&)> run;
    std::string line;
};

class EverySetting : public KVX2800TTest, public testing::WithParamInterface<Setting>
{
};

TEST_P(EverySetting, SendsOneLine)
{
    EXPECT_EQ(GetParam().run(instrument), 0);
    EXPECT_THAT(connection->written, ElementsAre(GetParam().line));
    EXPECT_EQ(connection->reads, 0);
}

TEST_P(EverySetting, TakesAWarningForSuccess)
{
    connection->writeStatus = kWarning;
    EXPECT_EQ(GetParam().run(instrument), 0);
}

TEST_P(EverySetting, IsAnIoErrorWhenTheWriteFails)
{
    connection->writeStatus = kTimedOut;
    EXPECT_EQ(GetParam().run(instrument), kIoError);
    EXPECT_THAT(connection->written, ElementsAre(GetParam().line));
}

TEST_P(EverySetting, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(GetParam().run(unconnected), kIoError);
}

TEST_P(EverySetting, IsAnIoErrorAfterClose)
{
    ASSERT_GE(instrument.close(), 0);
    EXPECT_EQ(GetParam().run(instrument), kIoError);
    EXPECT_THAT(connection->written, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Operations, EverySetting,
    testing::Values(
        Setting{"ClearStatus", [](InstBase& i) { return i.clearStatus(); }, "*CLS"},
        Setting{"Reset", [](InstBase& i) { return i.reset(); }, "*RST"},
        Setting{"SourceModeNormal", [](InstBase& i) { return i.setSourceMode(SourceMode::Normal); },
                ":SOUR:Mode NORMAL"},
        Setting{"SourceModeSeries", [](InstBase& i) { return i.setSourceMode(SourceMode::Series); }, ":SOUR:Mode SER"},
        Setting{"SourceModeParallel", [](InstBase& i) { return i.setSourceMode(SourceMode::Parallel); },
                ":SOUR:Mode PARA"},
        Setting{"VoltageLevel", [](InstBase& i) { return i.setVoltageLevel(3, 5.0); }, ":SOUR3:VOLT 5.000000"},
        Setting{"VoltageLevelOfTheSeries", [](InstBase& i) { return i.setVoltageLevel(5, 12.0); },
                ":SOUR5:VOLT 12.000000"},
        Setting{"CurrentLevel", [](InstBase& i) { return i.setCurrentLevel(4, 2.5); }, ":SOUR4:CURR 2.500000"},
        Setting{"CurrentProtectionLevel", [](InstBase& i) { return i.setCurrentProtectionLevel(1, 2.5); },
                ":SOUR1:CURR:PROT 2.500000"},
        Setting{"CurrentProtectionOn", [](InstBase& i) { return i.setCurrentProtectionEnabled(1, true); },
                ":SOUR1:CURR:PROT:STAT ON"},
        Setting{"CurrentProtectionOff", [](InstBase& i) { return i.setCurrentProtectionEnabled(6, false); },
                ":SOUR6:CURR:PROT:STAT OFF"},
        Setting{"OutputOn", [](InstBase& i) { return i.setOutputEnabled(1, true); }, ":OUTP:STAT CH1,ON"},
        Setting{"OutputOfTheSeriesOff", [](InstBase& i) { return i.setOutputEnabled(5, false); },
                ":OUTP:STAT SER,OFF"}),
    [](const testing::TestParamInfo<Setting>& setting) { return setting.param.name; });

TEST_F(KVX2800TTest, SendsNothingForASourceModeThatThereIsNot)
{
    EXPECT_TRUE(
        throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setSourceMode(static_cast<SourceMode>(3)); }));
    EXPECT_TRUE(
        throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setSourceMode(static_cast<SourceMode>(-1)); }));
    EXPECT_THAT(connection->written, IsEmpty());
}

TEST_F(KVX2800TTest, SendsNothingForAChannelWithoutAName)
{
    bool enabled = true;
    for (const ViInt32 channel : {0, 7, -1}) {
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setOutputEnabled(channel, true); }));
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.outputEnabled(channel, enabled); }));
    }
    EXPECT_TRUE(enabled);
    EXPECT_THAT(connection->written, IsEmpty());
}

TEST_F(KVX2800TTest, SendsAnyChannelNumberInAHeader)
{
    double amperes = 0;
    ViInt32 bits = 0;
    connection->answer("1");
    connection->answer("1");
    EXPECT_EQ(instrument.currentLevel(7, amperes), 0);
    EXPECT_EQ(instrument.questionableEvent(0, bits), 0);
    EXPECT_THAT(connection->written, ElementsAre(":SOUR7:CURR?", ":STATus:QUEStionable:INSTrument:ISUMmary0:EVENt?"));
}

// ---- Queries of one value

template <class Value>
struct Query
{
    std::string name;
    std::function<ViStatus(InstBase&, Value&)> run;
    std::string line;
    std::string reply;
    Value before;
    Value value;
};

/// What every query has in common, whatever the type of its value.
class AnyQuery
{
public:
    AnyQuery() = default;
    AnyQuery(const AnyQuery&) = delete;
    AnyQuery& operator=(const AnyQuery&) = delete;
    virtual ~AnyQuery() = default;

    virtual const std::string& name() const = 0;
    virtual const std::string& line() const = 0;
    virtual const std::string& reply() const = 0;
    virtual ViStatus run(InstBase& instrument) = 0;
    virtual bool unchanged() const = 0;
    virtual bool read() const = 0;
};

template <class Value>
class QueryOf : public AnyQuery
{
public:
    explicit QueryOf(Query<Value> query) : query_(std::move(query)) {}

    const std::string& name() const override { return query_.name; }
    const std::string& line() const override { return query_.line; }
    const std::string& reply() const override { return query_.reply; }

    ViStatus run(InstBase& instrument) override
    {
        value_ = query_.before;
        return query_.run(instrument, value_);
    }

    bool unchanged() const override { return value_ == query_.before; }
    bool read() const override { return value_ == query_.value; }

private:
    Query<Value> query_;
    Value value_ = query_.before;
};

template <class Value>
std::shared_ptr<AnyQuery> query(Query<Value> query)
{
    return std::make_shared<QueryOf<Value>>(std::move(query));
}

class EveryOperationThatAsks : public KVX2800TTest, public testing::WithParamInterface<std::shared_ptr<AnyQuery>>
{
public:
    AnyQuery& asked = *GetParam();
};

TEST_P(EveryOperationThatAsks, SendsOneLineAndReadsOneReply)
{
    connection->answer(asked.reply());
    EXPECT_EQ(asked.run(instrument), 0);
    EXPECT_TRUE(asked.read());
    EXPECT_THAT(connection->written, ElementsAre(asked.line()));
    EXPECT_EQ(connection->reads, 1);
}

TEST_P(EveryOperationThatAsks, TakesCompletionCodesForSuccess)
{
    connection->writeStatus = kWarning;
    connection->answer(asked.reply(), kTermChar);
    EXPECT_EQ(asked.run(instrument), 0);
    EXPECT_TRUE(asked.read());
}

TEST_P(EveryOperationThatAsks, IsAnIoErrorWhenTheWriteFails)
{
    connection->writeStatus = kTimedOut;
    connection->answer(asked.reply());
    EXPECT_EQ(asked.run(instrument), kIoError);
    EXPECT_TRUE(asked.unchanged());
    EXPECT_EQ(connection->reads, 0);
}

TEST_P(EveryOperationThatAsks, IsAnIoErrorWhenTheReadFails)
{
    EXPECT_EQ(asked.run(instrument), kIoError);
    EXPECT_TRUE(asked.unchanged());
}

TEST_P(EveryOperationThatAsks, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(asked.run(unconnected), kIoError);
    EXPECT_TRUE(asked.unchanged());
}

INSTANTIATE_TEST_SUITE_P(
    Operations, EveryOperationThatAsks,
    testing::Values(
        query<ViInt32>({"EventStatus", [](InstBase& i, ViInt32& v) { return i.eventStatus(v); }, "*ESR?", "32", -7,
                        32}),
        query<ViInt32>({"QuestionableCondition", [](InstBase& i, ViInt32& v) { return i.questionableCondition(2, v); },
                        ":STATus:QUEStionable:INSTrument:ISUMmary2:CONDition?", "2", -7, 2}),
        query<ViInt32>({"QuestionableConditionOfTheSeries",
                        [](InstBase& i, ViInt32& v) { return i.questionableCondition(5, v); },
                        ":STATus:QUEStionable:INSTrument:ISUMmary5:CONDition?", "-5", -7, -5}),
        query<ViInt32>({"QuestionableEvent", [](InstBase& i, ViInt32& v) { return i.questionableEvent(2, v); },
                        ":STATus:QUEStionable:INSTrument:ISUMmary2:EVENt?", "1", -7, 1}),
        query<SourceMode>({"SourceMode", [](InstBase& i, SourceMode& v) { return i.sourceMode(v); }, ":SOUR:Mode?",
                           "ser", SourceMode::Parallel, SourceMode::Series}),
        query<double>({"VoltageLevel", [](InstBase& i, double& v) { return i.voltageLevel(3, v); }, ":SOUR3:VOLT?",
                       "5.000000", -7.5, 5.0}),
        query<double>({"CurrentLevel", [](InstBase& i, double& v) { return i.currentLevel(4, v); }, ":SOUR4:CURR?",
                       "2.5", -7.5, 2.5}),
        query<double>({"CurrentProtectionLevel", [](InstBase& i, double& v) { return i.currentProtectionLevel(1, v); },
                       ":SOUR1:CURR:PROT?", "2.5", -7.5, 2.5}),
        query<bool>({"CurrentProtectionEnabled", [](InstBase& i, bool& v) { return i.currentProtectionEnabled(1, v); },
                     ":SOUR1:CURR:PROT:STAT?", "1", false, true}),
        query<bool>({"OutputEnabled", [](InstBase& i, bool& v) { return i.outputEnabled(1, v); }, ":OUTP:STAT? CH1",
                     "ON", false, true}),
        query<bool>({"OutputOfTheSeriesEnabled", [](InstBase& i, bool& v) { return i.outputEnabled(5, v); },
                     ":OUTP:STAT? SER", "OFF", true, false}),
        query<ViInt32>({"ErrorCode",
                        [](InstBase& i, ViInt32& v) {
                            std::string message;
                            return i.nextError(v, message);
                        },
                        ":SYSTem:ERRor?", "-113,\"Undefined header\"", -7, -113}),
        query<std::string>({"ErrorMessage",
                            [](InstBase& i, std::string& v) {
                                ViInt32 code = 0;
                                return i.nextError(code, v);
                            },
                            ":SYSTem:ERRor?", "-113,\"Undefined header\"", "before", "\"Undefined header\""})),
    [](const testing::TestParamInfo<std::shared_ptr<AnyQuery>>& each) { return each.param->name(); });

// ---- Replies that cannot be read

TEST_F(KVX2800TTest, ReadsTheEventStatusAsALong)
{
    ViInt32 value = -7;
    for (const std::string reply : {"", "x"}) {
        connection->answer(reply);
        EXPECT_TRUE(
            throwsExactly<std::invalid_argument>("invalid stol argument", [&] { instrument.eventStatus(value); }));
    }
    connection->answer("2147483648");
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stol argument out of range", [&] { instrument.eventStatus(value); }));
    EXPECT_EQ(value, -7);
}

TEST_F(KVX2800TTest, ReadsTheQuestionableRegistersAsInts)
{
    ViInt32 value = -7;
    connection->answer("x");
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stoi argument",
                                                     [&] { instrument.questionableCondition(1, value); }));
    connection->answer("");
    EXPECT_TRUE(
        throwsExactly<std::invalid_argument>("invalid stoi argument", [&] { instrument.questionableEvent(1, value); }));
    connection->answer("-2147483649");
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stoi argument out of range",
                                                 [&] { instrument.questionableEvent(1, value); }));
    EXPECT_EQ(value, -7);
}

TEST_F(KVX2800TTest, ThrowsForALevelThatIsNoNumber)
{
    double value = -7.5;
    connection->answer("volts");
    EXPECT_TRUE(
        throwsExactly<std::invalid_argument>("invalid stod argument", [&] { instrument.voltageLevel(1, value); }));
    connection->answer("");
    EXPECT_TRUE(
        throwsExactly<std::invalid_argument>("invalid stod argument", [&] { instrument.currentLevel(1, value); }));
    connection->answer("1e999");
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stod argument out of range",
                                                 [&] { instrument.currentProtectionLevel(1, value); }));
    EXPECT_EQ(value, -7.5);
}

TEST_F(KVX2800TTest, ThrowsForAStateThatIsNeitherOnNorOff)
{
    bool enabled = true;
    connection->answer("2");
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("Visa::parseBool Unknown ret:2",
                                                     [&] { instrument.outputEnabled(1, enabled); }));
    connection->answer("");
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("Visa::parseBool Unknown ret:",
                                                     [&] { instrument.currentProtectionEnabled(1, enabled); }));
    EXPECT_TRUE(enabled);
}

TEST_F(KVX2800TTest, RefusesASourceModeThatThereIsNot)
{
    for (const char* reply : {"", "SERIES", "PAR", "SER\r", "0"}) {
        connection->answer(reply);
        SourceMode mode = SourceMode::Parallel;
        EXPECT_EQ(instrument.sourceMode(mode), kUnexpectedResponse) << reply;
        EXPECT_EQ(mode, SourceMode::Parallel);
    }
}

TEST_F(KVX2800TTest, ReadsStatesInFrontOfALineEnd)
{
    bool enabled = true;
    connection->answer("OFF\r\n");
    EXPECT_EQ(instrument.outputEnabled(1, enabled), 0);
    EXPECT_FALSE(enabled);
    connection->answer("ON\n");
    EXPECT_EQ(instrument.outputEnabled(1, enabled), 0);
    EXPECT_TRUE(enabled);
}

// ---- The error queue

class ErrorReply : public KVX2800TTest
{
public:
    void expectNothingRead(const std::string& reply)
    {
        connection->answer(reply);
        EXPECT_EQ(instrument.nextError(code, message), 0) << reply;
        EXPECT_EQ(code, -7) << reply;
        EXPECT_EQ(message, "before") << reply;
    }

    ViInt32 code = -7;
    std::string message = "before";
};

TEST_F(ErrorReply, OfTwoFieldsIsReadWithItsQuotes)
{
    connection->answer("-113,\"Undefined header\"");
    EXPECT_EQ(instrument.nextError(code, message), 0);
    EXPECT_EQ(code, -113);
    EXPECT_EQ(message, "\"Undefined header\"");
}

TEST_F(ErrorReply, KeepsBlanksAndLineEnds)
{
    connection->answer(" 0 , \"No error\"\r");
    EXPECT_EQ(instrument.nextError(code, message), 0);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(message, " \"No error\"\r");
}

TEST_F(ErrorReply, MayHaveAnEmptyMessage)
{
    connection->answer("5,");
    EXPECT_EQ(instrument.nextError(code, message), 0);
    EXPECT_EQ(code, 5);
    EXPECT_EQ(message, "");
}

TEST_F(ErrorReply, OfAnyOtherNumberOfFieldsIsIgnored)
{
    expectNothingRead("");
    expectNothingRead("-113");
    expectNothingRead("-113,\"Undefined header, near X\"");
    expectNothingRead(",,");
    expectNothingRead("x");
}

TEST_F(ErrorReply, WithoutACodeThrowsAndLeavesBothOutputs)
{
    for (const char* reply : {",\"message\"", "x,\"message\"", ","}) {
        connection->answer(reply);
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stoi argument",
                                                         [&] { instrument.nextError(code, message); }));
    }
    connection->answer("99999999999,\"message\"");
    EXPECT_TRUE(
        throwsExactly<std::out_of_range>("stoi argument out of range", [&] { instrument.nextError(code, message); }));
    EXPECT_EQ(code, -7);
    EXPECT_EQ(message, "before");
}

TEST_F(ErrorReply, ThatDoesNotComeLeavesBothOutputs)
{
    EXPECT_EQ(instrument.nextError(code, message), kIoError);
    EXPECT_EQ(code, -7);
    EXPECT_EQ(message, "before");
}

// ---- Raw commands

TEST_F(KVX2800TTest, RawCommandsAreSentAsGiven)
{
    connection->answer("a,b\r");
    std::string reply;
    EXPECT_EQ(instrument.writeRaw("*SAV 1"), 0);
    EXPECT_EQ(instrument.queryRaw("*OPT", reply), 0);
    EXPECT_EQ(reply, "a,b\r");
    EXPECT_THAT(connection->written, ElementsAre("*SAV 1", "*OPT"));
}

TEST_F(KVX2800TTest, RawCommandsReturnZeroWhateverTheConnectionReports)
{
    std::string reply = "before";
    connection->writeStatus = kTimedOut;
    EXPECT_EQ(instrument.writeRaw("*SAV 1"), 0);
    EXPECT_EQ(instrument.queryRaw("*OPT?", reply), 0);
    connection->writeStatus = kWarning;
    EXPECT_EQ(instrument.writeRaw("*SAV 1"), 0);
    EXPECT_EQ(instrument.queryRaw("*OPT?", reply), 0);
    EXPECT_EQ(unconnected.writeRaw("*SAV 1"), 0);
    EXPECT_EQ(unconnected.queryRaw("*OPT?", reply), 0);
    EXPECT_EQ(reply, "before");
}

TEST_F(KVX2800TTest, ARawQueryReturnsZeroForACompletionCode)
{
    std::string reply;
    connection->answer("5", kTermChar);
    EXPECT_EQ(instrument.queryRaw("?", reply), 0);
    EXPECT_EQ(reply, "5");
}

// ---- Closing

TEST_F(KVX2800TTest, CloseEndsTheConnectionOnce)
{
    EXPECT_TRUE(instrument.isOpen());
    EXPECT_EQ(instrument.close(), 0);
    EXPECT_FALSE(instrument.isOpen());
    EXPECT_EQ(instrument.close(), kNoConnection);
    EXPECT_EQ(connection->closes, 1);
}

TEST_F(KVX2800TTest, CloseThatFailsCanBeTriedAgain)
{
    connection->closeStatus = kTimedOut;
    EXPECT_EQ(instrument.close(), kTimedOut);
    EXPECT_TRUE(instrument.isOpen());
    connection->closeStatus = VI_SUCCESS;
    EXPECT_EQ(instrument.close(), 0);
    EXPECT_FALSE(instrument.isOpen());
}

TEST_F(KVX2800TTest, CloseWithoutAConnectionIsAnInvalidObject)
{
    EXPECT_FALSE(unconnected.isOpen());
    EXPECT_EQ(unconnected.close(), kNoConnection);
}

TEST_F(KVX2800TTest, HasAnEmptyIdentityUntilItIsIdentified)
{
    const auto identity = instrument.identity();
    ASSERT_NE(identity, nullptr);
    EXPECT_EQ(identity->manufacturer, "");
    EXPECT_EQ(identity->model, "");
    EXPECT_EQ(identity->serialNumber, "");
    EXPECT_EQ(identity->firmwareRevision, "");
    EXPECT_THAT(connection->written, IsEmpty());
}

} // namespace
