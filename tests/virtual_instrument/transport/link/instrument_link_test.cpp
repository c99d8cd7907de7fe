#include "virtual_instrument/transport/link/instrument_link.h"

#include <asio.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace kvxvirtual;
using namespace std::chrono_literals;
using Answer = DeviceLocks::Answer;
using Released = DeviceLocks::Released;

constexpr auto kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n";

/// A client's end of a link, which notes what it is told.
class Client final : public InstrumentLink::Events
{
public:
    explicit Client(LinkHub& hub) : link(hub, "client", *this) {}

    void replyReady() override { told += "ready "; }
    void replyInterrupted() override { told += "interrupted "; }
    void serviceRequested(unsigned char statusByte) override
    {
        told += "service " + std::to_string(static_cast<int>(statusByte)) + ' ';
    }

    std::string reply() { return link.hasReply() ? link.takeReply() : "(none)"; }

    std::string told;
    InstrumentLink link;
};

class Link : public testing::Test
{
protected:
    Link() { instrument_.receive("*CLS"); }
    /// What is due is done while there is somebody to do it for.
    ~Link() override { context_.poll(); }

    /// Lets time go by until `done` or nothing is left to be done.
    template <class Done>
    void runUntil(Done done)
    {
        while (!done() && context_.run_one() > 0) {
        }
    }

    std::string nextError() { return instrument_.receive("SYST:ERR?")->bytes; }

    /// One for all tests: with timers it has a thread of its own on Windows, and Wine's memory does not outlive
    /// hundreds of those coming and going.
    static asio::io_context& context()
    {
        static asio::io_context& all = *new asio::io_context(1);
        all.restart();
        // What timers of earlier tests have left, which is of no consequence.
        all.poll();
        all.restart();
        return all;
    }

    asio::io_context& context_ = context();
    std::vector<std::string> journalLines_;
    VirtualInstrument instrument_{{}, [] { return InstrumentClock::Duration(0); }};
    Journal journal_{[this](std::string line) { journalLines_.push_back(std::move(line)); }, false};
    LinkHub hub_{context_, instrument_, journal_};
    Client client_{hub_};
    Client other_{hub_};
};

// Messages -----------------------------------------------------------------------------------------------------------

TEST_F(Link, EndsAMessageAtLineFeedEndOrBoth)
{
    for (const auto* message : {"*IDN?", "*IDN?\n", "*IDN?\r\n"}) {
        client_.link.write(message, true);
        EXPECT_EQ(client_.reply(), kIdentity) << message;
    }
    client_.link.write("*IDN?\n", false);
    EXPECT_EQ(client_.reply(), kIdentity);
    EXPECT_EQ(nextError(), "0,\"No error\"\n");
    EXPECT_EQ(instrument_.log().lines().size(), 6U);
}

TEST_F(Link, ExecutesAMessageOfSeveralPartsAtItsEnd)
{
    client_.link.write("*ID", false);
    EXPECT_EQ(client_.reply(), "(none)");
    client_.link.write("N", false);
    client_.link.write("?", false);
    client_.link.write("", true);
    EXPECT_EQ(client_.reply(), kIdentity);
    client_.link.write("", true);
    EXPECT_EQ(client_.reply(), "(none)");
}

TEST_F(Link, TellsOfAReplyOnce)
{
    client_.link.write("*CLS", true);
    EXPECT_EQ(client_.told, "");
    client_.link.write("*IDN?", true);
    EXPECT_EQ(client_.told, "ready ");
}

TEST_F(Link, GivesAReplyInPiecesUpToACountOrACharacter)
{
    client_.link.write("*IDN?", true);
    auto piece = client_.link.take(3);
    EXPECT_EQ(piece.bytes, "Tes");
    EXPECT_FALSE(piece.end);
    piece = client_.link.take(100, ',');
    EXPECT_EQ(piece.bytes, "saro Instruments,");
    EXPECT_FALSE(piece.end);
    piece = client_.link.take(5, 'T');
    EXPECT_EQ(piece.bytes, "KVX28");
    piece = client_.link.take(100, '\n');
    EXPECT_EQ(piece.bytes, "33T,VIRT0000001,V1.00\n");
    EXPECT_TRUE(piece.end);
    EXPECT_FALSE(client_.link.hasReply());
}

TEST_F(Link, LosesAReplyToTheNextMessage)
{
    client_.link.write("*IDN?", true);
    client_.link.write("*OPC?", true);
    EXPECT_EQ(client_.told, "ready interrupted ready ");
    EXPECT_EQ(client_.reply(), "1\n");
    EXPECT_EQ(nextError(), "-410,\"Query INTERRUPTED\"\n");
    EXPECT_EQ(nextError(), "0,\"No error\"\n");
}

TEST_F(Link, LosesAReplyToTheNextMessageOfTheSameTransferOrItsBeginning)
{
    client_.link.write("*IDN?\n*OPC?\n", true);
    EXPECT_EQ(client_.told, "interrupted ready ");
    EXPECT_EQ(client_.reply(), "1\n");
    client_.link.write("*OPC?\n*ID", false);
    EXPECT_EQ(client_.reply(), "(none)");
    EXPECT_EQ(nextError(), "-410,\"Query INTERRUPTED\"\n");
    EXPECT_EQ(nextError(), "-410,\"Query INTERRUPTED\"\n");
    client_.link.write("N?", true);
    EXPECT_EQ(client_.reply(), kIdentity);
}

TEST_F(Link, LosesWhatIsLeftOfAReplyToATrigger)
{
    client_.link.write("*IDN?", true);
    client_.link.take(3);
    client_.link.trigger();
    EXPECT_EQ(client_.told, "ready interrupted ");
    EXPECT_EQ(client_.reply(), "(none)");
}

TEST_F(Link, KeepsQueuedRepliesInTheirOrder)
{
    client_.link.setReplies(InstrumentLink::Replies::Queued);
    client_.link.write("*OPC?\n*IDN?\n", true);
    client_.link.write("*TST?", true);
    EXPECT_EQ(client_.told, "ready ");
    EXPECT_EQ(client_.reply(), "1\n");
    EXPECT_EQ(client_.reply(), kIdentity);
    EXPECT_EQ(client_.reply(), "0\n");
    EXPECT_EQ(client_.reply(), "(none)");
    EXPECT_EQ(nextError(), "0,\"No error\"\n");
}

TEST_F(Link, TakesNoInputWhileTooManyQueuedRepliesWait)
{
    client_.link.setReplies(InstrumentLink::Replies::Queued);
    for (int i = 0; i < 5; ++i)
        instrument_.queueAnswer(std::string(65536, 'x'));
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(client_.link.takesInput()) << i;
        client_.link.write("*IDN?", true);
    }
    EXPECT_FALSE(client_.link.takesInput());
    client_.link.takeReply();
    EXPECT_TRUE(client_.link.takesInput());
}

TEST_F(Link, HoldsADelayedReplyBackUntilItsTime)
{
    instrument_.setReplyDelay(20ms);
    client_.link.write("*IDN?", true);
    EXPECT_FALSE(client_.link.hasReply());
    EXPECT_FALSE(client_.link.messageAvailable());
    runUntil([this] { return client_.link.hasReply(); });
    EXPECT_EQ(client_.told, "ready ");
    EXPECT_TRUE(client_.link.messageAvailable());
    EXPECT_EQ(client_.reply(), kIdentity);
}

TEST_F(Link, InterruptsADelayedReply)
{
    instrument_.setReplyDelay(24h);
    client_.link.write("*IDN?", true);
    instrument_.setReplyDelay(0ms);
    client_.link.write("*OPC?", true);
    EXPECT_EQ(client_.told, "interrupted ready ");
    EXPECT_EQ(client_.reply(), "1\n");
}

TEST_F(Link, HoldsQueuedRepliesBehindADelayedOne)
{
    client_.link.setReplies(InstrumentLink::Replies::Queued);
    instrument_.setReplyDelay(20ms);
    client_.link.write("*IDN?", true);
    instrument_.setReplyDelay(0ms);
    client_.link.write("*OPC?", true);
    EXPECT_FALSE(client_.link.hasReply());
    runUntil([this] { return client_.link.hasReply(); });
    EXPECT_EQ(client_.reply(), kIdentity);
    EXPECT_EQ(client_.reply(), "1\n");
}

TEST_F(Link, ReportsAMessageThatOverrunsTheInputBuffer)
{
    client_.link.write(std::string(4097, 'x'), false);
    client_.link.write("xx", true);
    EXPECT_EQ(nextError(), "-363,\"Input buffer overrun\"\n");
    client_.link.write("*OPC?", true);
    EXPECT_EQ(client_.reply(), "1\n");
}

TEST_F(Link, DeviceClearForgetsInputAndRepliesAndKeepsTheStatus)
{
    client_.link.write("NONSENSE", true);
    client_.link.write("*IDN?", true);
    client_.link.clear();
    EXPECT_EQ(client_.reply(), "(none)");
    EXPECT_FALSE(client_.link.messageAvailable());
    client_.link.write("*RS", false);
    client_.link.clear();
    client_.link.write("*OPC?", true);
    EXPECT_EQ(client_.reply(), "1\n");
    EXPECT_EQ(nextError(), "-113,\"Undefined header\"\n");
    EXPECT_EQ(nextError(), "0,\"No error\"\n");
}

TEST_F(Link, ReportsAReadWithoutAQuery)
{
    client_.link.reportUnterminated();
    EXPECT_EQ(nextError(), "-420,\"Query UNTERMINATED\"\n");
}

// Status -------------------------------------------------------------------------------------------------------------

TEST_F(Link, StatusByteHasAMessageForItsOwnClientOnly)
{
    client_.link.write("*IDN?", true);
    EXPECT_EQ(client_.link.poll(), 16);
    EXPECT_EQ(other_.link.poll(), 0);
    client_.reply();
    EXPECT_EQ(client_.link.poll(), 16);
    client_.link.setMessageAvailable(false);
    EXPECT_EQ(client_.link.poll(), 0);
}

TEST_F(Link, StatusByteSumsTheInstrumentUp)
{
    client_.link.write("*ESE 32;:NONSENSE", true);
    EXPECT_EQ(client_.link.poll(), 4 + 32);
    client_.link.write("*CLS;OUTP:STAT CH1,ON", true);
    EXPECT_EQ(client_.link.poll(), 8);
    client_.link.write("*CLS;:LIST:GROUP:PARA 1,1,1,1;:LIST:STAT ON", true);
    EXPECT_EQ(client_.link.poll(), 128);
    client_.link.write("LIST:STAT OFF", true);
    EXPECT_EQ(client_.link.poll(), 0);
}

TEST_F(Link, RequestsServiceForWhatIsEnabledOnceUntilPolled)
{
    instrument_.receive("*SRE 4");
    client_.link.write("NONSENSE", true);
    EXPECT_EQ(client_.told, "service 68 ");
    EXPECT_EQ(other_.told, "service 68 ");
    client_.link.write("NONSENSE", true);
    instrument_.receive("*CLS");
    instrument_.receive("NONSENSE");
    EXPECT_EQ(client_.told, "service 68 ");
    EXPECT_EQ(client_.link.poll(), 68);
    EXPECT_EQ(client_.link.poll(), 4);
    instrument_.receive("*CLS");
    instrument_.receive("NONSENSE");
    EXPECT_EQ(client_.told, "service 68 service 68 ");
    EXPECT_EQ(other_.told, "service 68 ");
}

TEST_F(Link, RequestsServiceWhenWhatStandsAlreadyIsEnabled)
{
    instrument_.receive("NONSENSE");
    instrument_.receive("*SRE 8");
    EXPECT_EQ(client_.told, "");
    instrument_.receive("*SRE 12");
    EXPECT_EQ(client_.told, "service 68 ");
}

TEST_F(Link, RequestsServiceForAMessageOfItsOwnClient)
{
    instrument_.receive("*SRE 16");
    client_.link.write("*IDN?", true);
    EXPECT_EQ(client_.told, "service 80 ready ");
    EXPECT_EQ(other_.told, "");
    EXPECT_EQ(client_.link.poll(), 80);
    EXPECT_EQ(client_.link.poll(), 16);
}

TEST_F(Link, RequestsServiceForWhatTheTestControlDoes)
{
    instrument_.receive("*SRE 4");
    instrument_.status().report(-300, "made");
    EXPECT_EQ(client_.told, "");
    instrument_.statusMayHaveChanged();
    EXPECT_EQ(client_.told, "service 68 ");
}

TEST_F(Link, RequestsServiceForWhatTimeBringsAbout)
{
    instrument_.receive("*SRE 4");
    instrument_.status().report(-300, "noticed by nobody");
    runUntil([this] { return !client_.told.empty(); });
    EXPECT_EQ(client_.told, "service 68 ");
}

// Front panel --------------------------------------------------------------------------------------------------------

TEST_F(Link, SetsThePanelToRemoteAndBack)
{
    EXPECT_FALSE(instrument_.frontPanel().remote());
    client_.link.write("*CLS", true);
    EXPECT_TRUE(instrument_.frontPanel().remote());
    client_.link.request(PanelRequest::GoToLocal);
    EXPECT_FALSE(instrument_.frontPanel().remote());
}

TEST_F(Link, ActsOnThePanelWhenTheLockOfAnotherIsGone)
{
    instrument_.frontPanel().clientActed();
    other_.link.lock("", 0ms, [](Answer) {});
    client_.link.request(PanelRequest::EnableRemoteAndLockOut);
    client_.link.request(PanelRequest::GoToLocal);
    EXPECT_TRUE(instrument_.frontPanel().remote());
    other_.link.unlock();
    EXPECT_FALSE(instrument_.frontPanel().remote());
    EXPECT_FALSE(instrument_.frontPanel().lockedOut());
}

// Locks --------------------------------------------------------------------------------------------------------------

class LockedLink : public Link
{
protected:
    LockedLink()
    {
        other_.link.lock("", 0ms, [](Answer answer) { ASSERT_EQ(answer, Answer::Granted); });
    }

    auto noteAnswer()
    {
        return [this](Answer answer) { answer_ = answer; };
    }
    auto noteAccess()
    {
        return [this](bool accessible) { accessible_ = accessible; };
    }

    std::optional<Answer> answer_;
    std::optional<bool> accessible_;
};

TEST_F(LockedLink, IsRefusedAtOnceWithoutATimeOut)
{
    client_.link.lock("", 0ms, noteAnswer());
    EXPECT_EQ(answer_, Answer::Unavailable);
    EXPECT_FALSE(client_.link.hasAccess());
}

TEST_F(LockedLink, GetsTheLockWhenItIsReleasedInTime)
{
    client_.link.lock("key", 24h, noteAnswer());
    EXPECT_EQ(answer_, std::nullopt);
    EXPECT_EQ(other_.link.unlock(), Released::Exclusive);
    EXPECT_EQ(answer_, Answer::Granted);
    EXPECT_FALSE(client_.link.endLockRequest());
    EXPECT_EQ(client_.link.unlock(), Released::Shared);
}

TEST_F(LockedLink, IsRefusedWhenItsTimeIsOver)
{
    client_.link.lock("", 20ms, noteAnswer());
    runUntil([this] { return answer_.has_value(); });
    EXPECT_EQ(answer_, Answer::Unavailable);
    other_.link.unlock();
    EXPECT_TRUE(client_.link.hasAccess());
    EXPECT_EQ(client_.link.unlock(), Released::None);
}

TEST_F(LockedLink, IsRefusedWhenItsRequestIsEnded)
{
    client_.link.lock("", 24h, noteAnswer());
    EXPECT_TRUE(client_.link.endLockRequest());
    EXPECT_EQ(answer_, Answer::Unavailable);
    EXPECT_FALSE(client_.link.endLockRequest());
}

TEST_F(LockedLink, WaitsForAccess)
{
    client_.link.whenAccessible(std::nullopt, noteAccess());
    EXPECT_EQ(accessible_, std::nullopt);
    other_.link.unlock();
    EXPECT_EQ(accessible_, true);
}

TEST_F(LockedLink, WaitsForAccessNoLongerThanItsTime)
{
    client_.link.whenAccessible(20ms, noteAccess());
    runUntil([this] { return accessible_.has_value(); });
    EXPECT_EQ(accessible_, false);
}

TEST_F(LockedLink, HasAccessAtOnceWhenNothingStandsAgainstIt)
{
    other_.link.whenAccessible(0ms, noteAccess());
    EXPECT_EQ(accessible_, true);
}

TEST_F(LockedLink, TheEndOfALinkReleasesItsLocksAndForgetsItsWaits)
{
    std::optional<Client> third(hub_);
    third->link.lock("", 24h, [](Answer) { FAIL() << "told of a request after its link's end"; });
    third.reset();
    {
        Client fourth(hub_);
        other_.link.unlock();
        fourth.link.lock("", 0ms, noteAnswer());
        EXPECT_EQ(answer_, Answer::Granted);
        EXPECT_FALSE(client_.link.hasAccess());
    }
    EXPECT_TRUE(client_.link.hasAccess());
}

} // namespace
