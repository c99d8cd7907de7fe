#include "visa/transport/vxi11/vxi11_transport.h"

#include "tests/support/visa/rpc_peer.h"
#include "tests/support/visa/vxi11_procedures.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace
{

using namespace kvxtest;
using namespace visa;
using testing::Each;

constexpr std::uint32_t kLink = 0x1234;
constexpr std::uint32_t kMostSent = 16;

const std::string kDone = words({0});

std::string readResult(std::uint32_t reason, const std::string& data, std::uint32_t error = 0)
{
    return words({error, reason}) + opaque(data);
}

class Vxi11 : public testing::Test
{
protected:
    static constexpr ViUInt32 kTimeoutMs = 20000;

    void open(std::uint32_t mostSent = kMostSent)
    {
        close();
        peer_.answerWith(words({0, kLink, abortPeer_.port(), mostSent}));
        ASSERT_EQ(openLink("inst0"), VI_SUCCESS);
    }

    ViStatus openLink(const std::string& device)
    {
        return openVxi11Link(RpcPlace{"127.0.0.1", peer_.port()}, device, Deadline(kTimeoutMs), transport_,
                             allowanceMs_);
    }

    void set(ViAttr attribute, ViAttrState value) { attributes_.set(attribute, value); }

    template <class Operation>
    ViStatus with(ViUInt32 timeoutMs, Operation operation)
    {
        const Deadline deadline(timeoutMs);
        return operation(Terms{attributes_, deadline});
    }

    ViStatus write(const std::string& bytes, ViUInt32 timeoutMs = kTimeoutMs)
    {
        return with(timeoutMs, [&](const Terms& terms) {
            return transport_->write({reinterpret_cast<const ViByte*>(bytes.data()), bytes.size()}, terms, count_);
        });
    }

    ViStatus read(std::size_t size, ViUInt32 timeoutMs = kTimeoutMs)
    {
        std::vector<ViByte> buffer(size);
        const ViStatus status =
            with(timeoutMs, [&](const Terms& terms) { return transport_->read(buffer, terms, count_); });
        EXPECT_LE(count_, size);
        received_.assign(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count_));
        return status;
    }

    ViStatus clear(ViUInt32 timeoutMs = kTimeoutMs)
    {
        return with(timeoutMs, [&](const Terms& terms) { return transport_->clear(terms); });
    }

    ViStatus readStb(ViUInt16& status)
    {
        return with(kTimeoutMs, [&](const Terms& terms) { return transport_->readStatusByte(terms, status); });
    }

    ViStatus lock(const LockRequest& request, ViUInt32 timeoutMs = kTimeoutMs)
    {
        return with(timeoutMs, [&](const Terms& terms) { return transport_->lock(terms, request); });
    }

    ViStatus unlock(bool isShared)
    {
        return with(kTimeoutMs, [&](const Terms& terms) { return transport_->unlock(terms, isShared); });
    }

    void expectLast(Procedure procedure, const std::string& arguments)
    {
        const RpcCall call = peer_.lastCall();
        EXPECT_EQ(call.program, kCoreProgram);
        EXPECT_EQ(call.version, 1U);
        EXPECT_EQ(call.procedure, procedure);
        EXPECT_EQ(call.arguments, arguments);
    }

    /// Works after what has happened before.
    void expectInStep()
    {
        peer_.answerWith(words({0, 0x51}));
        ViUInt16 status = 0;
        EXPECT_EQ(readStb(status), VI_SUCCESS);
        EXPECT_EQ(status, 0x51);
    }

    void expectLost()
    {
        EXPECT_EQ(read(10), VI_ERROR_CONN_LOST);
        EXPECT_EQ(write("x"), VI_ERROR_CONN_LOST);
        EXPECT_EQ(clear(), VI_ERROR_CONN_LOST);
    }

    void TearDown() override
    {
        isReleased_ = true;
        close();
    }

    void close()
    {
        peer_.forgetAnswers();
        peer_.answerWith(kDone);
        transport_.reset();
        peer_.forgetAnswers();
    }

    void answerWhenReleased(const std::string& result)
    {
        peer_.answer([this, result](const RpcCall& call) {
            while (!isReleased_)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return reply(call.number, result);
        });
    }

    /// For tests of devices that do not answer in time.
    void waitBriefly() { allowanceMs_ = 20; }

    std::atomic<bool> isReleased_ = false; ///< for answers that wait for it
    ViUInt32 allowanceMs_ = kAnswerAllowanceMs;
    RpcPeer peer_;
    RpcPeer abortPeer_;
    AttributeValues attributes_;
    std::unique_ptr<Transport> transport_;
    std::size_t count_ = 12345;
    std::string received_;
};

// Links ---------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, CreatesALinkToTheDevice)
{
    open();
    expectLast(kCreateLink, words({0, 0, 0}) + opaque("inst0"));
    EXPECT_EQ(transport_->textFact(VI_ATTR_TCPIP_ADDR), "127.0.0.1");
}

TEST_F(Vxi11, NamesTheDeviceAsItIsGiven)
{
    peer_.answerWith(words({0, 1, 0, 0}));
    EXPECT_EQ(openLink("gpib0,5"), VI_SUCCESS);
    expectLast(kCreateLink, words({0, 0, 0}) + opaque("gpib0,5"));
}

TEST_F(Vxi11, DestroysTheLinkAtItsEnd)
{
    open();
    peer_.answerWith(kDone);
    transport_.reset();
    expectLast(kDestroyLink, words({kLink}));
}

TEST_F(Vxi11, DestroysTheLinkAlsoAfterAnInterruptThatMetNoCall)
{
    open();
    transport_->interrupt();
    EXPECT_EQ(write("x"), VI_ERROR_INV_OBJECT);
    peer_.answerWith(kDone);
    transport_.reset();
    expectLast(kDestroyLink, words({kLink}));
}

TEST_F(Vxi11, EndsThoughTheDeviceDoesNotAnswerTheGoodbye)
{
    open();
    transport_.reset();
    peer_.awaitCalls(2);
    expectLast(kDestroyLink, words({kLink}));
}

// Errors --------------------------------------------------------------------------------------------------------------

struct ErrorCase
{
    std::uint32_t error;
    ViStatus status;
};

constexpr std::array<ErrorCase, 16> kErrors{{
    {1, VI_ERROR_INV_RSRC_NAME},
    {3, VI_ERROR_RSRC_NFOUND},
    {4, VI_ERROR_CONN_LOST},
    {5, VI_ERROR_INV_SETUP},
    {6, VI_ERROR_IO},
    {8, VI_ERROR_NSUP_OPER},
    {9, VI_ERROR_ALLOC},
    {11, VI_ERROR_RSRC_LOCKED},
    {12, VI_ERROR_SESN_NLOCKED},
    {15, VI_ERROR_TMO},
    {17, VI_ERROR_IO},
    {21, VI_ERROR_RSRC_NFOUND},
    {23, VI_ERROR_ABORT},
    {29, VI_ERROR_IO},
    {2, VI_ERROR_IO},
    {0xFFFFFFFF, VI_ERROR_IO},
}};

TEST_F(Vxi11, EveryErrorOfALinkIsAStatus)
{
    for (const auto& [error, status] : kErrors) {
        peer_.answerWith(words({error, 0, 0, 0}));
        EXPECT_EQ(openLink("inst0"), status) << error;
        EXPECT_EQ(transport_, nullptr);
    }
}

TEST_F(Vxi11, EveryErrorOfAnOperationIsAStatusAndLeavesTheLinkInStep)
{
    open();
    for (const auto& [error, status] : kErrors) {
        peer_.answerWith(words({error, 0}));
        EXPECT_EQ(write("x"), status) << error;
        peer_.answerWith(readResult(0, "", error));
        EXPECT_EQ(read(10), status) << error;
        peer_.answerWith(words({error}));
        EXPECT_EQ(clear(), status) << error;
        peer_.answerWith(words({error, 0x77}));
        ViUInt16 stb = 5;
        EXPECT_EQ(readStb(stb), status) << error;
        EXPECT_EQ(stb, 5);
    }
    expectInStep();
}

// Writes --------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, WritesWithEndAndTheTimeOut)
{
    open();
    peer_.answerWith(words({0, 6}));
    EXPECT_EQ(write("*IDN?\n"), VI_SUCCESS);
    EXPECT_EQ(count_, 6U);
    expectLast(kWrite, words({kLink, kTimeoutMs, 0, 0x08}) + opaque("*IDN?\n"));
}

TEST_F(Vxi11, WritesWithoutEndWhereTheSessionSaysSo)
{
    open();
    set(VI_ATTR_SEND_END_EN, VI_FALSE);
    peer_.answerWith(words({0, 3}));
    EXPECT_EQ(write("abc"), VI_SUCCESS);
    expectLast(kWrite, words({kLink, kTimeoutMs, 0, 0}) + opaque("abc"));
}

TEST_F(Vxi11, SplitsAWriteAtWhatTheDeviceTakesWithEndInTheLastPart)
{
    open(4);
    for (const std::uint32_t size : {4U, 4U, 1U})
        peer_.answerWith(words({0, size}));
    EXPECT_EQ(write("abcdefghi"), VI_SUCCESS);
    EXPECT_EQ(count_, 9U);
    const auto calls = peer_.calls();
    ASSERT_EQ(calls.size(), 4U);
    EXPECT_EQ(calls[1].arguments.substr(12), words({0}) + opaque("abcd"));
    EXPECT_EQ(calls[2].arguments.substr(12), words({0}) + opaque("efgh"));
    EXPECT_EQ(calls[3].arguments.substr(12), words({8}) + opaque("i"));
}

TEST_F(Vxi11, GoesOnWhereADeviceHasTakenLessThanItWasGiven)
{
    open();
    peer_.answerWith(words({0, 2}));
    peer_.answerWith(words({0, 3}));
    EXPECT_EQ(write("abcde"), VI_SUCCESS);
    EXPECT_EQ(count_, 5U);
    EXPECT_EQ(peer_.lastCall().arguments.substr(12), words({8}) + opaque("cde"));
}

TEST_F(Vxi11, AnErrorInAWriteTellsWhatTheDeviceHasTaken)
{
    open(4);
    peer_.answerWith(words({0, 4}));
    peer_.answerWith(words({15, 1}));
    EXPECT_EQ(write("abcdefgh"), VI_ERROR_TMO);
    EXPECT_EQ(count_, 5U);
}

TEST_F(Vxi11, ADeviceThatClaimsMoreOrNothingOfAWriteBreaksTheProtocol)
{
    open();
    for (const std::uint32_t size : {0U, 4U, 0xFFFFFFFFU}) {
        peer_.answerWith(words({0, size}));
        EXPECT_EQ(write("abc"), VI_ERROR_OUTP_PROT_VIOL) << size;
        EXPECT_LE(count_, 3U);
    }
    expectInStep();
}

TEST_F(Vxi11, ADeviceWithoutALimitTakes1024Bytes)
{
    open(0);
    peer_.answerWith(words({0, 1024}));
    peer_.answerWith(words({0, 1}));
    EXPECT_EQ(write(std::string(1025, 'x')), VI_SUCCESS);
}

TEST_F(Vxi11, AWriteOfNothingSendsNothing)
{
    open();
    EXPECT_EQ(write(""), VI_SUCCESS);
    EXPECT_EQ(count_, 0U);
    EXPECT_EQ(peer_.calls().size(), 1U);
}

TEST_F(Vxi11, LargeWritesArriveWhole)
{
    open(0x7FFFFFFF);
    for (const std::size_t size : {16319U, 16320U, 16321U, 16322U, 16323U, 16324U, 16325U, 1000001U}) {
        std::string message(size, 'x');
        for (std::size_t i = 0; i < size; ++i)
            message[i] = static_cast<char>('a' + i % 23);
        peer_.answerWith(words({0, static_cast<std::uint32_t>(size)}));
        EXPECT_EQ(write(message), VI_SUCCESS);
        EXPECT_TRUE(peer_.lastCall().arguments == words({kLink, kTimeoutMs, 0, 8}) + opaque(message)) << size;
    }
}

// Reads ---------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, ReadsUpToEnd)
{
    open();
    peer_.answerWith(readResult(4, "1.5\n"));
    EXPECT_EQ(read(100), VI_SUCCESS);
    EXPECT_EQ(received_, "1.5\n");
    expectLast(kRead, words({kLink, 100, kTimeoutMs, 0, 0, '\n'}));
}

TEST_F(Vxi11, AsksForTheTerminationCharacter)
{
    open();
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    set(VI_ATTR_TERMCHAR, ';');
    peer_.answerWith(readResult(2, "1;"));
    EXPECT_EQ(read(100), VI_SUCCESS_TERM_CHAR);
    EXPECT_EQ(received_, "1;");
    expectLast(kRead, words({kLink, 100, kTimeoutMs, 0, 0x80, ';'}));
}

struct ReasonCase
{
    std::uint32_t reason;
    std::string data;
    ViStatus status;
};

TEST_F(Vxi11, EachReasonEndsAReadInItsWay)
{
    open();
    const std::array<ReasonCase, 9> cases{{
        {1, "abcd", VI_SUCCESS_MAX_CNT},
        {2, "abcd", VI_SUCCESS_TERM_CHAR},
        {3, "abcd", VI_SUCCESS_TERM_CHAR},
        {4, "abcd", VI_SUCCESS},
        {5, "abcd", VI_SUCCESS},
        {7, "abcd", VI_SUCCESS},
        {0, "abcd", VI_SUCCESS_MAX_CNT},
        {4, "", VI_SUCCESS},
        {0xFFFFFFF8, "abcd", VI_SUCCESS_MAX_CNT},
    }};
    for (const auto& [reason, data, status] : cases) {
        peer_.answerWith(readResult(reason, data));
        EXPECT_EQ(read(4), status) << reason;
        EXPECT_EQ(received_, data);
    }
}

TEST_F(Vxi11, GoesOnReadingWhileThereIsMore)
{
    open();
    peer_.answerWith(readResult(0, "ab"));
    peer_.answerWith(readResult(1, "c"));
    peer_.answerWith(readResult(4, "de\n"));
    EXPECT_EQ(read(100), VI_SUCCESS);
    EXPECT_EQ(received_, "abcde\n");
    const auto calls = peer_.calls();
    EXPECT_EQ(wordIn(calls.at(2).arguments, 1), 98U);
    EXPECT_EQ(wordIn(calls.at(3).arguments, 1), 97U);
}

TEST_F(Vxi11, ASuppressedEndDoesNotEndARead)
{
    open();
    set(VI_ATTR_SUPPRESS_END_EN, VI_TRUE);
    peer_.answerWith(readResult(4, "ab\n"));
    peer_.answerWith(readResult(5, "c"));
    EXPECT_EQ(read(4), VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(received_, "ab\nc");
}

TEST_F(Vxi11, AReadOfNothingIsCompleteAtOnce)
{
    open();
    EXPECT_EQ(read(0), VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(peer_.calls().size(), 1U);
}

TEST_F(Vxi11, AnErrorInAReadLeavesWhatCameBefore)
{
    open();
    peer_.answerWith(readResult(0, "ab"));
    peer_.answerWith(readResult(0, "c", 15));
    EXPECT_EQ(read(100), VI_ERROR_TMO);
    EXPECT_EQ(received_, "abc");
}

TEST_F(Vxi11, LargeReadsArriveWhole)
{
    open();
    for (const std::size_t size : {16300U, 16384U, 16385U, 100003U, 3000001U}) {
        std::string data(size, 'x');
        for (std::size_t i = 0; i < size; ++i)
            data[i] = static_cast<char>('a' + i % 23);
        peer_.answerWith(readResult(4, data));
        EXPECT_EQ(read(size + 1), VI_SUCCESS);
        EXPECT_TRUE(received_ == data) << size;
    }
    expectInStep();
}

TEST_F(Vxi11, MoreThanWasAskedForIsRefusedAndSkipped)
{
    open();
    peer_.answerWith(readResult(4, "abcdef"));
    EXPECT_EQ(read(5), VI_ERROR_INP_PROT_VIOL);
    expectInStep();
}

// The others ----------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, ClearsTriggersAndPolls)
{
    open();
    const std::string arguments = words({kLink, 0, 0, kTimeoutMs});
    peer_.answerWith(kDone);
    EXPECT_EQ(clear(), VI_SUCCESS);
    expectLast(kClear, arguments);
    peer_.answerWith(kDone);
    EXPECT_EQ(with(kTimeoutMs, [&](const Terms& terms) { return transport_->trigger(terms); }), VI_SUCCESS);
    expectLast(kTrigger, arguments);
    expectInStep();
    expectLast(kReadStb, arguments);
}

TEST_F(Vxi11, RemoteAndLocalAreTheModesThatAddressTheDevice)
{
    open();
    const auto control = [&](ViUInt16 mode) {
        return with(kTimeoutMs, [&](const Terms& terms) { return transport_->controlRemote(terms, mode); });
    };
    const std::string arguments = words({kLink, 0, 0, kTimeoutMs});
    for (const int mode : {VI_GPIB_REN_ASSERT_ADDRESS, VI_GPIB_REN_ASSERT_ADDRESS_LLO}) {
        peer_.answerWith(kDone);
        EXPECT_EQ(control(static_cast<ViUInt16>(mode)), VI_SUCCESS);
        expectLast(kRemote, arguments);
    }
    for (const int mode : {VI_GPIB_REN_DEASSERT_GTL, VI_GPIB_REN_ADDRESS_GTL}) {
        peer_.answerWith(kDone);
        EXPECT_EQ(control(static_cast<ViUInt16>(mode)), VI_SUCCESS);
        expectLast(kLocal, arguments);
    }
    const std::size_t before = peer_.calls().size();
    for (const int mode : {VI_GPIB_REN_DEASSERT, VI_GPIB_REN_ASSERT, VI_GPIB_REN_ASSERT_LLO})
        EXPECT_EQ(control(static_cast<ViUInt16>(mode)), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(peer_.calls().size(), before);
}

TEST_F(Vxi11, LocksAndUnlocksTheDevice)
{
    open();
    peer_.answerWith(kDone);
    EXPECT_EQ(lock({}), VI_SUCCESS);
    expectLast(kLock, words({kLink, 1, kTimeoutMs}));
    peer_.answerWith(kDone);
    EXPECT_EQ(unlock(false), VI_SUCCESS);
    expectLast(kUnlock, words({kLink}));
    peer_.answerWith(kDone);
    EXPECT_EQ(lock({}, VI_TMO_IMMEDIATE), VI_SUCCESS);
    expectLast(kLock, words({kLink, 0, 0}));
}

TEST_F(Vxi11, ALockThatAnotherHoldsIsATimeOut)
{
    open();
    peer_.answerWith(words({11}));
    EXPECT_EQ(lock({}), VI_ERROR_TMO);
    peer_.answerWith(words({12}));
    EXPECT_EQ(unlock(false), VI_ERROR_SESN_NLOCKED);
}

TEST_F(Vxi11, SharedLocksAreNoBusinessOfTheDevice)
{
    open();
    EXPECT_EQ(lock({true, "key"}), VI_SUCCESS);
    EXPECT_EQ(unlock(true), VI_SUCCESS);
    EXPECT_EQ(peer_.calls().size(), 1U);
}

// Time ----------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, AnAnswerThatNeverComesIsATimeOut)
{
    waitBriefly();
    open();
    EXPECT_EQ(read(10, 1), VI_ERROR_TMO);
    EXPECT_EQ(write("x", VI_TMO_IMMEDIATE), VI_ERROR_TMO);
    EXPECT_EQ(wordIn(peer_.lastCall().arguments, 1), 0U);
}

TEST_F(Vxi11, ALateAnswerIsSkipped)
{
    waitBriefly();
    open();
    std::string late;
    peer_.answer([&](const RpcCall& call) {
        late = reply(call.number, readResult(4, "stale"));
        return fragment(words({call.number + 1000, 1}));
    });
    EXPECT_EQ(read(10, 1), VI_ERROR_TMO);
    peer_.answer([&](const RpcCall& call) { return late + reply(call.number, readResult(4, "fresh")); });
    EXPECT_EQ(read(10), VI_SUCCESS);
    EXPECT_EQ(received_, "fresh");
}

TEST_F(Vxi11, AnAnswerCutInTwoByATimeOutIsSkippedToItsEnd)
{
    waitBriefly();
    open();
    for (const std::size_t begun : {1U, 4U, 5U, 12U, 28U, 39U, 41U}) {
        std::string whole;
        peer_.answer([&](const RpcCall& call) {
            whole = reply(call.number, readResult(4, "stale"));
            return whole.substr(0, begun);
        });
        EXPECT_EQ(read(10, 1), VI_ERROR_TMO) << begun;
        peer_.answer(
            [&](const RpcCall& call) { return whole.substr(begun) + reply(call.number, readResult(4, "fresh")); });
        EXPECT_EQ(read(10), VI_SUCCESS) << begun;
        EXPECT_EQ(received_, "fresh") << begun;
    }
}

TEST_F(Vxi11, ACallThatCouldNotBeSentWholeEndsTheConnection)
{
    waitBriefly();
    open(0x7FFFFFFF);
    answerWhenReleased(readResult(4, "late"));
    EXPECT_EQ(read(10, 1), VI_ERROR_TMO);
    // More than the host keeps for a peer that does not read.
    EXPECT_EQ(write(std::string(40'000'000, 'x'), 1), VI_ERROR_TMO);
    expectLost();
    isReleased_ = true;
    transport_.reset();
}

TEST_F(Vxi11, OneThatWaitsForAnotherDoesSoNoLongerThanItsTime)
{
    open();
    answerWhenReleased(readResult(4, "done"));
    std::thread reading([&] { EXPECT_EQ(read(10), VI_SUCCESS); });
    peer_.awaitCalls(2);
    EXPECT_EQ(clear(20), VI_ERROR_TMO);
    EXPECT_EQ(clear(VI_TMO_IMMEDIATE), VI_ERROR_TMO);
    isReleased_ = true;
    reading.join();
    EXPECT_EQ(received_, "done");
    expectInStep();
}

// Ends ----------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, InterruptEndsTheCallsThatWait)
{
    open();
    std::thread waiting([&] {
        std::size_t count = 0;
        std::array<ViByte, 4> buffer{};
        EXPECT_EQ(with(VI_TMO_INFINITE, [&](const Terms& terms) { return transport_->read(buffer, terms, count); }),
                  VI_ERROR_INV_OBJECT);
    });
    peer_.awaitCalls(2);
    std::thread behind([&] { EXPECT_EQ(clear(VI_TMO_INFINITE), VI_ERROR_INV_OBJECT); });
    transport_->interrupt();
    waiting.join();
    behind.join();
    EXPECT_EQ(read(10), VI_ERROR_INV_OBJECT);
}

TEST_F(Vxi11, AbortEndsACallOverTheAbortChannel)
{
    open();
    answerWhenReleased(readResult(0, "", 23));
    abortPeer_.answer([&](const RpcCall& call) {
        isReleased_ = true;
        return reply(call.number, kDone);
    });
    std::thread waiting([&] { EXPECT_EQ(read(10, VI_TMO_INFINITE), VI_ERROR_ABORT); });
    peer_.awaitCalls(2);
    EXPECT_EQ(transport_->abort(), VI_SUCCESS);
    waiting.join();
    const RpcCall call = abortPeer_.lastCall();
    EXPECT_EQ(call.program, kAbortProgram);
    EXPECT_EQ(call.version, 1U);
    EXPECT_EQ(call.procedure, 1U);
    EXPECT_EQ(call.arguments, words({kLink}));
    expectInStep();
}

TEST_F(Vxi11, AbortEndsWhatWaitsForItsTurnAsWell)
{
    open();
    answerWhenReleased(readResult(4, "done"));
    abortPeer_.answerWith(kDone);
    std::thread reading([&] { EXPECT_EQ(read(10), VI_SUCCESS); });
    peer_.awaitCalls(2);
    std::atomic<bool> isAborted = false;
    std::thread behind([&] {
        EXPECT_EQ(clear(VI_TMO_INFINITE), VI_ERROR_ABORT);
        isAborted = true;
    });
    // It may not wait yet.
    while (!isAborted) {
        abortPeer_.answerWith(kDone);
        EXPECT_EQ(transport_->abort(), VI_SUCCESS);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    isReleased_ = true;
    reading.join();
    behind.join();
}

TEST_F(Vxi11, AbortDoesNothingWhereNothingWaits)
{
    open();
    EXPECT_EQ(transport_->abort(), VI_SUCCESS);
    EXPECT_EQ(abortPeer_.calls().size(), 0U);
    expectInStep();
}

TEST_F(Vxi11, ADeviceThatDiesIsALostConnection)
{
    open();
    peer_.answerAndEnd([](const RpcCall&) { return std::string(); });
    EXPECT_EQ(read(10), VI_ERROR_CONN_LOST);
    expectLost();
}

TEST_F(Vxi11, ADeviceThatDiesInItsAnswerIsALostConnection)
{
    for (const std::size_t begun : {2U, 6U, 20U, 30U, 42U}) {
        open();
        peer_.answerAndEnd([begun](const RpcCall& call) {
            return reply(call.number, readResult(4, "abcdefghijkl")).substr(0, begun);
        });
        EXPECT_EQ(read(20), VI_ERROR_CONN_LOST) << begun;
        expectLost();
    }
}

// Lies ----------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11, AnswersInAnyFragmentsAreTheSame)
{
    open();
    const auto inPieces = [](const std::string& record, std::size_t size) {
        std::string bytes;
        for (std::size_t at = 4; at < record.size(); at += size)
            bytes += fragment(record.substr(at, size), false) + fragment("", false);
        return bytes + fragment("");
    };
    for (const std::size_t size : {1U, 3U, 4U, 7U, 1000U}) {
        peer_.answer(
            [&](const RpcCall& call) { return inPieces(reply(call.number, readResult(4, "abcdefghijklmnop")), size); });
        EXPECT_EQ(read(100), VI_SUCCESS) << size;
        EXPECT_EQ(received_, "abcdefghijklmnop");
    }
    expectInStep();
}

TEST_F(Vxi11, AnswersToOtherCallsAndCallsAreSkipped)
{
    open();
    peer_.answer([](const RpcCall& call) {
        return reply(call.number - 1, readResult(4, "before")) + reply(call.number + 1, readResult(4, "after")) +
               fragment(words({call.number, 0, 2, 1, 1, 1})) + reply(call.number, readResult(4, "mine"));
    });
    EXPECT_EQ(read(100), VI_SUCCESS);
    EXPECT_EQ(received_, "mine");
}

TEST_F(Vxi11, AVerifierIsSkipped)
{
    open();
    peer_.answer([](const RpcCall& call) {
        return fragment(words({call.number, 1, 0, 7}) + opaque(std::string(399, 'v')) + words({0}) +
                        readResult(4, "ok"));
    });
    EXPECT_EQ(read(100), VI_SUCCESS);
    EXPECT_EQ(received_, "ok");
}

struct LieCase
{
    const char* name;
    std::function<std::string(std::uint32_t number)> answer;
    ViStatus status;
    bool isLost;
};

TEST_F(Vxi11, AnswersThatBreakTheProtocolEndInAStatus)
{
    const std::array<LieCase, 14> cases{{
        {"a verifier too long",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 401}));
         },
         VI_ERROR_INP_PROT_VIOL, true},
        {"a verifier of 4 GiB",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0xFFFFFFFF, 0}));
         },
         VI_ERROR_INP_PROT_VIOL, true},
        {"an empty record", [](auto) { return fragment(""); }, VI_ERROR_INP_PROT_VIOL, true},
        {"a record that ends in its number", [](auto) { return fragment("ab"); }, VI_ERROR_INP_PROT_VIOL, true},
        {"a record that ends before its result",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0}));
         },
         VI_ERROR_INP_PROT_VIOL, true},
        {"a result that is too short", [](auto n) { return reply(n, words({0})); }, VI_ERROR_INP_PROT_VIOL, true},
        {"data that is too short",
         [](auto n) {
             return reply(n, words({0, 4, 8}) + "abcd");
         },
         VI_ERROR_INP_PROT_VIOL, true},
        {"data of 4 GiB",
         [](auto n) {
             return reply(n, words({0, 4, 0xFFFFFFFF}) + "abcd");
         },
         VI_ERROR_INP_PROT_VIOL, false},
        {"a denied call",
         [](auto n) {
             return fragment(words({n, 1, 1, 0, 2, 2}));
         },
         VI_ERROR_IO, false},
        {"no such program",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0, 1}));
         },
         VI_ERROR_NSUP_OPER, false},
        {"no such version",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0, 2, 3, 4}));
         },
         VI_ERROR_NSUP_OPER, false},
        {"no such procedure",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0, 3}));
         },
         VI_ERROR_NSUP_OPER, false},
        {"arguments that cannot be read",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0, 4}));
         },
         VI_ERROR_IO, false},
        {"an unknown acceptance",
         [](auto n) {
             return fragment(words({n, 1, 0, 0, 0, 99}));
         },
         VI_ERROR_IO, false},
    }};
    for (const LieCase& lie : cases) {
        SCOPED_TRACE(lie.name);
        open();
        peer_.answer([&](const RpcCall& call) { return lie.answer(call.number); });
        EXPECT_EQ(read(8), lie.status);
        if (lie.isLost)
            expectLost();
        else
            expectInStep();
    }
}

TEST_F(Vxi11, ARecordOfTwoGibibytesIsWaitedForNoLongerThanTheTime)
{
    waitBriefly();
    open();
    peer_.answer([](const RpcCall& call) { return words({0xFFFFFFFF}) + words({call.number - 1, 1, 0}); });
    EXPECT_EQ(read(10, 1), VI_ERROR_TMO);
}

} // namespace
