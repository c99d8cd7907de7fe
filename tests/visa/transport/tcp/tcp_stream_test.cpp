#include "tests/support/visa/session_fixtures.h"

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using testing::AnyOf;

TEST_F(VisaSocket, WriteSendsExactlyTheBytesGiven)
{
    const std::string bytes("*IDN?\n\0\xFF", 8);
    ViUInt32 written = 0;
    EXPECT_EQ(write(session_, bytes, &written), VI_SUCCESS);
    EXPECT_EQ(written, 8U);
    EXPECT_EQ(peer_.receive(8), bytes);
}

TEST_F(VisaSocket, WriteOfManyBytesReachesASlowReaderWhole)
{
    const std::string bytes(8 * kMebibyte, 'w');
    std::string received;
    std::thread reader([&] {
        while (received.size() < bytes.size())
            received += peer_.receive(std::min<std::size_t>(100000, bytes.size() - received.size()));
    });
    ViUInt32 written = 0;
    EXPECT_EQ(write(session_, bytes, &written), VI_SUCCESS);
    reader.join();
    EXPECT_EQ(written, bytes.size());
    EXPECT_EQ(received, bytes);
}

TEST_F(VisaSocket, WriteThatNobodyReadsEndsWithATimeoutAndTellsWhatWentOut)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    const std::string bytes(64 * kMebibyte, 'w');
    ViUInt32 written = 0;
    EXPECT_EQ(write(session_, bytes, &written), VI_ERROR_TMO);
    EXPECT_GT(written, 0U);
    EXPECT_LT(written, bytes.size());
}

TEST_F(VisaSocket, ReadJoinsTheReplysPieces)
{
    endAt('\n');
    std::thread sender([&] {
        for (const char* piece : {"1", "2.", "5", "\n"}) {
            peer_.send(piece);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "12.5\n"}));
    sender.join();
}

TEST_F(VisaSocket, ReadOfManyBytesIsWhole)
{
    const std::string bytes(kMebibyte, 'r');
    std::thread sender([&] { peer_.send(bytes); });
    EXPECT_EQ(read(session_, static_cast<ViUInt32>(bytes.size())), (ReadResult{VI_SUCCESS_MAX_CNT, bytes}));
    sender.join();
}

TEST_F(VisaSocket, ReadWithoutInputEndsWithATimeout)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
}

TEST_F(VisaSocket, ImmediateReadDeliversWhatIsThere)
{
    endAt('\n');
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    peer_.send("one\ntwo");
    // The loopback delivers before send returns, so both arrived together.
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "two"}));
}

TEST_F(VisaSocket, InfiniteReadWaitsForALateReply)
{
    endAt('\n');
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    std::thread sender([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        peer_.send("late\n");
    });
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "late\n"}));
    sender.join();
}

TEST_F(VisaSocket, ReadDeliversWhatCameBeforeThePeerLeft)
{
    endAt('\n');
    peer_.send("one\nrest");
    peer_.close();
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, "rest"}));
    EXPECT_EQ(read(session_, 4), (ReadResult{VI_SUCCESS_MAX_CNT, "rest"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
}

TEST_F(VisaSocket, PeerThatSendsNoMoreCanStillBeWrittenTo)
{
    peer_.endOutput();
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    EXPECT_EQ(write(session_, "x"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(1), "x");
}

TEST_F(VisaSocket, AnswerThatCameTooLateIsNotTheNextOne)
{
    endAt('\n');
    set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(write(session_, "1"), VI_SUCCESS);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, ""}));
    peer_.send("first\n");
    set(VI_ATTR_TMO_VALUE, kLongMs);
    EXPECT_EQ(write(session_, "2"), VI_SUCCESS);
    peer_.send("second\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "second\n"}));
}

TEST_F(VisaSocket, AnswerCutInTwoIsNotTheNextOne)
{
    endAt('\n');
    set(VI_ATTR_TMO_VALUE, kShortMs);
    peer_.send("12.");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "12."}));
    peer_.send("5\n" + std::string(100000, 'x') + "\n");
    set(VI_ATTR_TMO_VALUE, kLongMs);
    EXPECT_EQ(write(session_, "2"), VI_SUCCESS);
    peer_.send("second\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "second\n"}));
}

TEST_F(VisaSocket, ClearDropsWhatHasArrived)
{
    endAt('\n');
    peer_.send("old\nolder\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "old\n"}));
    peer_.send("oldest\n");
    EXPECT_EQ(viClear(session_), VI_SUCCESS);
    peer_.send("new\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "new\n"}));
}

TEST_F(VisaSocket, PeerThatNeverStopsSendingDoesNotHoldADiscard)
{
    std::atomic<bool> isOver = false;
    std::thread flood([&] {
        const std::string bytes(kMebibyte, 'f');
        while (!isOver && peer_.sends(bytes)) {
        }
    });
    for (int round = 0; round < 5; ++round) {
        // A peer faster than this thread fills the connection again and again; giving up is an answer too.
        EXPECT_THAT(viSetBuf(session_, VI_IO_IN_BUF, 1024), AnyOf(VI_WARN_NSUP_BUF, VI_ERROR_TMO));
        EXPECT_THAT(viClear(session_), AnyOf(VI_SUCCESS, VI_ERROR_TMO));
    }
    isOver = true;
    EXPECT_EQ(viClose(session_), VI_SUCCESS);
    flood.join();
}

TEST_F(VisaSocket, ResetConnectionIsLostForReadsAndWrites)
{
    peer_.reset();
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_CONN_LOST, ""}));
    EXPECT_EQ(write(session_, "x"), VI_ERROR_CONN_LOST);
}

TEST_F(VisaSocket, CloseByAnotherThreadEndsAnInfiniteRead)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    EXPECT_EQ(statusOnClose([&] { return read(session_, 100).status; }), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaSocket, CloseByAnotherThreadEndsAnInfiniteWrite)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    const std::string bytes(64 * kMebibyte, 'w');
    EXPECT_EQ(statusOnClose([&] { return write(session_, bytes); }), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaSocket, CloseDuringReadsAndWritesIsSafe)
{
    for (int round = 0; round < 20; ++round) {
        const ViSession session = open(peer_.resource());
        peer_.accept();
        std::thread reader([session] { EXPECT_LT(read(session, 100).status, 0); });
        std::thread writer([session] {
            while (write(session, "x") == VI_SUCCESS) {
            }
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(viClose(session), VI_SUCCESS);
        reader.join();
        writer.join();
    }
}

TEST_F(VisaSocket, SessionsWorkInParallel)
{
    constexpr int kSessions = 4;
    constexpr int kRounds = 200;
    std::vector<std::thread> threads;
    threads.reserve(kSessions);
    for (int i = 0; i < kSessions; ++i)
        threads.emplace_back([this, i] {
            TcpPeer peer;
            const ViSession session = open(peer.resource());
            peer.accept();
            EXPECT_EQ(viSetAttribute(session, VI_ATTR_TERMCHAR_EN, VI_TRUE), VI_SUCCESS);
            EXPECT_EQ(viSetAttribute(session, VI_ATTR_TMO_VALUE, kLongMs), VI_SUCCESS);
            const std::string message = "session " + std::to_string(i) + "\n";
            for (int round = 0; round < kRounds; ++round) {
                ASSERT_EQ(write(session, message), VI_SUCCESS);
                peer.send(peer.receive(message.size()));
                ASSERT_EQ(read(session, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, message}));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

class VisaConnect : public VisaTest
{
protected:
    ViStatus tryToOpen(const std::string& resource, ViUInt32 timeoutMs = 0)
    {
        ViSession session = 17;
        const ViStatus status = viOpen(manager_, resource.c_str(), VI_NULL, timeoutMs, &session);
        if (status < 0) {
            EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
        }
        return status;
    }
};

TEST_F(VisaConnect, RefusedConnectionIsNotFound)
{
    asio::io_context context;
    asio::ip::tcp::acceptor silent(context);
    // Bound but not listening: the port is taken, and connections are refused.
    silent.open(asio::ip::tcp::v4());
    silent.bind({asio::ip::address_v4::loopback(), 0});
    const std::string port = std::to_string(silent.local_endpoint().port());
    EXPECT_EQ(tryToOpen("TCPIP::127.0.0.1::" + port + "::SOCKET"), VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaConnect, UnknownHostIsNotFound)
{
    // A label longer than a name server accepts, so that no question leaves this machine.
    EXPECT_EQ(tryToOpen("TCPIP::" + std::string(70, 'x') + "::5025::SOCKET"), VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaConnect, UnansweredConnectionEndsWithATimeout)
{
    asio::io_context context;
    asio::ip::tcp::acceptor full(context);
    full.open(asio::ip::tcp::v4());
    full.bind({asio::ip::address_v4::loopback(), 0});
    full.listen(0);
    // Connections that nobody accepts fill the queue; once it is full, further ones stay unanswered.
    std::vector<std::unique_ptr<asio::ip::tcp::socket>> waiting;
    for (int i = 0; i < 8; ++i) {
        auto socket = std::make_unique<asio::ip::tcp::socket>(context);
        socket->async_connect(full.local_endpoint(), [](const asio::error_code&) {});
        waiting.push_back(std::move(socket));
    }
    const std::string port = std::to_string(full.local_endpoint().port());
    EXPECT_EQ(tryToOpen("TCPIP::127.0.0.1::" + port + "::SOCKET", 50), VI_ERROR_TMO);
}

TEST_F(VisaConnect, HostNamesAndEveryLetterCaseAreUnderstood)
{
    TcpPeer peer;
    EXPECT_EQ(tryToOpen("tcpip::LOCALHOST::" + std::to_string(peer.port()) + "::socket"), VI_SUCCESS);
}

TEST_F(VisaConnect, Ipv6AddressesAreUnderstoodInBrackets)
{
    std::unique_ptr<TcpPeer> peer;
    try {
        peer = std::make_unique<TcpPeer>("::1");
    } catch (const std::system_error&) {
        GTEST_SKIP() << "this host has no ::1";
    }
    const ViSession session = open(peer->resource("[::1]"));
    peer->accept();
    EXPECT_EQ(write(session, "six"), VI_SUCCESS);
    EXPECT_EQ(peer->receive(3), "six");
    EXPECT_EQ(textAttribute(session, VI_ATTR_TCPIP_ADDR), "::1");
    EXPECT_EQ(textAttribute(session, VI_ATTR_TCPIP_HOSTNAME), "::1");
}

TEST_F(VisaConnect, ConnectionIsClosedWithItsSession)
{
    TcpPeer peer;
    const ViSession session = open(peer.resource());
    peer.accept();
    EXPECT_EQ(viClose(session), VI_SUCCESS);
    EXPECT_EQ(peer.receive(1), "");
}

} // namespace
