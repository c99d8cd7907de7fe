#include "instrument/fresh_replies.h"

#include "base/status_codes.h"
#include "instrument/command_port.h"
#include "instrument/kvx2800t.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace TSRO;

constexpr ViInt32 kTimeout = 2000;
constexpr const char* kIdentity = "Tessaro Instruments,KVX2833T,SN1,V2.34";

/// A connection in its own time to an instrument that answers late: the reply to a query leaves `delay` after it came,
/// one reply behind the other.
class LateInstrument : public InstLink::VisaIO
{
public:
    ViStatus write(std::string_view command) override
    {
        written.emplace_back(command);
        if (writeStatus < 0)
            return writeStatus;
        if (command.find('?') != std::string_view::npos && lost == 0)
            queue(command == "*IDN?" ? identity : "reply to " + std::string(command));
        else if (lost > 0)
            --lost;
        return VI_SUCCESS;
    }

    ViStatus read(std::string& reply) override
    {
        ++reads;
        timeouts.push_back(timeout());
        if (std::exchange(lacksMemory, false))
            throw std::bad_alloc();
        const ViStatus next = takeStatus();
        if (next < 0)
            return next;
        if (pending.empty() || pending.front().due > now + kTimeout) {
            now += kTimeout;
            return VI_ERROR_TMO;
        }
        now = std::max(now, pending.front().due);
        reply = pending.front().text;
        pending.pop_front();
        return next == VI_SUCCESS ? VI_SUCCESS_TERM_CHAR : next;
    }

    ViStatus close() override { return VI_SUCCESS; }
    bool isOpen() const override { return true; }
    bool startsAnew() const override { return isSocket; }

    ViStatus reopen() override
    {
        ++reopenings;
        if (reopenStatus >= 0) {
            readStatus = writeStatus = VI_SUCCESS;
            pending.clear();
        }
        return reopenStatus;
    }

    /// Lets a reply come that nobody has asked for.
    void queue(std::string text)
    {
        const long long due = std::max(now, pending.empty() ? 0 : pending.back().due) + delay;
        pending.push_back({due, std::move(text)});
    }

    struct Pending
    {
        long long due;
        std::string text;
    };

    std::string identity = kIdentity;
    long long now = 0;
    long long delay = 0;
    /// Queries that are to have no answer at all.
    int lost = 0;
    bool isSocket = false;
    ViStatus readStatus = VI_SUCCESS;
    /// In place of readStatus, for the reads to come: a failure, a completion code, or 0 for what would come anyway.
    std::deque<ViStatus> nextStatuses;
    ViStatus writeStatus = VI_SUCCESS;
    /// Whether there is none for the reply of the next read, which stays.
    bool lacksMemory = false;
    ViStatus reopenStatus = VI_SUCCESS;
    std::deque<Pending> pending;
    std::vector<std::string> written;
    int reads = 0;
    /// The time-out of each read.
    std::vector<ViInt32> timeouts;
    int reopenings = 0;

protected:
    ViStatus applyAttributes() override { return VI_SUCCESS; }

    ViStatus receive(std::span<ViByte> buffer, ViUInt32& count) override
    {
        std::string reply;
        const ViStatus status = read(reply);
        count = static_cast<ViUInt32>(std::min(reply.size(), buffer.size()));
        std::copy_n(reply.begin(), count, buffer.begin());
        return status;
    }

private:
    ViStatus takeStatus()
    {
        if (nextStatuses.empty())
            return readStatus;
        const ViStatus status = nextStatuses.front();
        nextStatuses.pop_front();
        return status;
    }
};

class FreshRepliesTest : public testing::TestWithParam<bool>
{
public:
    explicit FreshRepliesTest(bool isFresh = true)
    {
        instrument->isSocket = GetParam();
        port.configure({.freshReplies = isFresh});
        port.expect({"Tessaro Instruments", "KVX2833T", "SN1", "V2.34"});
    }

    /// The reply that a query gets; its status when it gets none.
    std::string ask(const std::string& query)
    {
        std::string reply;
        const ViStatus status = port.query(query, reply);
        return status < 0 ? "failed" : reply;
    }

    /// How often the instrument has been asked who it is.
    auto questions() const { return std::count(instrument->written.begin(), instrument->written.end(), "*IDN?"); }

    /// Makes the next exchange suspect.
    void loseReply()
    {
        instrument->lost = 1;
        EXPECT_EQ(ask("LOST?"), "failed");
    }

    std::shared_ptr<LateInstrument> instrument = std::make_shared<LateInstrument>();
    CommandPort port{InstLink::ConnectionHolder{instrument, {}}};
};

INSTANTIATE_TEST_SUITE_P(Connections, FreshRepliesTest, testing::Bool(),
                         [](const auto& isSocket) { return isSocket.param ? "Socket" : "Bus"; });

TEST_P(FreshRepliesTest, CostNothingWhileEveryExchangeSucceeds)
{
    EXPECT_EQ(ask("A?"), "reply to A?");
    EXPECT_EQ(port.write("B"), VI_SUCCESS);
    std::string text;
    EXPECT_EQ(port.get({"C"}, text), VI_SUCCESS);
    EXPECT_EQ(text, "reply to C?");
    EXPECT_EQ(ask("D?"), "reply to D?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "B", "C?", "D?"}));
    EXPECT_EQ(instrument->reads, 3);
    EXPECT_EQ(instrument->reopenings, 0);
}

TEST_P(FreshRepliesTest, NoReplyAnswersAnotherQueryHoweverLateTheInstrumentIs)
{
    for (long long delay = 0; delay <= 5 * kTimeout; delay += kTimeout / 20) {
        for (const long long later : {0LL, delay / 2, delay}) {
            instrument->delay = delay;
            for (int i = 0; i < 8; ++i) {
                const std::string query = "Q" + std::to_string(i) + "?";
                if (i == 4)
                    instrument->delay = later;
                const std::string reply = ask(query);
                EXPECT_TRUE(reply == "failed" || reply == "reply to " + query)
                    << query << ": " << reply << " " << delay;
            }
            // Well again, in the end.
            instrument->delay = 0;
            for (int i = 0; i < 3 && ask("R?") == "failed"; ++i)
                instrument->now += 100LL * kTimeout;
            EXPECT_EQ(ask("S?"), "reply to S?") << delay;
        }
    }
}

TEST_P(FreshRepliesTest, AReplyThatThereWasNoMemoryForAnswersNoOtherQuery)
{
    instrument->lacksMemory = true;
    EXPECT_THROW(ask("A?"), std::bad_alloc);
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(ask("C?"), "reply to C?");
}

TEST_P(FreshRepliesTest, ComeBackAfterALateReplyWithTheNextCommand)
{
    instrument->delay = kTimeout + 1;
    EXPECT_EQ(ask("A?"), "failed");
    instrument->delay = 0;
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(port.connectionStatus(), VI_SUCCESS_TERM_CHAR);
    EXPECT_EQ(ask("C?"), "reply to C?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "*IDN?", "B?", "C?"}));
    EXPECT_EQ(instrument->reopenings, GetParam() ? 1 : 0);
}

TEST_P(FreshRepliesTest, BringTheConnectionIntoStepBeforeACommandWithoutReplyToo)
{
    instrument->lost = 1;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(port.write("B"), VI_SUCCESS);
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "*IDN?", "B"}));
}

TEST_P(FreshRepliesTest, SendNoCommandWhileTheInstrumentDoesNotAnswer)
{
    instrument->lost = 1000;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(port.write("B"), VI_ERROR_TMO);
    EXPECT_EQ(port.connectionStatus(), VI_ERROR_TMO);
    EXPECT_EQ(std::count(instrument->written.begin(), instrument->written.end(), "B"), 0);
    EXPECT_EQ(questions(), GetParam() ? 1 : 5);
}

TEST_P(FreshRepliesTest, WaitLongerOnceQuestionsHaveStayedWithoutAnswer)
{
    instrument->lost = 1000;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(port.write("B"), VI_ERROR_TMO);
    EXPECT_EQ(instrument->reads, GetParam() ? 2 : 1 + 1 + 5);
    EXPECT_EQ(port.write("C"), VI_ERROR_TMO);
    EXPECT_EQ(instrument->reads, GetParam() ? 3 : 7 + 5 + 5);
    instrument->lost = 0;
    EXPECT_EQ(port.write("D"), VI_SUCCESS);
    EXPECT_EQ(instrument->reads, GetParam() ? 4 : 17 + 5 + 1);
}

TEST_P(FreshRepliesTest, SilenceBeginsAnewBehindAReply)
{
    instrument->lost = 1000;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(port.write("B"), VI_ERROR_TMO);
    instrument->lost = 0;
    instrument->delay = 3 * kTimeout + 1;
    instrument->queue("late");
    instrument->delay = 0;
    instrument->reads = 0;
    EXPECT_EQ(ask("C?"), "reply to C?");
    EXPECT_EQ(instrument->reads, GetParam() ? 1 + 1 : 3 + 1 + 5 + 1 + 1);
}

TEST_P(FreshRepliesTest, SilenceIsToldByATimeoutThatIsNeitherShortNorInfinite)
{
    const std::vector<std::pair<ViInt32, ViInt32>> timeouts = {
        {3000, 3000}, {100, 100}, {99, 100}, {0, 100}, {-1, 2000}};
    for (const auto& [own, settling] : timeouts) {
        instrument->setTimeout(own);
        instrument->timeouts.clear();
        loseReply();
        EXPECT_EQ(ask("B?"), "reply to B?");
        const auto expected = GetParam() ? std::vector{own, settling, own} : std::vector{own, settling, settling, own};
        EXPECT_EQ(instrument->timeouts, expected);
    }
}

TEST_P(FreshRepliesTest, ALinkThatFailsThriceInARowIsLostAndOpenedAgain)
{
    const ViStatus lost = VI_ERROR_CONN_LOST;
    const std::vector<std::pair<std::deque<ViStatus>, int>> failures = {
        {{lost, lost}, 0}, {{lost, lost, 0, lost, lost}, 0}, {{lost, lost, lost}, 1}, {{0, 0, lost}, 1}};
    for (const auto& [statuses, reopenings] : failures) {
        loseReply();
        instrument->queue("late");
        instrument->nextStatuses = GetParam() ? std::deque<ViStatus>() : statuses;
        instrument->reopenings = 0;
        EXPECT_EQ(ask("B?"), "reply to B?");
        EXPECT_EQ(instrument->reopenings, GetParam() ? 1 : reopenings) << statuses.size();
    }
}

TEST_P(FreshRepliesTest, ALinkThatTakesNoQuestionIsLostAndOpenedAgain)
{
    for (const ViStatus lost : {VI_ERROR_CONN_LOST, VI_ERROR_IO}) {
        loseReply();
        instrument->writeStatus = lost;
        instrument->reopenings = 0;
        EXPECT_EQ(ask("B?"), "reply to B?");
        EXPECT_EQ(instrument->reopenings, 1);
        loseReply();
        instrument->writeStatus = lost;
        instrument->reopenStatus = VI_ERROR_RSRC_NFOUND;
        EXPECT_EQ(port.write("C"), VI_ERROR_RSRC_NFOUND);
        instrument->reopenStatus = VI_SUCCESS;
        EXPECT_EQ(port.write("D"), VI_SUCCESS);
    }
}

TEST_P(FreshRepliesTest, TakeNoBeginningOfAReplyForAnAnswerNorItsRest)
{
    loseReply();
    instrument->delay = kTimeout + 1;
    instrument->queue(kIdentity);
    instrument->delay = 0;
    instrument->queue(kIdentity);
    instrument->queue("late");
    if (!GetParam())
        instrument->nextStatuses = {VI_SUCCESS, VI_SUCCESS_MAX_CNT};
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(questions(), 1);
}

TEST_P(FreshRepliesTest, DistrustWhatStandsBehindACutReply)
{
    instrument->nextStatuses = {VI_SUCCESS_MAX_CNT};
    EXPECT_EQ(ask("A?"), "reply to A?");
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "*IDN?", "B?"}));
}

TEST_P(FreshRepliesTest, DistrustAReplyThatCannotBeRead)
{
    double volts = -1.0;
    instrument->queue("garbage");
    EXPECT_THROW(port.get({"A"}, volts), std::invalid_argument);
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(volts, -1.0);
}

TEST_P(FreshRepliesTest, DistrustAReplyWithAnUnknownWord)
{
    instrument->queue("SIDEWAYS");
    auto mode = SourceMode::Series;
    EXPECT_EQ(port.get({"A"}, mode), base::kErrorUnexpectedResponse);
    EXPECT_EQ(ask("B?"), "reply to B?");
}

TEST_P(FreshRepliesTest, DropTheReplyThatAMessageOfTheCallersLeftUnread)
{
    EXPECT_EQ(port.writeMessage("A? 1"), VI_SUCCESS);
    EXPECT_EQ(port.writeMessage("B"), VI_SUCCESS);
    EXPECT_EQ(ask("C?"), "reply to C?");
    EXPECT_EQ(ask("D?"), "reply to D?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A? 1", "B", "*IDN?", "C?", "D?"}));
}

TEST_P(FreshRepliesTest, TrustTheConnectionOnceTheCallerHasReadTheReply)
{
    std::array<ViByte, 32> buffer{};
    std::size_t count = 0;
    EXPECT_EQ(port.writeMessage("A?"), VI_SUCCESS);
    EXPECT_EQ(port.readMessage(buffer, count), VI_SUCCESS_TERM_CHAR);
    EXPECT_EQ(count, 11U);
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "B?"}));
}

TEST_P(FreshRepliesTest, AnyInstrumentWillDoWhereNoneIsKnown)
{
    port.expect({});
    instrument->identity = "a,b,c,d";
    loseReply();
    EXPECT_EQ(ask("B?"), "reply to B?");
    EXPECT_EQ(questions(), GetParam() ? 0 : 1);
}

TEST_P(FreshRepliesTest, CountTheRepliesThatMessagesOfTheCallersAreOwed)
{
    std::array<ViByte, 100> buffer{};
    std::size_t count = 0;
    EXPECT_EQ(port.writeMessage("A?\nB?"), VI_SUCCESS);
    instrument->queue("a");
    instrument->queue("b");
    EXPECT_EQ(port.readMessage(buffer, count), VI_SUCCESS_TERM_CHAR);
    EXPECT_EQ(ask("C?"), "reply to C?");
    // Both are read here, and nothing needs to be asked for.
    instrument->written.clear();
    EXPECT_EQ(port.writeMessage("D?"), VI_SUCCESS);
    EXPECT_EQ(port.readMessage(buffer, count), VI_SUCCESS_TERM_CHAR);
    EXPECT_EQ(ask("E?"), "reply to E?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"D?", "E?"}));
}

TEST_P(FreshRepliesTest, AreNotTakenInByAnIdentityThatTheCallerHasAskedFor)
{
    std::array<ViByte, 100> buffer{};
    std::size_t count = 0;
    instrument->delay = kTimeout * 5 / 2;
    EXPECT_EQ(port.writeMessage("*idn?"), VI_SUCCESS);
    instrument->queue(kIdentity);
    EXPECT_EQ(port.readMessage(buffer, count), VI_ERROR_TMO);
    instrument->delay = 0;
    EXPECT_EQ(ask("A?"), "reply to A?");
    EXPECT_EQ(ask("B?"), "reply to B?");
}

TEST_P(FreshRepliesTest, DistrustAStatusRegisterAndAnErrorEntryThatCannotBeRead)
{
    KVX2800T supply(std::move(port));
    const auto volts = [&] {
        double value = -1.0;
        instrument->queue("2.5");
        return supply.voltageLevel(3, value) == VI_SUCCESS ? value : -1.0;
    };
    instrument->queue("CH1");
    ViInt32 number = 0;
    std::string message;
    EXPECT_THROW(supply.eventStatus(number), std::invalid_argument);
    instrument->written.clear();
    supply.clearStatus();
    EXPECT_EQ(instrument->written.front(), "*IDN?");
    EXPECT_EQ(volts(), 2.5);
    instrument->pending.clear();
    instrument->queue("no entry");
    EXPECT_EQ(supply.nextError(number, message), VI_SUCCESS);
    EXPECT_EQ(message, "");
    instrument->written.clear();
    supply.clearStatus();
    EXPECT_EQ(instrument->written.front(), "*IDN?");
}

TEST_P(FreshRepliesTest, TakeAnyAnswerWhereNoIdentityIsKnown)
{
    port.expect({});
    instrument->identity = "garbage";
    instrument->lost = 1;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(ask("B?"), "reply to B?");
}

TEST_P(FreshRepliesTest, DoNotKeepWhatSwitchesOffFromAnInstrumentThatDoesNotAnswer)
{
    instrument->lost = 1000;
    EXPECT_EQ(ask("A?"), "failed");
    instrument->written.clear();
    EXPECT_EQ(port.writeAtOnce("OFF"), VI_SUCCESS);
    EXPECT_EQ(instrument->written.back(), "OFF");
    EXPECT_EQ(instrument->written.size(), GetParam() ? 2U : 1U);
    instrument->lost = 0;
    EXPECT_EQ(ask("B?"), "reply to B?");
}

TEST_P(FreshRepliesTest, AnotherInstrumentIsAFailureUntilTheOwnOneIsBack)
{
    instrument->lost = 1;
    EXPECT_EQ(ask("A?"), "failed");
    for (const char* const other : {"Tessaro Instruments,KVX2833T,SN2,V2.34", "Tessaro Instruments,KVX2803T,SN1,V2.34"})
    {
        instrument->identity = other;
        EXPECT_EQ(ask("B?"), "failed") << other;
        EXPECT_EQ(port.connectionStatus(), base::kErrorIo) << other;
    }
    for (const char* const other : {"Tessaro Instruments,KVX2833T,SN1,V2.34,more", "a,b", ""}) {
        instrument->identity = other;
        EXPECT_EQ(ask("B?"), "failed") << other;
    }
    instrument->identity = "Another Maker,KVX2833T,SN1,V9.99";
    EXPECT_EQ(ask("C?"), "reply to C?");
}

TEST_P(FreshRepliesTest, ALostLinkIsOpenedAgain)
{
    instrument->readStatus = instrument->writeStatus = VI_ERROR_CONN_LOST;
    instrument->reopenStatus = VI_ERROR_RSRC_NFOUND;
    EXPECT_EQ(ask("A?"), "failed");
    EXPECT_EQ(ask("B?"), "failed");
    EXPECT_EQ(port.connectionStatus(), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(port.write("C"), VI_ERROR_RSRC_NFOUND);
    instrument->reopenStatus = VI_SUCCESS;
    EXPECT_EQ(ask("D?"), "reply to D?");
    EXPECT_EQ(instrument->reopenings, 3);
}

TEST_P(FreshRepliesTest, AnInstrumentThatNeverStopsSendingIsAFailureAndNoHang)
{
    class Flood : public LateInstrument
    {
    public:
        ViStatus read(std::string& reply) override
        {
            ++reads;
            reply = "flood";
            return reads == 1 ? VI_ERROR_TMO : VI_SUCCESS_TERM_CHAR;
        }
    };
    const auto flood = std::make_shared<Flood>();
    flood->setTimeout(100);
    CommandPort flooded{InstLink::ConnectionHolder{flood, {}}};
    flooded.configure({.freshReplies = true});
    std::string reply;
    EXPECT_EQ(flooded.query("A?", reply), VI_ERROR_TMO);
    EXPECT_EQ(flooded.query("B?", reply), VI_ERROR_TMO);
    EXPECT_EQ(std::count(flood->written.begin(), flood->written.end(), "B?"), 0);
    EXPECT_EQ(std::count(flood->written.begin(), flood->written.end(), "*IDN?"), 0);
    EXPECT_EQ(flood->reads, 1 + 10001);
}

TEST_P(FreshRepliesTest, AnInstrumentThatAnswersAnythingButItsIdentityIsAFailureAndNoHang)
{
    class Babbler : public LateInstrument
    {
    public:
        ViStatus read(std::string& reply) override
        {
            ++reads;
            reply = "babble";
            return reads <= 2 ? VI_ERROR_TMO : VI_SUCCESS_TERM_CHAR;
        }
    };
    const auto babbler = std::make_shared<Babbler>();
    CommandPort babbled{InstLink::ConnectionHolder{babbler, {}}};
    babbled.configure({.freshReplies = true});
    babbled.expect({"", "KVX2833T", "SN1", ""});
    std::string reply;
    EXPECT_EQ(babbled.query("A?", reply), VI_ERROR_TMO);
    EXPECT_EQ(babbled.query("B?", reply), VI_ERROR_TMO);
    EXPECT_EQ(babbler->written, (std::vector<std::string>{"A?", "*IDN?", "*IDN?", "*IDN?", "*IDN?", "*IDN?"}));
    EXPECT_EQ(babbler->reads, 2 + 5 * 10000);
}

class StaleRepliesTest : public FreshRepliesTest
{
public:
    StaleRepliesTest() : FreshRepliesTest(false) {}
};

INSTANTIATE_TEST_SUITE_P(Connections, StaleRepliesTest, testing::Bool());

TEST_P(StaleRepliesTest, AreWhatASessionHasThatDoesNotAskForFreshOnes)
{
    instrument->delay = kTimeout + 1;
    EXPECT_EQ(ask("A?"), "failed");
    instrument->delay = 0;
    EXPECT_EQ(ask("B?"), "reply to A?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "B?"}));
}

TEST_P(StaleRepliesTest, AreAlsoThoseOfMessagesOfTheCallersOwn)
{
    EXPECT_EQ(port.writeMessage("A?"), VI_SUCCESS);
    EXPECT_EQ(ask("B?"), "reply to A?");
    EXPECT_EQ(instrument->written, (std::vector<std::string>{"A?", "B?"}));
}

} // namespace
