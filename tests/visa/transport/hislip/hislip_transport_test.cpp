#include "tests/support/visa/hislip_peer.h"
#include "tests/support/visa/session_fixtures.h"

#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;
using namespace kvxtest::hislip;

constexpr std::uint32_t kVendor = 0x4B56;

/// A session with a scripted device, which has been welcomed.
class VisaHislip : public VisaTest
{
protected:
    void SetUp() override
    {
        VisaTest::SetUp();
        openWith({});
    }

    void openWith(const HislipPeer::Welcome& welcome)
    {
        peer_.emplace();
        std::thread device([&] { peer_->welcome(welcome); });
        session_ = open(peer_->resource());
        device.join();
        set(VI_ATTR_TMO_VALUE, kLongMs);
    }

    /// What opening a device gives that does as `script` says.
    template <class Script>
    ViStatus statusOfOpen(Script script, ViUInt32 timeoutMs = kLongMs)
    {
        HislipPeer peer;
        std::thread device([&] { script(peer); });
        ViSession session = VI_NULL;
        const ViStatus status = viOpen(manager_, peer.resource().c_str(), VI_NULL, timeoutMs, &session);
        device.join();
        return status;
    }

    void set(ViAttr attribute, ViAttrState value) { ASSERT_EQ(viSetAttribute(session_, attribute, value), VI_SUCCESS); }

    ViStatus ask(const std::string& question, ViUInt32* written = nullptr)
    {
        return write(session_, question, written);
    }

    /// Writes a question, which the device takes, and answers with one message.
    void exchange(const std::string& question, const std::string& reply)
    {
        ASSERT_EQ(ask(question), VI_SUCCESS);
        const auto message = sync().receive();
        ASSERT_EQ(message.payload, question);
        sync().send({kDataEnd, 0, message.parameter, reply});
    }

    HislipEnd& sync() { return peer_->sync(); }
    HislipEnd& async() { return peer_->async(); }

    void acknowledgeClear(unsigned features = 0)
    {
        async().send({kAsyncDeviceClearAcknowledge});
        sync().send({kDeviceClearAcknowledge, features});
    }

    ViUInt16 statusByte()
    {
        ViUInt16 status = 0xEEEE;
        EXPECT_EQ(viReadSTB(session_, &status), VI_SUCCESS);
        return status;
    }

    std::optional<HislipPeer> peer_;
    ViSession session_ = VI_NULL;
};

// Opening ------------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, OpensBothChannelsAndSaysHowMuchItTakes)
{
    EXPECT_EQ(peer_->initialize, (HislipMessage{kInitialize, 0, 0x02000000 | kVendor, "hislip0"}));
    EXPECT_EQ(peer_->asyncInitialize, (HislipMessage{kAsyncInitialize, 0, 0x1234}));
    EXPECT_EQ(peer_->maximumSize, (HislipMessage{kAsyncMaximumMessageSize, 0, 0, size(1048576)}));
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_TCPIP_HISLIP_VERSION), 0x00100000U);
    EXPECT_EQ(attribute<ViBoolean>(session_, VI_ATTR_TCPIP_IS_HISLIP), VI_TRUE);
    EXPECT_EQ(attribute<ViBoolean>(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN), VI_FALSE);
    EXPECT_EQ(attribute<ViUInt16>(session_, VI_ATTR_TCPIP_PORT), peer_->port());
    EXPECT_EQ(textAttribute(session_, VI_ATTR_TCPIP_ADDR), "127.0.0.1");
    EXPECT_EQ(textAttribute(session_, VI_ATTR_TCPIP_DEVICE_NAME), "hislip0");
    EXPECT_EQ(textAttribute(session_, VI_ATTR_RSRC_NAME), peer_->resource());
}

TEST_F(VisaHislip, SpeaksVersion2WithoutEncryption)
{
    openWith({.version = 0x0200});
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_TCPIP_HISLIP_VERSION), 0x00200000U);
    exchange("a", "b");
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "b"}));
}

TEST_F(VisaHislip, AsksADeviceThatPrefersOverlappedForTheSynchronizedMode)
{
    openWith({.features = 1, .clears = true});
    EXPECT_EQ(attribute<ViBoolean>(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN), VI_FALSE);
}

TEST_F(VisaHislip, EveryFatalErrorOfTheInitializationHasItsStatus)
{
    struct Case
    {
        unsigned code;
        ViStatus status;
    };
    for (const auto& [code, status] :
         {Case{0, VI_ERROR_IO}, Case{1, VI_ERROR_OUTP_PROT_VIOL}, Case{2, VI_ERROR_OUTP_PROT_VIOL},
          Case{3, VI_ERROR_RSRC_NFOUND}, Case{4, VI_ERROR_RSRC_BUSY}, Case{5, VI_ERROR_INV_PROT}, Case{6, VI_ERROR_IO},
          Case{128, VI_ERROR_IO}, Case{255, VI_ERROR_IO}})
    {
        const auto refuse = [code = code](HislipPeer& peer) {
            peer.sync().accept(peer.acceptor());
            peer.sync().receive();
            peer.sync().send({kFatalError, code, 0, "text"});
        };
        EXPECT_EQ(statusOfOpen(refuse), status) << code;
        const auto refuseSecond = [code = code](HislipPeer& peer) {
            peer.greet(0x0100, 0);
            peer.async().accept(peer.acceptor());
            peer.async().receive();
            peer.async().send({kFatalError, code, 0, "text"});
        };
        EXPECT_EQ(statusOfOpen(refuseSecond), status) << code;
    }
}

TEST_F(VisaHislip, RefusesDevicesThatInsistOnEncryption)
{
    for (const unsigned features : {2U, 4U, 6U})
        EXPECT_EQ(statusOfOpen([&](HislipPeer& peer) { peer.greet(0x0200, features); }), VI_ERROR_INV_PROT);
}

TEST_F(VisaHislip, RefusesWhatDoesNotSpeakHislip)
{
    const std::vector<std::string> greetings{"SSH-2.0-OpenSSH_9.2p1 Debian\r\n", bytesOf({kAsyncInitializeResponse}),
                                             bytesOf({kInitializeResponse, 0, 0x00FF0001}),
                                             bytesOf({kInitializeResponse, 0, 0x02010001}),
                                             bytesOf({kInitializeResponse, 0, 0x01000001}, ~std::uint64_t{0})};
    for (const auto& greeting : greetings) {
        const auto answer = [&](HislipPeer& peer) {
            peer.sync().accept(peer.acceptor());
            peer.sync().receive();
            peer.sync().sendBytes(greeting);
        };
        EXPECT_EQ(statusOfOpen(answer), VI_ERROR_INP_PROT_VIOL) << testing::PrintToString(greeting);
    }
}

TEST_F(VisaHislip, GivesUpADeviceThatStopsInTheMiddleOfItsGreeting)
{
    for (const std::size_t count : {0U, 1U, 15U}) {
        const auto stop = [&](HislipPeer& peer) {
            peer.sync().accept(peer.acceptor());
            peer.sync().receive();
            peer.sync().sendBytes(bytesOf({kInitializeResponse, 0, 0x01000001}).substr(0, count));
            EXPECT_TRUE(peer.sync().isAtEnd());
        };
        EXPECT_EQ(statusOfOpen(stop, 100), VI_ERROR_TMO) << count;
        const auto leave = [&](HislipPeer& peer) {
            peer.sync().accept(peer.acceptor());
            peer.sync().receive();
            peer.sync().sendBytes(bytesOf({kInitializeResponse, 0, 0x01000001}).substr(0, count));
            peer.sync().close();
        };
        EXPECT_EQ(statusOfOpen(leave), VI_ERROR_CONN_LOST) << count;
    }
}

TEST_F(VisaHislip, RefusesSizesThatCannotBe)
{
    const auto negotiate = [&](const std::string& bytes) {
        return statusOfOpen([&](HislipPeer& peer) {
            peer.greet(0x0100, 0);
            peer.join();
            peer.async().receive();
            peer.async().sendBytes(bytes);
            EXPECT_EQ(peer.async().receive(), (HislipMessage{kFatalError, 1}));
            EXPECT_TRUE(peer.async().isAtEnd());
        });
    };
    EXPECT_EQ(negotiate(bytesOf({kAsyncMaximumMessageSizeResponse, 0, 0, size(0)})), VI_ERROR_INP_PROT_VIOL);
    EXPECT_EQ(negotiate(bytesOf({kAsyncMaximumMessageSizeResponse, 0, 0, "1234"})), VI_ERROR_INP_PROT_VIOL);
    EXPECT_EQ(negotiate(bytesOf({kAsyncMaximumMessageSizeResponse}, 1ULL << 40U)), VI_ERROR_INP_PROT_VIOL);
}

// Writing ------------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, NumbersItsMessagesAndEndsThem)
{
    ViUInt32 written = 0;
    EXPECT_EQ(ask("*CLS", &written), VI_SUCCESS);
    EXPECT_EQ(written, 4U);
    EXPECT_EQ(ask("*RST\n"), VI_SUCCESS);
    set(VI_ATTR_SEND_END_EN, VI_FALSE);
    EXPECT_EQ(ask("a part"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId, "*CLS"}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId + 2, "*RST\n"}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kData, 0, kFirstId + 4, "a part"}));
}

TEST_F(VisaHislip, SplitsMessagesAsTheDeviceAsks)
{
    openWith({.largest = 16 + 5});
    ViUInt32 written = 0;
    EXPECT_EQ(ask("0123456789ab", &written), VI_SUCCESS);
    EXPECT_EQ(written, 12U);
    EXPECT_EQ(sync().receive(), (HislipMessage{kData, 0, kFirstId, "01234"}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kData, 0, kFirstId + 2, "56789"}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId + 4, "ab"}));
    openWith({.largest = 1});
    EXPECT_EQ(ask("xy"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kData, 0, kFirstId, "x"}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId + 2, "y"}));
}

TEST_F(VisaHislip, WritesManyBytes)
{
    const std::string bytes(3 * kMebibyte + 5, 'w');
    std::thread writer([&] { EXPECT_EQ(ask(bytes), VI_SUCCESS); });
    std::string received;
    HislipMessage message;
    do {
        message = sync().receive();
        received += message.payload;
    } while (message.type == kData);
    writer.join();
    EXPECT_EQ(message.parameter, kFirstId + 6);
    EXPECT_EQ(received, bytes);
}

TEST_F(VisaHislip, AWriteThatNobodyReadsEndsAndOnlyAClearGoesOn)
{
    openWith({.largest = std::uint64_t{1} << 40U});
    set(VI_ATTR_TMO_VALUE, kShortMs);
    const std::string bytes(64 * kMebibyte, 'w');
    ViUInt32 written = 0;
    EXPECT_EQ(ask(bytes, &written), VI_ERROR_TMO);
    EXPECT_GT(written, 0U);
    EXPECT_LT(written, bytes.size());
    EXPECT_EQ(ask("*CLS"), VI_ERROR_IO);
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_ERROR_IO);
    set(VI_ATTR_TMO_VALUE, kLongMs);
    std::thread clearing([&] { EXPECT_EQ(viClear(session_), VI_SUCCESS); });
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncDeviceClear}));
    async().send({kAsyncDeviceClearAcknowledge});
    const auto whole = sync().receive();
    EXPECT_EQ(whole.payload.substr(0, written), bytes.substr(0, written));
    EXPECT_EQ(whole.payload.substr(written), std::string(bytes.size() - written, ' '));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDeviceClearComplete}));
    sync().send({kDeviceClearAcknowledge});
    clearing.join();
    EXPECT_EQ(ask("*CLS"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId, "*CLS"}));
}

TEST_F(VisaHislip, TriggersAndNumbersThat)
{
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_SUCCESS);
    EXPECT_EQ(ask("x"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kTrigger, 0, kFirstId}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId + 2, "x"}));
}

// Reading ------------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, ReadsARepliesPartsToTheirEnd)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    sync().send({kData, 0, kFirstId, "one "});
    sync().send({kData, 0, kFirstId, ""});
    sync().send({kData, 0, 0xFFFFFFFF, "two "});
    sync().send({kDataEnd, 0, kFirstId, "three\n"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "one two three\n"}));
}

TEST_F(VisaHislip, ReadsByteByByte)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    const auto bytes = bytesOf({kDataEnd, 0, kFirstId, "12.5\n"});
    std::thread device([&] {
        for (const char byte : bytes) {
            sync().sendBytes(std::string(1, byte));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "12.5\n"}));
    device.join();
}

TEST_F(VisaHislip, ReadsNoMoreThanAskedFor)
{
    exchange("?", "0123456789");
    EXPECT_EQ(read(session_, 4), (ReadResult{VI_SUCCESS_MAX_CNT, "0123"}));
    EXPECT_EQ(read(session_, 6), (ReadResult{VI_SUCCESS, "456789"}));
}

TEST_F(VisaHislip, ReadsManyBytes)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    const std::string bytes(3 * kMebibyte, 'r');
    std::thread device([&] {
        sync().send({kData, 0, kFirstId, bytes});
        sync().send({kDataEnd, 0, kFirstId, "end"});
    });
    EXPECT_EQ(read(session_, 4 * kMebibyte), (ReadResult{VI_SUCCESS, bytes + "end"}));
    device.join();
}

TEST_F(VisaHislip, ATerminationCharacterEndsAReadAndTheEndOfTheReplyDoesFirst)
{
    set(VI_ATTR_TERMCHAR, ',');
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    exchange("?", "1,2,");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "1,"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "2,"}));
}

TEST_F(VisaHislip, TheEndCanBeSuppressed)
{
    set(VI_ATTR_SUPPRESS_END_EN, VI_TRUE);
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    sync().send({kDataEnd, 0, kFirstId, "one "});
    sync().send({kDataEnd, 0, kFirstId, "two\n"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one two\n"}));
}

TEST_F(VisaHislip, AReadThatTimesOutKeepsItsPlace)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    const auto bytes = bytesOf({kDataEnd, 0, kFirstId, "12.5\n"});
    sync().sendBytes(bytes.substr(0, 7));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    sync().sendBytes(bytes.substr(7, 11));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "12"}));
    sync().sendBytes(bytes.substr(18));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, ".5\n"}));
}

TEST_F(VisaHislip, TellsOfADeliveryOnceWithTheNextMessage)
{
    exchange("?", "1\n");
    EXPECT_EQ(read(session_, 1), (ReadResult{VI_SUCCESS_MAX_CNT, "1"}));
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "\n"}));
    EXPECT_EQ(ask("a"), VI_SUCCESS);
    EXPECT_EQ(ask("b"), VI_SUCCESS);
    EXPECT_EQ(sync().receive().control, 1U);
    EXPECT_EQ(sync().receive().control, 0U);

    sync().send({kDataEnd, 0, kFirstId + 4, "2"});
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "2"}));
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kTrigger, 1, kFirstId + 6}));

    sync().send({kDataEnd, 0, kFirstId + 6, "3"});
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "3"}));
    async().send({kAsyncStatusResponse, 0});
    statusByte();
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncStatusQuery, 1, kFirstId + 6}));
    EXPECT_EQ(ask("c"), VI_SUCCESS);
    EXPECT_EQ(sync().receive().control, 0U);
}

TEST_F(VisaHislip, DropsAnswersToEarlierQuestions)
{
    ASSERT_EQ(ask("one?"), VI_SUCCESS);
    sync().send({kData, 0, kFirstId, "an old "});
    EXPECT_EQ(read(session_, 2), (ReadResult{VI_SUCCESS_MAX_CNT, "an"}));
    ASSERT_EQ(ask("two?"), VI_SUCCESS);
    sync().send({kDataEnd, 0, kFirstId, "answer"});
    sync().send({kDataEnd, 0, kFirstId + 2, "the new one"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "the new one"}));
}

TEST_F(VisaHislip, AnAnswerToAnEarlierQuestionMakesWhatCameBeforeItVoid)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    sync().send({kData, 0, kFirstId, "void"});
    sync().send({kDataEnd, 0, kFirstId - 2, "old"});
    sync().send({kDataEnd, 0, kFirstId, "whole"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "whole"}));
}

// Interruptions ------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, AnInterruptionMakesWhatCameBeforeItVoid)
{
    ASSERT_EQ(ask("one?"), VI_SUCCESS);
    ASSERT_EQ(ask("two?"), VI_SUCCESS);
    sync().send({kData, 0, kFirstId + 2, "void"});
    sync().send({kInterrupted, 0, kFirstId + 2});
    async().send({kAsyncInterrupted, 0, kFirstId + 2});
    sync().send({kDataEnd, 0, kFirstId + 2, "the second"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "the second"}));
    EXPECT_EQ(ask("three"), VI_SUCCESS);
}

TEST_F(VisaHislip, SendsNothingBetweenTheTwoMessagesOfAnInterruption)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    sync().send({kInterrupted});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    ViUInt16 status = 0;
    EXPECT_EQ(ask("x"), VI_ERROR_TMO);
    EXPECT_EQ(viReadSTB(session_, &status), VI_ERROR_TMO);
    EXPECT_EQ(viAssertTrigger(session_, VI_TRIG_PROT_DEFAULT), VI_ERROR_TMO);
    EXPECT_FALSE(sync().hasInput());
    EXPECT_FALSE(async().hasInput());
    async().send({kAsyncInterrupted});
    EXPECT_EQ(ask("x"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 0, kFirstId, "x"}));
}

TEST_F(VisaHislip, DropsRepliesUntilTheSecondMessageOfAnInterruption)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    async().send({kAsyncInterrupted});
    async().send({kAsyncStatusResponse, 4});
    EXPECT_EQ(statusByte(), 4);
    sync().send({kDataEnd, 0, kFirstId, "void"});
    sync().send({kInterrupted});
    sync().send({kDataEnd, 0, kFirstId, "good"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "good"}));
}

// Status, triggers, remote -------------------------------------------------------------------------------------------

TEST_F(VisaHislip, AsksForTheStatusWithTheNumberOfTheLastMessage)
{
    async().send({kAsyncServiceRequest, 80});
    async().send({kAsyncStatusResponse, 80});
    EXPECT_EQ(statusByte(), 80);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncStatusQuery, 0, kBeforeFirstId}));
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    async().send({kAsyncStatusResponse, 255});
    EXPECT_EQ(statusByte(), 255);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncStatusQuery, 0, kFirstId}));
}

TEST_F(VisaHislip, AnAnswerThatComesTooLateIsNotTakenForTheNext)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    ViUInt16 status = 7;
    EXPECT_EQ(viReadSTB(session_, &status), VI_ERROR_TMO);
    EXPECT_EQ(viGpibControlREN(session_, VI_GPIB_REN_ASSERT), VI_ERROR_TMO);
    async().send({kAsyncStatusResponse, 1});
    async().send({kAsyncRemoteLocalResponse});
    async().send({kAsyncStatusResponse, 2});
    EXPECT_EQ(statusByte(), 2);
}

TEST_F(VisaHislip, TerminateEndsAReadAndAQuestionAndTheSessionGoesOn)
{
    const auto ended = statusOnTerminate(session_, [&] {
        return read(session_, 10) == ReadResult{VI_ERROR_ABORT, ""} ? VI_ERROR_ABORT : VI_SUCCESS;
    });
    EXPECT_EQ(ended, VI_ERROR_ABORT);
    ViUInt16 status = 7;
    EXPECT_EQ(statusOnTerminate(session_, [&] { return viReadSTB(session_, &status); }), VI_ERROR_ABORT);
    // The answer to the first question comes too late.
    async().receive();
    async().send({kAsyncStatusResponse, 1});
    async().send({kAsyncStatusResponse, 2});
    EXPECT_EQ(statusByte(), 2);
    exchange("a", "b");
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "b"}));
}

TEST_F(VisaHislip, EveryRemoteModeIsItsRequest)
{
    for (ViUInt16 mode = VI_GPIB_REN_DEASSERT; mode <= VI_GPIB_REN_ADDRESS_GTL; ++mode) {
        async().send({kAsyncRemoteLocalResponse});
        EXPECT_EQ(viGpibControlREN(session_, mode), VI_SUCCESS);
        EXPECT_EQ(async().receive(), (HislipMessage{kAsyncRemoteLocalControl, mode, kBeforeFirstId}));
    }
}

// Device clear -------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, AClearDropsWhatIsUnderWayAndCountsFromTheBeginning)
{
    exchange("?", "a reply that nobody reads");
    sync().send({kInterrupted});
    async().send({kAsyncServiceRequest, 64});
    acknowledgeClear();
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncDeviceClear}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDeviceClearComplete}));
    exchange("?", "new");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "new"}));
    EXPECT_EQ(ask("x"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kDataEnd, 1, kFirstId + 2, "x"}));
}

TEST_F(VisaHislip, AClearThatIsNotAcknowledgedKeepsMessagesBackUntilOneIs)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(viClear(session_), VI_ERROR_TMO);
    EXPECT_FALSE(sync().hasInput());
    EXPECT_EQ(ask("x"), VI_ERROR_IO);
    async().send({kAsyncDeviceClearAcknowledge});
    EXPECT_EQ(viClear(session_), VI_ERROR_TMO);
    EXPECT_EQ(ask("x"), VI_ERROR_IO);
    acknowledgeClear();
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    EXPECT_EQ(ask("x"), VI_SUCCESS);
}

TEST_F(VisaHislip, TheOverlappedModeIsTakenUpByAClear)
{
    acknowledgeClear(1);
    set(VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, VI_TRUE);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncDeviceClear}));
    EXPECT_EQ(sync().receive(), (HislipMessage{kDeviceClearComplete, 1}));
    EXPECT_EQ(attribute<ViBoolean>(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN), VI_TRUE);

    async().send({kAsyncStatusResponse, 0});
    statusByte();
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncStatusQuery, 0, kBeforeFirstId}));
    EXPECT_EQ(ask("one?"), VI_SUCCESS);
    EXPECT_EQ(ask("two?"), VI_SUCCESS);
    sync().send({kDataEnd, 0, kFirstId, "1"});
    sync().send({kData, 0, kFirstId + 2, "2"});
    sync().send({kDataEnd, 0, kFirstId + 4, "2"});
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "1"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "22"}));
    async().send({kAsyncStatusResponse, 0});
    statusByte();
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncStatusQuery, 1, kFirstId + 4}));

    acknowledgeClear(1);
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, VI_FALSE), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(attribute<ViBoolean>(session_, VI_ATTR_TCPIP_HISLIP_OVERLAP_EN), VI_TRUE);
}

TEST_F(VisaHislip, AnotherSizeIsNegotiated)
{
    async().send({kAsyncMaximumMessageSizeResponse, 0, 0, size(16 + 3)});
    set(VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB, 4);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncMaximumMessageSize, 0, 0, size(4096)}));
    EXPECT_EQ(ask("1234"), VI_SUCCESS);
    EXPECT_EQ(sync().receive(), (HislipMessage{kData, 0, kFirstId, "123"}));
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB, 0), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(viSetAttribute(session_, VI_ATTR_TCPIP_HISLIP_ENCRYPTION_EN, VI_TRUE), VI_ERROR_NSUP_ATTR_STATE);
}

TEST_F(VisaHislip, FlushingDropsWhatHasArrived)
{
    exchange("?", "void");
    // What is on its way may arrive later.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(viFlush(session_, VI_IO_IN_BUF_DISCARD), VI_SUCCESS);
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
}

// Locks --------------------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, LocksTheDevice)
{
    async().send({kAsyncLockResponse, 1});
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, 1234, VI_NULL, VI_NULL), VI_SUCCESS);
    const auto request = async().receive();
    EXPECT_EQ(request.type, kAsyncLock);
    EXPECT_EQ(request.control, 1U);
    EXPECT_EQ(request.payload, "");
    EXPECT_LE(request.parameter, 1234U);
    EXPECT_GT(request.parameter, 0U);
    ASSERT_EQ(ask("x"), VI_SUCCESS);
    async().send({kAsyncLockResponse, 1});
    EXPECT_EQ(viUnlock(session_), VI_SUCCESS);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncLock, 0, kFirstId}));
}

TEST_F(VisaHislip, SharesALockByItsKey)
{
    async().send({kAsyncLockResponse, 1});
    ViChar key[256] = "";
    EXPECT_EQ(viLock(session_, VI_SHARED_LOCK, VI_TMO_IMMEDIATE, "a key", key), VI_SUCCESS);
    EXPECT_STREQ(key, "a key");
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncLock, 1, 0, "a key"}));
    async().send({kAsyncLockResponse, 2});
    EXPECT_EQ(viUnlock(session_), VI_SUCCESS);
    EXPECT_EQ(async().receive(), (HislipMessage{kAsyncLock, 0, kBeforeFirstId}));
}

TEST_F(VisaHislip, EveryAnswerToALockHasItsStatus)
{
    struct Case
    {
        unsigned control;
        ViUInt32 timeout;
        ViStatus status;
    };
    for (const auto& [control, timeout, status] :
         {Case{0, kLongMs, VI_ERROR_TMO}, Case{0, VI_TMO_IMMEDIATE, VI_ERROR_RSRC_LOCKED},
          Case{2, kLongMs, VI_ERROR_IO}, Case{3, kLongMs, VI_ERROR_RSRC_LOCKED}, Case{4, kLongMs, VI_ERROR_IO}})
    {
        async().send({kAsyncLockResponse, control});
        EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, timeout, VI_NULL, VI_NULL), status) << control;
        EXPECT_EQ(viUnlock(session_), VI_ERROR_SESN_NLOCKED);
    }
    for (const auto& [control, status] : {std::pair{0U, VI_ERROR_IO}, std::pair{3U, VI_ERROR_SESN_NLOCKED}}) {
        async().send({kAsyncLockResponse, 1});
        ASSERT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, kLongMs, VI_NULL, VI_NULL), VI_SUCCESS);
        async().send({kAsyncLockResponse, control});
        EXPECT_EQ(viUnlock(session_), status);
    }
}

TEST_F(VisaHislip, GivesADeviceUpThatDoesNotAnswerALock)
{
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, kShortMs, VI_NULL, VI_NULL), VI_ERROR_TMO);
    EXPECT_EQ(async().receive().type, kAsyncLock);
    EXPECT_TRUE(async().isAtEnd());
    EXPECT_TRUE(sync().isAtEnd());
    EXPECT_EQ(ask("x"), VI_ERROR_CONN_LOST);
}

TEST_F(VisaHislip, TellsOfTheDevicesLocks)
{
    struct Case
    {
        unsigned exclusive;
        std::uint32_t holders;
        ViUInt32 state;
    };
    for (const auto& [exclusive, holders, state] :
         {Case{0, 0, VI_NO_LOCK}, Case{0, 2, VI_SHARED_LOCK}, Case{1, 1, VI_EXCLUSIVE_LOCK}})
    {
        async().send({kAsyncLockInfoResponse, exclusive, holders});
        EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_RSRC_LOCK_STATE), state);
        EXPECT_EQ(async().receive(), (HislipMessage{kAsyncLockInfo}));
    }
}

// Errors and lies ----------------------------------------------------------------------------------------------------

TEST_F(VisaHislip, EveryErrorOfTheDeviceHasItsStatus)
{
    struct Case
    {
        unsigned code;
        ViStatus status;
    };
    ViUInt16 byte = 0;
    for (const auto& [code, status] :
         {Case{0, VI_ERROR_IO}, Case{1, VI_ERROR_NSUP_OPER}, Case{2, VI_ERROR_NSUP_OPER}, Case{3, VI_ERROR_NSUP_OPER},
          Case{4, VI_ERROR_OUTP_PROT_VIOL}, Case{5, VI_ERROR_INV_PROT}, Case{6, VI_ERROR_IO}, Case{200, VI_ERROR_IO}})
    {
        async().send({kError, code, 0, "a text"});
        EXPECT_EQ(viReadSTB(session_, &byte), status) << code;
        sync().send({kError, code, 0, "a text"});
        EXPECT_EQ(read(session_, 10), (ReadResult{status, ""})) << code;
    }
    exchange("?", "1");
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "1"}));
}

TEST_F(VisaHislip, EveryFatalErrorOfTheDeviceEndsTheConnection)
{
    struct Case
    {
        unsigned code;
        ViStatus status;
    };
    ViUInt16 byte = 0;
    for (const auto& [code, status] :
         {Case{0, VI_ERROR_IO}, Case{1, VI_ERROR_OUTP_PROT_VIOL}, Case{2, VI_ERROR_OUTP_PROT_VIOL},
          Case{5, VI_ERROR_INV_PROT}, Case{77, VI_ERROR_IO}})
    {
        openWith({});
        async().send({kFatalError, code, 0, "a text"});
        EXPECT_EQ(viReadSTB(session_, &byte), status) << code;
        EXPECT_EQ(viReadSTB(session_, &byte), VI_ERROR_CONN_LOST);
        EXPECT_TRUE(sync().isAtEnd());
        openWith({});
        sync().send({kFatalError, code, 0, "a text"});
        EXPECT_EQ(read(session_, 10), (ReadResult{status, ""})) << code;
        EXPECT_EQ(read(session_, 10), (ReadResult{VI_ERROR_CONN_LOST, ""}));
        EXPECT_EQ(ask("x"), VI_ERROR_CONN_LOST);
        EXPECT_EQ(viClear(session_), VI_ERROR_CONN_LOST);
        openWith({});
        async().send({kFatalError, code});
        EXPECT_EQ(viClear(session_), status);
    }
}

TEST_F(VisaHislip, ComplainsOfMessagesThatItDoesNotKnowAndGoesOn)
{
    struct Case
    {
        unsigned type;
        unsigned code;
    };
    for (const auto& [type, code] : {Case{kTrigger, 1}, Case{kInitialize, 1}, Case{39, 1}, Case{127, 1}, Case{128, 3},
                                     Case{255, 3}, Case{kAsyncLock, 1}})
    {
        exchange("?", "1");
        EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "1"}));
        ASSERT_EQ(ask("?"), VI_SUCCESS);
        const auto question = sync().receive();
        sync().send({type, 9, 9, "dropped"});
        sync().send({kDataEnd, 0, question.parameter, "2"});
        EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS, "2"}));
        EXPECT_EQ(sync().receive(), (HislipMessage{kError, code}));
        async().send({type, 9, 9, "dropped"});
        async().send({kAsyncStatusResponse, 3});
        EXPECT_EQ(statusByte(), 3);
        EXPECT_EQ(async().receive().type, kAsyncStatusQuery);
        EXPECT_EQ(async().receive(), (HislipMessage{kError, code}));
        ASSERT_EQ(ask("!"), VI_SUCCESS);
        EXPECT_EQ(sync().receive().payload, "!");
    }
}

TEST_F(VisaHislip, DataOnTheAsynchronousChannelIsNotData)
{
    async().send({kDataEnd, 0, kBeforeFirstId, "1"});
    async().send({kAsyncStatusResponse, 3});
    EXPECT_EQ(statusByte(), 3);
    EXPECT_EQ(async().receive().type, kAsyncStatusQuery);
    EXPECT_EQ(async().receive(), (HislipMessage{kError, 1}));
}

TEST_F(VisaHislip, LeavesADeviceThatIsOutOfStep)
{
    ViUInt16 byte = 0;
    const std::vector<std::string> lies{"garbage, more than sixteen bytes",
                                        bytesOf({kDataEnd, 0, 0}, (1ULL << 32U) + 1), bytesOf({99}, ~std::uint64_t{0})};
    for (const auto& lie : lies) {
        openWith({});
        sync().sendBytes(lie);
        EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_INP_PROT_VIOL, ""}));
        EXPECT_EQ(sync().receive(), (HislipMessage{kFatalError, 1}));
        EXPECT_EQ(async().receive(), (HislipMessage{kFatalError, 1}));
        EXPECT_EQ(ask("x"), VI_ERROR_CONN_LOST);
        openWith({});
        async().sendBytes(lie);
        EXPECT_EQ(viReadSTB(session_, &byte), VI_ERROR_INP_PROT_VIOL);
        EXPECT_EQ(sync().receive(), (HislipMessage{kFatalError, 1}));
        openWith({});
        async().send({kAsyncDeviceClearAcknowledge});
        sync().sendBytes(lie);
        EXPECT_EQ(viClear(session_), VI_ERROR_INP_PROT_VIOL);
    }
}

TEST_F(VisaHislip, ALengthThatIsNeverFilledOnlyTakesItsTime)
{
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    set(VI_ATTR_TMO_VALUE, kShortMs);
    sync().sendBytes(bytesOf({kDataEnd, 0, kFirstId, "all there is"}, 1ULL << 32U));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "all there is"}));
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    async().sendBytes(bytesOf({kAsyncStatusResponse, 1}, 1ULL << 32U));
    EXPECT_EQ(statusByte(), 1);
    ViUInt16 byte = 0;
    EXPECT_EQ(viReadSTB(session_, &byte), VI_ERROR_TMO);
}

TEST_F(VisaHislip, TheEndOfTheConnectionIsALostConnection)
{
    ViUInt16 byte = 0;
    sync().close();
    async().close();
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    EXPECT_EQ(viReadSTB(session_, &byte), VI_ERROR_CONN_LOST);
}

// Threads ------------------------------------------------------------------------------------------------------------

class VisaHislipClosing : public VisaHislip
{
protected:
    template <class Action>
    ViStatus statusOnClose(Action action)
    {
        std::atomic<ViStatus> status{VI_SUCCESS};
        std::thread waiting([&] { status = action(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(viClose(session_), VI_SUCCESS);
        waiting.join();
        return status;
    }
};

TEST_F(VisaHislipClosing, EndsARead)
{
    EXPECT_EQ(statusOnClose([&] { return read(session_, 10).status; }), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaHislipClosing, EndsAStatusQuery)
{
    ViUInt16 byte = 0;
    EXPECT_EQ(statusOnClose([&] { return viReadSTB(session_, &byte); }), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaHislipClosing, EndsAClear)
{
    EXPECT_EQ(statusOnClose([&] { return viClear(session_); }), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaHislipClosing, EndsAWaitForALock)
{
    EXPECT_EQ(statusOnClose([&] { return viLock(session_, VI_EXCLUSIVE_LOCK, VI_TMO_INFINITE, VI_NULL, VI_NULL); }),
              VI_ERROR_INV_OBJECT);
}

TEST_F(VisaHislip, AReadDoesNotKeepWritesAndStatusQueriesWaiting)
{
    ReadResult result{};
    std::thread reader([&] { result = read(session_, 10); });
    async().send({kAsyncStatusResponse, 1});
    EXPECT_EQ(statusByte(), 1);
    ASSERT_EQ(ask("?"), VI_SUCCESS);
    sync().send({kDataEnd, 0, sync().receive().parameter, "1"});
    reader.join();
    EXPECT_EQ(result, (ReadResult{VI_SUCCESS, "1"}));
}

TEST_F(VisaHislip, WaitsForAnotherCallNoLongerThanItsTime)
{
    std::thread reader([&] { read(session_, 10); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(viClear(session_), VI_ERROR_TMO);
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_ERROR_TMO, ""}));
    sync().send({kFatalError});
    reader.join();
}

} // namespace
