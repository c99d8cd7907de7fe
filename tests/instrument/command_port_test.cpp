#include "instrument/command_port.h"

#include "tests/support/driver/scripted_connection.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"
#include "tests/support/thrown.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using base::statusCode;
using kvxtest::kInvalidKey;
using kvxtest::kNoConnection;
using kvxtest::kTermChar;
using kvxtest::kTimedOut;
using kvxtest::kWarning;
using kvxtest::portOn;
using kvxtest::ScriptedConnection;
using kvxtest::throwsExactly;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace TSRO;

constexpr ViStatus kMaxCount = 0x3FFF0006;

static_assert(base::kErrorIo == statusCode(0xBFFA4214));
static_assert(base::kErrorValueOutOfRange == statusCode(0xBFFA4217));
static_assert(base::kErrorUnexpectedResponse == statusCode(0xBFFA0059));

class CommandPortTest : public testing::Test
{
public:
    CommandPortTest() { kvxtest::reset(); }

    std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
    CommandPort port = portOn(connection);
    CommandPort unconnected;
};

// ---- write and query: the connection's own status

TEST_F(CommandPortTest, WriteSendsTheCommandAsGiven)
{
    EXPECT_EQ(port.write(":OUTP:STAT CH1,ON\n"), 0);
    EXPECT_EQ(port.write(""), 0);
    EXPECT_THAT(connection->written, ElementsAre(":OUTP:STAT CH1,ON\n", ""));
    EXPECT_EQ(connection->reads, 0);
}

TEST_F(CommandPortTest, WriteReturnsTheStatusOfTheConnection)
{
    for (const ViStatus status : {VI_SUCCESS, kWarning, kTimedOut}) {
        connection->writeStatus = status;
        EXPECT_EQ(port.write("*CLS"), status);
    }
}

TEST_F(CommandPortTest, WriteWithoutAConnectionIsAnInvalidObject)
{
    EXPECT_EQ(unconnected.write("*CLS"), kNoConnection);
}

TEST_F(CommandPortTest, QuerySendsTheCommandAsGivenAndReadsOnce)
{
    connection->answer("a,b\r");
    connection->answer("next");
    std::string reply;
    EXPECT_EQ(port.query(":X", reply), 0);
    EXPECT_EQ(reply, "a,b\r");
    EXPECT_THAT(connection->written, ElementsAre(":X"));
    EXPECT_EQ(connection->reads, 1);
}

TEST_F(CommandPortTest, QueryReturnsTheStatusOfTheRead)
{
    for (const ViStatus status : {VI_SUCCESS, kTermChar, kMaxCount}) {
        connection->answer("5", status);
        std::string reply;
        EXPECT_EQ(port.query("?", reply), status);
        EXPECT_EQ(reply, "5");
    }
}

TEST_F(CommandPortTest, QueryReadsAfterAWriteWithAWarning)
{
    connection->writeStatus = kWarning;
    connection->answer("5");
    std::string reply;
    EXPECT_EQ(port.query("?", reply), 0);
    EXPECT_EQ(reply, "5");
}

TEST_F(CommandPortTest, QueryDoesNotReadWhenItsWriteFails)
{
    connection->writeStatus = kTimedOut;
    connection->answer("5");
    std::string reply = "before";
    EXPECT_EQ(port.query("?", reply), kTimedOut);
    EXPECT_EQ(reply, "before");
    EXPECT_EQ(connection->reads, 0);
}

TEST_F(CommandPortTest, QueryLeavesTheReplyWhenItsReadFailsOrBringsNothing)
{
    std::string reply = "before";
    EXPECT_EQ(port.query("?", reply), kTimedOut);
    EXPECT_EQ(reply, "before");
    connection->answer("");
    EXPECT_EQ(port.query("?", reply), 0);
    EXPECT_EQ(reply, "before");
}

TEST_F(CommandPortTest, QueryWithoutAConnectionIsAnInvalidObject)
{
    std::string reply = "before";
    EXPECT_EQ(unconnected.query("?", reply), kNoConnection);
    EXPECT_EQ(reply, "before");
}

// ---- Typed primitives that send

struct Send
{
    std::string name;
    std::function<ViStatus(CommandPort&)> run;
    std::string line;
};

class EverySend : public CommandPortTest, public testing::WithParamInterface<Send>
{
};

TEST_P(EverySend, SendsOneLineAndReadsNothing)
{
    EXPECT_EQ(GetParam().run(port), 0);
    EXPECT_THAT(connection->written, ElementsAre(GetParam().line));
    EXPECT_EQ(connection->reads, 0);
}

TEST_P(EverySend, IsAnIoErrorWhenTheWriteFails)
{
    for (const ViStatus status : {kTimedOut, kNoConnection, ViStatus{-1}}) {
        connection->writeStatus = status;
        EXPECT_EQ(GetParam().run(port), base::kErrorIo);
    }
}

TEST_P(EverySend, TakesAWarningForSuccess)
{
    connection->writeStatus = kWarning;
    EXPECT_EQ(GetParam().run(port), 0);
}

TEST_P(EverySend, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(GetParam().run(unconnected), base::kErrorIo);
}

TEST_P(EverySend, SendsTheSameLineEveryTime)
{
    GetParam().run(port);
    port.send(":SOMETHING:ELSE:THAT:IS:QUITE:A:BIT:LONGER:THAN:ANY:COMMAND:OF:THE:INSTRUMENT");
    GetParam().run(port);
    ASSERT_EQ(connection->written.size(), 3U);
    EXPECT_EQ(connection->written[2], GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Primitives, EverySend,
    testing::Values(
        Send{"Bare", [](CommandPort& port) { return port.send("*CLS"); }, "*CLS"},
        Send{"Keyword", [](CommandPort& port) { return port.set(":SOUR:Mode", SourceMode::Series); }, ":SOUR:Mode SER"},
        Send{"Text", [](CommandPort& port) { return port.set(":X", std::string_view("ABC")); }, ":X ABC"},
        Send{"On", [](CommandPort& port) { return port.set(":SOUR:BLE", true); }, ":SOUR:BLE ON"},
        Send{"Off", [](CommandPort& port) { return port.set(":SOUR:BLE", false); }, ":SOUR:BLE OFF"},
        Send{"Number", [](CommandPort& port) { return port.set(":LIST:TEMP:MAXV", 10.0); },
             ":LIST:TEMP:MAXV 10.000000"},
        Send{"Integer", [](CommandPort& port) { return port.set(":LIST:CYCLE", ViInt32{10}); }, ":LIST:CYCLE 10"},
        Send{"Channel", [](CommandPort& port) { return port.set(":INST:SELE", ChannelName{5}); }, ":INST:SELE SER"},
        Send{"ChannelAndBoolean", [](CommandPort& port) { return port.set(":OUTP:STAT", ChannelName{2}, true); },
             ":OUTP:STAT CH2,ON"},
        Send{"ChannelAndNumber", [](CommandPort& port) { return port.set(":OUTP:OVP:VAL", ChannelName{6}, 12.5); },
             ":OUTP:OVP:VAL PAR,12.500000"},
        Send{"ChannelAndKeyword",
             [](CommandPort& port) { return port.set(":OUTP:PONS:STAT", ChannelName{1}, PowerOnState::LastOff); },
             ":OUTP:PONS:STAT CH1,LOFF"},
        Send{"FourArguments", [](CommandPort& port) { return port.set(":LIST:GROUP:PARA", ViInt32{3}, 5.0, 1.0, 0.1); },
             ":LIST:GROUP:PARA 3,5.000000,1.000000,0.100000"},
        Send{"SourceHeader",
             [](CommandPort& port) {
                 return port.set(Header::ofSource(":SOUR:CURR:PROT:DEL:MODE", 1), ProtectionDelayMode::Any);
             },
             ":SOUR1:CURR:PROT:DEL:MODE ANY"}),
    [](const testing::TestParamInfo<Send>& send) { return send.param.name; });

TEST_F(CommandPortTest, SendsNothingForAKeywordThatThereIsNot)
{
    EXPECT_TRUE(
        throwsExactly<std::out_of_range>(kInvalidKey, [&] { port.set(":SOUR:Mode", static_cast<SourceMode>(3)); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { port.set(":OUTP:STAT", ChannelName{0}, true); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] {
        bool on = false;
        port.getFor(":OUTP:STAT", ChannelName{7}, on);
    }));
    EXPECT_THAT(connection->written, IsEmpty());
}

TEST_F(CommandPortTest, ThrowsForAKeywordThatThereIsNotWithoutAConnectionToo)
{
    EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey,
                                                 [&] { unconnected.set(":SOUR:Mode", static_cast<SourceMode>(3)); }));
}

TEST_F(CommandPortTest, ComposesTheNextCommandAfreshAfterAnException)
{
    EXPECT_ANY_THROW(port.set(":OUTP:STAT", ChannelName{7}, true));
    EXPECT_EQ(port.set(":OUTP:STAT", ChannelName{1}, true), 0);
    EXPECT_THAT(connection->written, ElementsAre(":OUTP:STAT CH1,ON"));
}

// ---- Typed primitives that ask. Each is run with an output that holds `Before` and tells what it holds afterwards.

template <class Value>
struct Kind;

template <>
struct Kind<bool>
{
    static constexpr bool kBefore = true;
    static constexpr const char* kReply = "OFF";
    static constexpr bool kValue = false;
};

template <>
struct Kind<double>
{
    static constexpr double kBefore = -7.5;
    static constexpr const char* kReply = "12.5";
    static constexpr double kValue = 12.5;
};

template <>
struct Kind<ViInt32>
{
    static constexpr ViInt32 kBefore = -7;
    static constexpr const char* kReply = "32";
    static constexpr ViInt32 kValue = 32;
};

template <>
struct Kind<CurrentRate>
{
    static constexpr CurrentRate kBefore = CurrentRate::Rate62;
    static constexpr const char* kReply = "4k";
    static constexpr CurrentRate kValue = CurrentRate::Rate4000;
};

template <>
struct Kind<std::string>
{
    static constexpr const char* kBefore = "before";
    static constexpr const char* kReply = " a,b\r";
    static constexpr const char* kValue = " a,b\r";
};

template <class Value>
class EveryQuery : public CommandPortTest
{
public:
    using K = Kind<Value>;
    Value value{K::kBefore};
};

using Values = testing::Types<bool, double, ViInt32, CurrentRate, std::string>;
TYPED_TEST_SUITE(EveryQuery, Values, );

TYPED_TEST(EveryQuery, AppendsTheQuestionMarkAndParsesTheReply)
{
    this->connection->answer(TestFixture::K::kReply);
    EXPECT_EQ(this->port.get(":HEAD:ER", this->value), 0);
    EXPECT_EQ(this->value, TestFixture::K::kValue);
    EXPECT_THAT(this->connection->written, ElementsAre(":HEAD:ER?"));
    EXPECT_EQ(this->connection->reads, 1);
}

TYPED_TEST(EveryQuery, SendsAHeaderThatIsAQueryAlreadyAsItIs)
{
    this->connection->answer(TestFixture::K::kReply);
    EXPECT_EQ(this->port.get(":HEAD:ER?", this->value), 0);
    EXPECT_THAT(this->connection->written, ElementsAre(":HEAD:ER?"));
}

TYPED_TEST(EveryQuery, PutsTheChannelNameBehindTheQuestionMark)
{
    this->connection->answer(TestFixture::K::kReply);
    EXPECT_EQ(this->port.getFor(":OUTP:STAT", ChannelName{5}, this->value), 0);
    EXPECT_EQ(this->value, TestFixture::K::kValue);
    EXPECT_THAT(this->connection->written, ElementsAre(":OUTP:STAT? SER"));
}

TYPED_TEST(EveryQuery, PutsANumberBehindTheQuestionMark)
{
    this->connection->answer(TestFixture::K::kReply);
    EXPECT_EQ(this->port.getFor(":LIST:GROUP:PARA", ViInt32{3}, this->value), 0);
    EXPECT_THAT(this->connection->written, ElementsAre(":LIST:GROUP:PARA? 3"));
}

TYPED_TEST(EveryQuery, TakesCompletionCodesForSuccess)
{
    for (const ViStatus status : {kTermChar, kMaxCount, kWarning}) {
        this->value = TestFixture::K::kBefore;
        this->connection->writeStatus = kWarning;
        this->connection->answer(TestFixture::K::kReply, status);
        EXPECT_EQ(this->port.get(":HEAD:ER", this->value), 0);
        EXPECT_EQ(this->value, TestFixture::K::kValue);
    }
}

TYPED_TEST(EveryQuery, IsAnIoErrorWhenTheWriteFails)
{
    this->connection->writeStatus = kTimedOut;
    this->connection->answer(TestFixture::K::kReply);
    EXPECT_EQ(this->port.get(":HEAD:ER", this->value), base::kErrorIo);
    EXPECT_EQ(this->port.getFor(":HEAD:ER", ChannelName{1}, this->value), base::kErrorIo);
    EXPECT_EQ(this->value, TestFixture::K::kBefore);
    EXPECT_EQ(this->connection->reads, 0);
}

TYPED_TEST(EveryQuery, IsAnIoErrorWhenTheReadFails)
{
    EXPECT_EQ(this->port.get(":HEAD:ER", this->value), base::kErrorIo);
    EXPECT_EQ(this->port.getFor(":HEAD:ER", ChannelName{1}, this->value), base::kErrorIo);
    EXPECT_EQ(this->value, TestFixture::K::kBefore);
}

TYPED_TEST(EveryQuery, IsAnIoErrorWithoutAConnection)
{
    EXPECT_EQ(this->unconnected.get(":HEAD:ER", this->value), base::kErrorIo);
    EXPECT_EQ(this->unconnected.getFor(":HEAD:ER", ChannelName{1}, this->value), base::kErrorIo);
    EXPECT_EQ(this->value, TestFixture::K::kBefore);
}

TYPED_TEST(EveryQuery, DoesNotSeeTheReplyOfTheQueryBefore)
{
    this->connection->answer(TestFixture::K::kReply);
    this->connection->answer("");
    TypeParam first{TestFixture::K::kBefore};
    ASSERT_EQ(this->port.get(":HEAD:ER", first), 0);
    try {
        this->port.get(":HEAD:ER", this->value);
    } catch (const std::invalid_argument&) { // NOLINT(bugprone-empty-catch): an empty reply is none of the values
    }
    EXPECT_NE(this->value, TestFixture::K::kValue);
}

// ---- Replies that cannot be read

TEST_F(CommandPortTest, ThrowsForABooleanThatIsNone)
{
    for (const std::string reply : {"", "2", "on", "ONOFF\r"}) {
        connection->answer(reply);
        bool value = true;
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("Visa::parseBool Unknown ret:" + reply,
                                                         [&] { port.get(":X", value); }));
        EXPECT_TRUE(value);
    }
}

TEST_F(CommandPortTest, ThrowsForANumberThatIsNone)
{
    for (const char* reply : {"", "abc", "\r"}) {
        connection->answer(reply);
        connection->answer(reply);
        double number = -7.5;
        ViInt32 integer = -7;
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stod argument", [&] { port.get(":X", number); }));
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stoi argument", [&] { port.get(":X", integer); }));
        EXPECT_EQ(number, -7.5);
        EXPECT_EQ(integer, -7);
    }
}

TEST_F(CommandPortTest, ThrowsForANumberThatIsTooLarge)
{
    connection->answer("1e400");
    connection->answer("2147483648");
    double number = -7.5;
    ViInt32 integer = -7;
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stod argument out of range", [&] { port.get(":X", number); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stoi argument out of range", [&] { port.get(":X", integer); }));
    EXPECT_EQ(number, -7.5);
    EXPECT_EQ(integer, -7);
}

TEST_F(CommandPortTest, RefusesAKeywordThatThereIsNot)
{
    for (const char* reply : {"", "4K\r", "4K\n", " 4K", "4", "40000"}) {
        connection->answer(reply);
        CurrentRate rate = CurrentRate::Rate8000;
        EXPECT_EQ(port.get(":X", rate), base::kErrorUnexpectedResponse) << reply;
        EXPECT_EQ(rate, CurrentRate::Rate8000);
    }
    for (const char* reply : {"", "CH7", "CH1,CH2"}) {
        connection->answer(reply);
        ChannelName name{3};
        EXPECT_EQ(port.get(":INST:SELE?", name), base::kErrorUnexpectedResponse) << reply;
        EXPECT_EQ(name.channel, 3);
    }
}

TEST_F(CommandPortTest, ReadsChannelsByEitherName)
{
    const std::vector<std::pair<const char*, ViInt32>> names = {{"CH1", 1}, {"CH4", 4}, {"SER", 5},
                                                                {"ch5", 5}, {"Par", 6}, {"CH6", 6}};
    for (const auto& [reply, channel] : names) {
        connection->answer(reply);
        ChannelName name{0};
        EXPECT_EQ(port.get(":INST:SELE?", name), 0);
        EXPECT_EQ(name.channel, channel);
    }
}

TEST_F(CommandPortTest, ReadsValuesInFrontOfALineEnd)
{
    connection->answer("ON\r\n");
    connection->answer("12.5\r");
    connection->answer("32\r");
    bool on = false;
    double number = 0;
    ViInt32 integer = 0;
    EXPECT_EQ(port.get(":X", on), 0);
    EXPECT_EQ(port.get(":X", number), 0);
    EXPECT_EQ(port.get(":X", integer), 0);
    EXPECT_TRUE(on);
    EXPECT_EQ(number, 12.5);
    EXPECT_EQ(integer, 32);
}

// ---- The connection

TEST_F(CommandPortTest, IsOpenWhenItsConnectionIs)
{
    EXPECT_TRUE(port.isOpen());
    connection->open = false;
    EXPECT_FALSE(port.isOpen());
    EXPECT_FALSE(unconnected.isOpen());
}

TEST_F(CommandPortTest, CloseLetsGoOfTheConnection)
{
    EXPECT_GE(port.close(), 0);
    EXPECT_EQ(connection->closes, 1);
    EXPECT_EQ(connection.use_count(), 1);
    EXPECT_FALSE(port.isOpen());
    EXPECT_EQ(port.write("*CLS"), kNoConnection);
    EXPECT_EQ(port.send("*CLS"), base::kErrorIo);
    EXPECT_EQ(port.close(), kNoConnection);
    EXPECT_EQ(connection->closes, 1);
}

TEST_F(CommandPortTest, CloseWithAWarningLetsGoOfTheConnection)
{
    connection->closeStatus = kWarning;
    EXPECT_EQ(port.close(), kWarning);
    EXPECT_EQ(connection.use_count(), 1);
    EXPECT_EQ(port.close(), kNoConnection);
}

TEST_F(CommandPortTest, CloseThatFailsKeepsTheConnection)
{
    connection->closeStatus = kTimedOut;
    EXPECT_EQ(port.close(), kTimedOut);
    EXPECT_EQ(port.write("*CLS"), 0);
    connection->closeStatus = VI_SUCCESS;
    EXPECT_EQ(port.close(), 0);
    EXPECT_EQ(connection->closes, 2);
}

TEST_F(CommandPortTest, CloseWithoutAConnectionIsAnInvalidObject)
{
    EXPECT_EQ(unconnected.close(), kNoConnection);
    EXPECT_THAT(kvxtest::calls(), IsEmpty());
}

TEST_F(CommandPortTest, MessagesWithoutAConnectionAreAnInvalidObject)
{
    CommandPort none;
    std::array<ViByte, 4> buffer{};
    std::size_t count = 77;
    EXPECT_EQ(none.writeMessage("*TRG"), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(none.readMessage(buffer, count), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(none.connectionStatus(), VI_ERROR_INV_OBJECT);
}

TEST_F(CommandPortTest, ACloseDuringACallDoesNotFreeTheConnectionUnderIt)
{
    std::weak_ptr<ScriptedConnection> watched = connection;
    bool aliveAfterClose = false;
    connection->onWrite = [&] {
        port.close();
        aliveAfterClose = !watched.expired();
    };
    connection->answer("5");
    connection.reset();
    std::string reply;
    EXPECT_EQ(port.query("?", reply), 0);
    EXPECT_EQ(reply, "5");
    EXPECT_TRUE(aliveAfterClose);
    EXPECT_TRUE(watched.expired());
}

// ---- Time-out

TEST_F(CommandPortTest, HasATimeoutOfTwoSecondsForTheNextConnection)
{
    EXPECT_EQ(unconnected.ioTimeout(), 2000);
}

TEST_F(CommandPortTest, StoresTheTimeoutForTheNextConnection)
{
    EXPECT_EQ(unconnected.setIoTimeout(5000), 0);
    EXPECT_EQ(unconnected.ioTimeout(), 5000);
    EXPECT_THAT(kvxtest::calls(), IsEmpty());
}

TEST_F(CommandPortTest, HasTheTimeoutOfTheNextConnectionOnceItIsClosed)
{
    connection->open = false;
    ASSERT_EQ(port.setIoTimeout(5000), 0);
    ASSERT_EQ(port.close(), 0);
    EXPECT_EQ(port.ioTimeout(), 2000);
    EXPECT_EQ(port.setIoTimeout(7000), 0);
    EXPECT_EQ(port.ioTimeout(), 7000);
    EXPECT_EQ(connection->timeout(), 5000);
}

TEST_F(CommandPortTest, StoresTheTimeoutInAConnectionThatIsNotOpen)
{
    connection->open = false;
    EXPECT_EQ(port.setIoTimeout(5000), 0);
    EXPECT_EQ(port.ioTimeout(), 5000);
    EXPECT_EQ(connection->timeout(), 5000);
    EXPECT_THAT(kvxtest::calls(), IsEmpty());
}

} // namespace
