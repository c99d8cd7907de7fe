#include "instrument/kvx2800t.h"

#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/reply_oracle.h"
#include "tests/support/driver/scripted_connection.h"
#include "tests/support/driver/virtual_places.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/thrown.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using base::lowerCased;
using base::statusCode;
using kvxtest::expectedOutcome;
using kvxtest::Field;
using kvxtest::FieldKind;
using kvxtest::kInvalidKey;
using kvxtest::kNoConnection;
using kvxtest::kTermChar;
using kvxtest::kTimedOut;
using kvxtest::kWarning;
using kvxtest::Operation;
using kvxtest::Outcome;
using kvxtest::outcomeOf;
using kvxtest::placeOf;
using kvxtest::portOn;
using kvxtest::ScriptedConnection;
using kvxtest::throwsExactly;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace TSRO;

class KVX2800TTest : public testing::Test
{
public:
    std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
    KVX2800T instrument{portOn(connection)};
    KVX2800T unconnected;
};

std::string nameOf(const testing::TestParamInfo<Operation>& operation)
{
    return operation.param.name;
}

// ---- The operations and their order

TEST(OperationTable, HasEveryOperationThatExchangesMessages)
{
    std::set<int> expected;
    for (int number = 9; number <= 145; ++number)
        if (number != 12)
            expected.insert(number);
    std::set<int> numbers;
    for (const Operation& operation : kvxtest::operations())
        numbers.insert(operation.number);
    EXPECT_EQ(numbers, expected);
}

std::vector<std::string> variedLines(const std::string& name)
{
    std::vector<std::string> lines;
    for (const Operation& operation : kvxtest::operations())
        if (operation.name == name)
            for (const Operation::Variation& variation : operation.variations)
                lines.push_back(variation.line);
    return lines;
}

TEST(OperationTable, VariesEachArgumentOfTheFirstRowOfAnOperation)
{
    EXPECT_THAT(variedLines("setCurrentRate"),
                ElementsAre(":MEAS:CURR:RATE CH1,8000", ":MEAS:CURR:RATE CH2,8000", ":MEAS:CURR:RATE CH3,8000",
                            ":MEAS:CURR:RATE CH4,8000", ":MEAS:CURR:RATE SER,8000", ":MEAS:CURR:RATE PAR,8000",
                            ":MEAS:CURR:RATE CH2,62", ":MEAS:CURR:RATE CH2,4000", ":MEAS:CURR:RATE CH2,8000"));
    EXPECT_THAT(variedLines("setVoltageProtectionEnabled"),
                ElementsAre(":SOUR1:VOLT:PROT:STAT ON", ":SOUR2:VOLT:PROT:STAT ON", ":SOUR3:VOLT:PROT:STAT ON",
                            ":SOUR4:VOLT:PROT:STAT ON", ":SOUR5:VOLT:PROT:STAT ON", ":SOUR6:VOLT:PROT:STAT ON",
                            ":SOUR1:VOLT:PROT:STAT ON", ":SOUR1:VOLT:PROT:STAT OFF"));
    EXPECT_THAT(variedLines("setListTemplateObject"),
                ElementsAre(":LIST:TEMP:OBJ V,5.000000", ":LIST:TEMP:OBJ C,5.000000", ":LIST:TEMP:OBJ V,0.000000",
                            ":LIST:TEMP:OBJ V,-0.000000", ":LIST:TEMP:OBJ V,1.250000", ":LIST:TEMP:OBJ V,3.200000",
                            ":LIST:TEMP:OBJ V,-1.000000", ":LIST:TEMP:OBJ V,1000.000000"));
    EXPECT_THAT(variedLines("setListCycles"), ElementsAre(":LIST:CYCLE 0", ":LIST:CYCLE 1", ":LIST:CYCLE 512",
                                                          ":LIST:CYCLE -1", ":LIST:CYCLE 2147483647"));
    EXPECT_THAT(variedLines("questionableEvent"), ElementsAre(":STATus:QUEStionable:INSTrument:ISUMmary1:EVENt?",
                                                              ":STATus:QUEStionable:INSTrument:ISUMmary2:EVENt?",
                                                              ":STATus:QUEStionable:INSTrument:ISUMmary3:EVENt?",
                                                              ":STATus:QUEStionable:INSTrument:ISUMmary4:EVENt?",
                                                              ":STATus:QUEStionable:INSTrument:ISUMmary5:EVENt?",
                                                              ":STATus:QUEStionable:INSTrument:ISUMmary6:EVENt?"));
    EXPECT_THAT(variedLines("measurePower"), ElementsAre(":MEAS:POWE? CH1", ":MEAS:POWE? CH2", ":MEAS:POWE? CH3",
                                                         ":MEAS:POWE? CH4", ":MEAS:POWE? SER", ":MEAS:POWE? PAR"));
    EXPECT_THAT(variedLines("setListEnabledOff"), IsEmpty());
}

TEST(InstrumentOperations, StandInTheirOrder)
{
    if (!kvxtest::kPlacesAreKnown)
        GTEST_SKIP();
    using I = InstBase;
    const std::vector<std::size_t> places = {
        placeOf(&I::ioTimeout),
        placeOf(&I::setIoTimeout),
        placeOf(&I::open),
        placeOf(&I::close),
        placeOf(&I::isOpen),
        placeOf(&I::writeRaw),
        placeOf(&I::queryRaw),
        placeOf(&I::identity),
        placeOf(&I::clearStatus),
        placeOf(&I::reset),
        placeOf(&I::eventStatus),
        placeOf(&I::channelLimits),
        placeOf(&I::questionableCondition),
        placeOf(&I::questionableEvent),
        placeOf(&I::nextError),
        placeOf(&I::selectChannel),
        placeOf(&I::selectedChannel),
        placeOf(&I::setSourceMode),
        placeOf(&I::sourceMode),
        placeOf(&I::setBleEnabled),
        placeOf(&I::bleEnabled),
        placeOf(&I::setVoltageLevel),
        placeOf(&I::voltageLevel),
        placeOf(&I::setVoltageProtectionLevel),
        placeOf(&I::voltageProtectionLevel),
        placeOf(&I::setVoltageProtectionEnabled),
        placeOf(&I::voltageProtectionEnabled),
        placeOf(&I::setRemoteSenseEnabled),
        placeOf(&I::remoteSenseEnabled),
        placeOf(&I::setCurrentLevel),
        placeOf(&I::currentLevel),
        placeOf(&I::setCurrentProtectionLevel),
        placeOf(&I::currentProtectionLevel),
        placeOf(&I::setCurrentProtectionEnabled),
        placeOf(&I::currentProtectionEnabled),
        placeOf(&I::setCurrentProtectionDelay),
        placeOf(&I::currentProtectionDelay),
        placeOf(&I::setCurrentProtectionDelayMode),
        placeOf(&I::currentProtectionDelayMode),
        placeOf(&I::setOutputEnabled),
        placeOf(&I::outputEnabled),
        placeOf(&I::regulationState),
        placeOf(&I::setOvpValue),
        placeOf(&I::ovpValue),
        placeOf(&I::setOvpEnabled),
        placeOf(&I::ovpEnabled),
        placeOf(&I::setOcpValue),
        placeOf(&I::ocpValue),
        placeOf(&I::setOcpEnabled),
        placeOf(&I::ocpEnabled),
        placeOf(&I::setOcpDelay),
        placeOf(&I::ocpDelay),
        placeOf(&I::setOcpDelayMode),
        placeOf(&I::ocpDelayMode),
        placeOf(&I::setPowerOnState),
        placeOf(&I::powerOnState),
        placeOf(&I::setPairing),
        placeOf(&I::pairing),
        placeOf(&I::setOutputSenseEnabled),
        placeOf(&I::outputSenseEnabled),
        placeOf(&I::setTrackingEnabled),
        placeOf(&I::trackingEnabled),
        placeOf(&I::setOutputOffMode),
        placeOf(&I::outputOffMode),
        placeOf(&I::measureAll),
        placeOf(&I::measureVoltage),
        placeOf(&I::measureCurrent),
        placeOf(&I::measurePower),
        placeOf(&I::setCurrentRange),
        placeOf(&I::currentRange),
        placeOf(&I::setCurrentRate),
        placeOf(&I::currentRate),
        placeOf(&I::setListEnabled),
        placeOf(&I::listEnabled),
        placeOf(&I::listStatus),
        placeOf(&I::setListCycles),
        placeOf(&I::listCycles),
        placeOf(&I::setListEndState),
        placeOf(&I::listEndState),
        placeOf(&I::listGroupCount),
        placeOf(&I::insertListGroup),
        placeOf(&I::deleteListGroup),
        placeOf(&I::clearListGroups),
        placeOf(&I::setListGroup),
        placeOf(&I::listGroup),
        placeOf(&I::setListTemplateWaveform),
        placeOf(&I::listTemplateWaveform),
        placeOf(&I::setListTemplateObject),
        placeOf(&I::listTemplateObject),
        placeOf(&I::setListTemplateMaximum),
        placeOf(&I::listTemplateMaximum),
        placeOf(&I::setListTemplateMinimum),
        placeOf(&I::listTemplateMinimum),
        placeOf(&I::setListTemplatePeriod),
        placeOf(&I::listTemplatePeriod),
        placeOf(&I::setListTemplateInterval),
        placeOf(&I::listTemplateInterval),
        placeOf(&I::setListTemplateCycles),
        placeOf(&I::listTemplateCycles),
        placeOf(&I::setListTemplateInverted),
        placeOf(&I::listTemplateInverted),
        placeOf(&I::setListTemplatePulseWidth),
        placeOf(&I::listTemplatePulseWidth),
        placeOf(&I::setListTemplatePulseCount),
        placeOf(&I::listTemplatePulseCount),
        placeOf(&I::setListTemplateSymmetry),
        placeOf(&I::listTemplateSymmetry),
        placeOf(&I::setListTemplateStart),
        placeOf(&I::listTemplateStart),
        placeOf(&I::setListTemplateExpp),
        placeOf(&I::listTemplateExpp),
        placeOf(&I::setListTemplateExpr),
        placeOf(&I::listTemplateExpr),
        placeOf(&I::listTemplatePoints),
        placeOf(&I::constructList),
        placeOf(&I::setDelayEnabled),
        placeOf(&I::delayEnabled),
        placeOf(&I::delayStatus),
        placeOf(&I::setDelayCycles),
        placeOf(&I::delayCycles),
        placeOf(&I::setDelayEndState),
        placeOf(&I::delayEndState),
        placeOf(&I::delayGroupCount),
        placeOf(&I::insertDelayGroup),
        placeOf(&I::deleteDelayGroup),
        placeOf(&I::clearDelayGroups),
        placeOf(&I::setDelayGroup),
        placeOf(&I::delayGroup),
        placeOf(&I::setDelayGenerateMode),
        placeOf(&I::delayGenerateMode),
        placeOf(&I::setDelayGeneratePattern),
        placeOf(&I::delayGeneratePattern),
        placeOf(&I::setDelayGeneratePoints),
        placeOf(&I::delayGeneratePoints),
        placeOf(&I::setDelayOnTime),
        placeOf(&I::delayOnTime),
        placeOf(&I::setDelayOffTime),
        placeOf(&I::delayOffTime),
        placeOf(&I::setDelayBaseTime),
        placeOf(&I::delayBaseTime),
        placeOf(&I::setDelayTimeStep),
        placeOf(&I::delayTimeStep),
        placeOf(&I::constructDelay),
        placeOf(&I::setTriggerInputEnabled),
        placeOf(&I::triggerInputEnabled),
    };
    EXPECT_EQ(places.size(), 145U);
    kvxtest::expectConsecutive(places);
}

// ---- Settings

class EverySetting : public KVX2800TTest, public testing::WithParamInterface<Operation>
{
public:
    ViStatus run(InstBase& on)
    {
        kvxtest::Values none;
        return GetParam().run(on, none);
    }
};

TEST_P(EverySetting, SendsOneLine)
{
    EXPECT_EQ(run(instrument), 0);
    EXPECT_THAT(connection->written, ElementsAre(GetParam().line));
    EXPECT_EQ(connection->reads, 0);
}

TEST_P(EverySetting, SendsEveryValueOfItsArguments)
{
    for (const Operation::Variation& variation : GetParam().variations) {
        kvxtest::Values none;
        connection->written.clear();
        EXPECT_EQ(variation.run(instrument, none), 0) << variation.line;
        EXPECT_THAT(connection->written, ElementsAre(variation.line));
    }
}

TEST_P(EverySetting, TakesAWarningForSuccess)
{
    connection->writeStatus = kWarning;
    EXPECT_EQ(run(instrument), 0);
}

TEST_P(EverySetting, IsAnIoErrorWhenTheWriteFails)
{
    for (const ViStatus status : {kTimedOut, kNoConnection, ViStatus{-1}}) {
        connection->writeStatus = status;
        EXPECT_EQ(run(instrument), base::kErrorIo);
    }
    EXPECT_THAT(connection->written, ElementsAre(GetParam().line, GetParam().line, GetParam().line));
}

TEST_P(EverySetting, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(run(unconnected), base::kErrorIo);
    ASSERT_GE(instrument.close(), 0);
    EXPECT_EQ(run(instrument), base::kErrorIo);
    EXPECT_THAT(connection->written, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Operations, EverySetting, testing::ValuesIn(kvxtest::settings()), nameOf);

// ---- Channels without a name and values outside their tables

class EveryOperation : public KVX2800TTest, public testing::WithParamInterface<Operation>
{
};

TEST_P(EveryOperation, SendsNothingForAKeyThatThereIsNot)
{
    for (const auto& call : GetParam().invalidCalls) {
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { call(instrument); }));
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { call(unconnected); }));
    }
    EXPECT_THAT(connection->written, IsEmpty());
}

std::vector<Operation> operationsWithKeys()
{
    std::vector<Operation> chosen;
    for (const Operation& operation : kvxtest::operations())
        if (!operation.invalidCalls.empty())
            chosen.push_back(operation);
    return chosen;
}

INSTANTIATE_TEST_SUITE_P(Keys, EveryOperation, testing::ValuesIn(operationsWithKeys()), nameOf);

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
    double volts = -7.5;
    for (const ViInt32 channel : {0, 7, -1}) {
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.selectChannel(channel); }));
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setOutputEnabled(channel, true); }));
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.measureVoltage(channel, volts); }));
    }
    EXPECT_EQ(volts, -7.5);
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
    EXPECT_EQ(instrument.setVoltageProtectionLevel(7, 1.0), 0);
    EXPECT_THAT(connection->written, ElementsAre(":SOUR7:CURR?", ":STATus:QUEStionable:INSTrument:ISUMmary0:EVENt?",
                                                 ":SOUR7:VOLT:PROT 1.000000"));
}

// ---- Queries

class EveryQueryOperation : public KVX2800TTest, public testing::WithParamInterface<Operation>
{
public:
    /// Runs the query on a connection that answers with `reply`.
    Outcome runWith(const std::string& reply)
    {
        SCOPED_TRACE(reply);
        connection->answer(reply);
        return outcomeOf(query, instrument);
    }

    /// As runWith(), with what the reply is to bring.
    void expectAsDocumented(const std::string& reply)
    {
        EXPECT_EQ(runWith(reply), expectedOutcome(query, reply)) << testing::PrintToString(reply);
    }

    /// The sample reply's fields; one that is read as a whole is one field.
    std::vector<std::string> fields() const
    {
        std::vector<std::string> texts;
        const ReplyFields split(query.reply);
        if (query.fields.size() == 1)
            return {query.reply};
        for (std::size_t i = 0; i < split.count(); ++i)
            texts.emplace_back(split[i]);
        return texts;
    }

    /// The sample reply with one field exchanged.
    std::string replyWith(std::size_t index, const std::string& text) const
    {
        std::vector<std::string> texts = fields();
        texts[index] = text;
        return joined(texts, texts.size());
    }

    static std::string joined(const std::vector<std::string>& texts, std::size_t count)
    {
        std::string reply;
        for (std::size_t i = 0; i < count; ++i)
            reply += (i == 0 ? "" : ",") + texts[i];
        return reply;
    }

    /// The outputs when the first `count` fields have been stored.
    kvxtest::Values storedUpTo(std::size_t count) const
    {
        kvxtest::Values values = query.before;
        std::copy_n(query.results.begin(), count, values.begin());
        return values;
    }

    const Operation& query = GetParam();
};

TEST_P(EveryQueryOperation, SendsOneLineAndReadsOneReply)
{
    EXPECT_EQ(runWith(query.reply), (Outcome{.outputs = query.results}));
    EXPECT_THAT(connection->written, ElementsAre(query.line));
    EXPECT_EQ(connection->reads, 1);
}

TEST_P(EveryQueryOperation, AsksForEveryChannelAndGroup)
{
    for (const Operation::Variation& variation : query.variations) {
        Outcome outcome;
        connection->written.clear();
        connection->answer(query.reply);
        outcome.status = variation.run(instrument, outcome.outputs);
        EXPECT_EQ(outcome, (Outcome{.outputs = query.results})) << variation.line;
        EXPECT_THAT(connection->written, ElementsAre(variation.line));
    }
}

TEST_P(EveryQueryOperation, TakesCompletionCodesForSuccess)
{
    connection->writeStatus = kWarning;
    connection->answer(query.reply, kTermChar);
    EXPECT_EQ(outcomeOf(query, instrument), (Outcome{.outputs = query.results}));
}

TEST_P(EveryQueryOperation, IsAnIoErrorWhenTheWriteFails)
{
    connection->writeStatus = kTimedOut;
    EXPECT_EQ(runWith(query.reply), (Outcome{.status = base::kErrorIo, .outputs = query.before}));
    EXPECT_EQ(connection->reads, 0);
}

TEST_P(EveryQueryOperation, IsAnIoErrorWhenTheReadFails)
{
    for (const ViStatus status : {kTimedOut, kNoConnection, ViStatus{-1}}) {
        connection->answer(query.reply, status);
        EXPECT_EQ(outcomeOf(query, instrument), (Outcome{.status = base::kErrorIo, .outputs = query.before}));
    }
}

TEST_P(EveryQueryOperation, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(outcomeOf(query, unconnected), (Outcome{.status = base::kErrorIo, .outputs = query.before}));
    ASSERT_GE(instrument.close(), 0);
    EXPECT_EQ(outcomeOf(query, instrument), (Outcome{.status = base::kErrorIo, .outputs = query.before}));
    EXPECT_THAT(connection->written, IsEmpty());
}

/// What the first field of a query does when it cannot be read.
Outcome unreadable(const Operation& query, const std::string& text)
{
    Outcome outcome{.outputs = query.before};
    switch (query.fields.front().kind) {
    case FieldKind::Boolean:
        outcome.thrown = "std::invalid_argument: Visa::parseBool Unknown ret:" + text;
        break;
    case FieldKind::Number:
        outcome.thrown = "std::invalid_argument: invalid stod argument";
        break;
    case FieldKind::Integer:
        outcome.thrown = "std::invalid_argument: invalid stoi argument";
        break;
    case FieldKind::Long:
        outcome.thrown = "std::invalid_argument: invalid stol argument";
        break;
    case FieldKind::Keyword:
        outcome.status = base::kErrorUnexpectedResponse;
        break;
    case FieldKind::Text:
        ADD_FAILURE() << "no reply begins with a text";
    }
    return outcome;
}

TEST_P(EveryQueryOperation, StoresNothingOfAReplyThatBeginsWithSomethingElse)
{
    for (const std::string text : {"x", "-", "\r", "?1"})
        EXPECT_EQ(runWith(replyWith(0, text)), unreadable(query, text)) << testing::PrintToString(text);
}

TEST_P(EveryQueryOperation, ReadsACutReplyAsFarAsItGoes)
{
    for (std::size_t length = 0; length < query.reply.size(); ++length)
        expectAsDocumented(query.reply.substr(0, length));
}

TEST_P(EveryQueryOperation, ReadsFurtherFieldsAsDocumented)
{
    for (const char* further : {",", ",7", ",7,x"})
        expectAsDocumented(query.reply + further);
    expectAsDocumented("," + query.reply);
}

TEST_P(EveryQueryOperation, ReadsBlanksAsDocumented)
{
    const std::vector<std::string> texts = fields();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        expectAsDocumented(replyWith(i, " " + texts[i]));
        expectAsDocumented(replyWith(i, texts[i] + " "));
        expectAsDocumented(replyWith(i, "\t" + texts[i]));
        expectAsDocumented(replyWith(i, " "));
    }
}

TEST_P(EveryQueryOperation, ReadsLineEndsAsDocumented)
{
    for (const char* end : {"\r", "\n", "\r\n"})
        expectAsDocumented(query.reply + end);
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryOperation, testing::ValuesIn(kvxtest::queries()), nameOf);

template <class Predicate>
auto queriesThat(Predicate predicate)
{
    std::vector<Operation> chosen;
    std::copy_if(kvxtest::queries().begin(), kvxtest::queries().end(), std::back_inserter(chosen), predicate);
    return testing::ValuesIn(chosen);
}

bool isOfOneField(const Operation& query)
{
    return query.fields.size() == 1;
}

// The error queue's reply is all or nothing; its tests are further down.
bool isOfSeveralFields(const Operation& query)
{
    return query.fields.size() > 1 && query.name != "nextError";
}

bool isNumeric(const Field& field)
{
    return field.kind == FieldKind::Number || field.kind == FieldKind::Integer || field.kind == FieldKind::Long;
}

class EveryQueryOfOneField : public EveryQueryOperation
{
};

TEST_P(EveryQueryOfOneField, FailsForAnEmptyReply)
{
    EXPECT_EQ(runWith(""), unreadable(query, ""));
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryOfOneField, queriesThat(isOfOneField), nameOf);

class EveryQueryOfSeveralFields : public EveryQueryOperation
{
};

TEST_P(EveryQueryOfSeveralFields, KeepsTheFieldsBeforeTheFirstThatIsMissing)
{
    for (std::size_t count = 0; count < query.fields.size(); ++count) {
        const Outcome missing{.thrown = "std::out_of_range: invalid vector subscript", .outputs = storedUpTo(count)};
        EXPECT_EQ(runWith(joined(fields(), count)), missing);
    }
}

TEST_P(EveryQueryOfSeveralFields, KeepsTheFieldsBeforeTheFirstThatCannotBeRead)
{
    for (std::size_t i = 0; i < query.fields.size(); ++i) {
        const Outcome outcome = runWith(replyWith(i, "x"));
        EXPECT_TRUE(!outcome.thrown.empty() || outcome.status == base::kErrorUnexpectedResponse);
        EXPECT_EQ(outcome.outputs, storedUpTo(i));
    }
}

TEST_P(EveryQueryOfSeveralFields, IgnoresFurtherFields)
{
    EXPECT_EQ(runWith(query.reply + ",7"), (Outcome{.outputs = query.results}));
    EXPECT_EQ(runWith(query.reply + ",,x"), (Outcome{.outputs = query.results}));
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryOfSeveralFields, queriesThat(isOfSeveralFields), nameOf);

class EveryQueryWithANumber : public EveryQueryOperation
{
};

TEST_P(EveryQueryWithANumber, ThrowsForOneThatIsTooLarge)
{
    for (std::size_t i = 0; i < query.fields.size(); ++i) {
        if (!isNumeric(query.fields[i]))
            continue;
        const bool isReal = query.fields[i].kind == FieldKind::Number;
        const std::string conversion = isReal ? "stod" : query.fields[i].kind == FieldKind::Long ? "stol" : "stoi";
        const Outcome expected{.thrown = "std::out_of_range: " + conversion + " argument out of range",
                               .outputs = storedUpTo(i)};
        EXPECT_EQ(runWith(replyWith(i, isReal ? "-1e999" : "2147483648")), expected);
    }
}

TEST_P(EveryQueryWithANumber, IgnoresWhatFollowsIt)
{
    for (std::size_t i = 0; i < query.fields.size(); ++i)
        if (isNumeric(query.fields[i])) {
            EXPECT_EQ(runWith(replyWith(i, " " + fields()[i] + " V\r")), (Outcome{.outputs = query.results}));
        }
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryWithANumber, queriesThat([](const Operation& query) {
                             return std::any_of(query.fields.begin(), query.fields.end(), isNumeric);
                         }),
                         nameOf);

class EveryQueryThatBeginsWithAKeyword : public EveryQueryOperation
{
};

TEST_P(EveryQueryThatBeginsWithAKeyword, ReadsEveryKeywordOfItsTableWhateverTheLetterCase)
{
    const Field& first = query.fields.front();
    for (const auto& [keyword, value] : first.keywords) {
        kvxtest::Values stored = query.results;
        stored.front() = value;
        EXPECT_EQ(runWith(replyWith(0, keyword)), (Outcome{.outputs = stored})) << keyword;
        EXPECT_EQ(runWith(replyWith(0, lowerCased(keyword))), (Outcome{.outputs = stored})) << keyword;
        EXPECT_EQ(runWith(replyWith(0, keyword + "X")), unreadable(query, keyword + "X")) << keyword;
    }
}

/// The words that the replies of all queries begin with.
std::set<std::string> wordsOfAllTables()
{
    std::set<std::string> words = {"ON", "D1", "D2", "D3", "D4"};
    for (const Operation& query : kvxtest::queries())
        for (const auto& [keyword, value] : query.fields.front().keywords)
            words.insert(keyword);
    return words;
}

TEST_P(EveryQueryThatBeginsWithAKeyword, ReadsNoWordOfAnotherTable)
{
    std::set<std::string> words = wordsOfAllTables();
    for (const auto& [keyword, value] : query.fields.front().keywords)
        words.erase(keyword);
    for (const std::string& word : words)
        EXPECT_EQ(runWith(replyWith(0, word)), unreadable(query, word)) << word;
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryThatBeginsWithAKeyword, queriesThat([](const Operation& query) {
                             return query.fields.front().kind == FieldKind::Keyword;
                         }),
                         nameOf);

class EveryQueryThatBeginsWithABoolean : public EveryQueryOperation
{
};

TEST_P(EveryQueryThatBeginsWithABoolean, ReadsOnAndOffInEitherSpelling)
{
    for (const bool on : {true, false}) {
        kvxtest::Values stored = query.results;
        stored.front() = on;
        EXPECT_EQ(runWith(replyWith(0, on ? "ON" : "OFF")), (Outcome{.outputs = stored}));
        EXPECT_EQ(runWith(replyWith(0, on ? "1" : "0")), (Outcome{.outputs = stored}));
    }
    for (const char* text : {"on", "2", "ONOFF", "10"})
        EXPECT_EQ(runWith(replyWith(0, text)), unreadable(query, text));
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryQueryThatBeginsWithABoolean, queriesThat([](const Operation& query) {
                             return query.fields.front().kind == FieldKind::Boolean;
                         }),
                         nameOf);

// ---- Replies of several fields, by the byte

TEST_F(KVX2800TTest, MeasuresAllOfAShortReplyAsFarAsItGoes)
{
    double volts = -1.0;
    double amperes = -2.0;
    double watts = -3.0;
    connection->answer("5.000,1.200");
    EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid vector subscript",
                                                 [&] { instrument.measureAll(4, volts, amperes, watts); }));
    EXPECT_EQ(volts, 5.0);
    EXPECT_EQ(amperes, 1.2);
    EXPECT_EQ(watts, -3.0);
}

TEST_F(KVX2800TTest, StoresNothingBehindARunStateThatThereIsNot)
{
    auto state = ListRunState::Paused;
    double seconds = -1.0;
    ViInt32 group = -2;
    ViInt32 cycles = -3;
    connection->answer("HALTED,1.5,2,7");
    EXPECT_EQ(instrument.listStatus(state, seconds, group, cycles), base::kErrorUnexpectedResponse);
    EXPECT_EQ(state, ListRunState::Paused);
    EXPECT_EQ(seconds, -1.0);
    EXPECT_EQ(group, -2);
    EXPECT_EQ(cycles, -3);
}

TEST_F(KVX2800TTest, NamesOnlyTheFieldThatIsNeitherOnNorOff)
{
    bool on = true;
    double seconds = -1.0;
    connection->answer("X,2");
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("Visa::parseBool Unknown ret:X",
                                                     [&] { instrument.delayGroup(2, on, seconds); }));
    EXPECT_TRUE(on);
    EXPECT_EQ(seconds, -1.0);
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
    EXPECT_EQ(instrument.nextError(code, message), base::kErrorIo);
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

TEST_F(KVX2800TTest, SwitchesAllOutputsOffByARawCommand)
{
    EXPECT_EQ(instrument.writeRaw(kAllOutputsOff), 0);
    EXPECT_THAT(connection->written, ElementsAre(":OUTPut:STATe ALL,OFF"));
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

TEST_F(KVX2800TTest, CloseReturnsTheWarningThatItEndedWith)
{
    connection->closeStatus = kWarning;
    EXPECT_EQ(instrument.close(), kWarning);
    EXPECT_FALSE(instrument.isOpen());
    EXPECT_EQ(instrument.close(), kNoConnection);
    EXPECT_EQ(connection->closes, 1);
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
