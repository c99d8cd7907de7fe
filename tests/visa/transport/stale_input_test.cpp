#include "tests/support/visa/scripted_stream.h"
#include "visa/session/instrument_session.h"
#include "visa/session/manager_session.h"
#include "visa/transport/stream_transport.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using kvxtest::ScriptedStream;
using testing::ElementsAre;
using testing::IsEmpty;
using Read = std::pair<ViStatus, std::string>;

constexpr std::size_t kCarriedOver = 16384;

/// A session to a socket that ends its reads at a line feed.
class StaleInput : public testing::Test
{
protected:
    static visa::ResourceName name()
    {
        visa::ResourceName name;
        name.kind = visa::ResourceKind::TcpipSocket;
        return name;
    }

    void SetUp() override { set(VI_ATTR_TERMCHAR_EN, VI_TRUE); }

    void set(ViAttr attribute, ViAttrState value) { ASSERT_EQ(session_.setAttribute(attribute, value), VI_SUCCESS); }

    void arrive(const std::string& bytes) { stream_.arrivals.push_back({VI_SUCCESS, bytes}); }
    void fail(ViStatus status, const std::string& bytes = {}) { stream_.arrivals.push_back({status, bytes}); }

    Read read(std::size_t size = 100)
    {
        std::basic_string<ViByte> buffer(size, ViByte{0});
        std::size_t count = 0;
        const ViStatus status = session_.read(buffer, count);
        EXPECT_LE(count, size);
        return {status, std::string(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count))};
    }

    ViStatus write(const std::string& bytes)
    {
        std::size_t count = 0;
        return session_.write({reinterpret_cast<const ViByte*>(bytes.data()), bytes.size()}, count);
    }

    ScriptedStream& stream_ = *new ScriptedStream;
    std::shared_ptr<visa::ResourceLock> lock_ = std::make_shared<visa::ResourceLock>();
    visa::InstrumentSession session_{
        {2, 1, name()},
        {std::make_unique<visa::StreamTransport>(std::unique_ptr<visa::Stream>(&stream_), visa::Framing::None),
         visa::kSocket},
        lock_};
};

TEST_F(StaleInput, MessageCutInTwoByATimeoutIsWholeInTheNextRead)
{
    arrive("12.");
    fail(VI_ERROR_TMO);
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "12."));
    arrive("5\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "12.5\n"));
}

TEST_F(StaleInput, EveryFailureKeepsWhatHasCome)
{
    for (const ViStatus failure : {VI_ERROR_TMO, VI_ERROR_IO, VI_ERROR_CONN_LOST, VI_ERROR_ALLOC}) {
        arrive("1");
        arrive("2");
        fail(failure);
        fail(failure);
        EXPECT_EQ(read(), Read(failure, "12"));
        EXPECT_EQ(read(), Read(failure, "12"));
        arrive("3\n4\n");
        EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "123\n"));
        EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "4\n"));
    }
}

TEST_F(StaleInput, BytesThatComeWithAFailureAreKept)
{
    arrive("1");
    fail(VI_ERROR_IO, "2");
    EXPECT_EQ(read(), Read(VI_ERROR_IO, "1"));
    arrive("3\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "123\n"));
}

TEST_F(StaleInput, KeepsAsMuchAsTheCallersBufferTook)
{
    const std::string block(kCarriedOver, 'x');
    for (int count = 0; count < 3; ++count)
        arrive(block);
    EXPECT_EQ(read(4 * kCarriedOver), Read(VI_ERROR_TMO, block + block + block));
    arrive("y\nz\n");
    EXPECT_EQ(read(4 * kCarriedOver), Read(VI_SUCCESS_TERM_CHAR, block + block + block + "y\n"));
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "z\n"));
}

TEST_F(StaleInput, SmallReadsTakeWhatWasKeptInPieces)
{
    arrive("12345");
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "12345"));
    EXPECT_EQ(read(2), Read(VI_SUCCESS_MAX_CNT, "12"));
    EXPECT_EQ(read(2), Read(VI_SUCCESS_MAX_CNT, "34"));
    arrive("\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "5\n"));
}

TEST_F(StaleInput, IsDiscardedByTheWriteAfterAReadThatFailed)
{
    arrive("1");
    fail(VI_ERROR_TMO);
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "1"));
    arrive("2\n");
    EXPECT_EQ(write("next?"), VI_SUCCESS);
    EXPECT_EQ(write("and?"), VI_SUCCESS);
    EXPECT_THAT(stream_.calls, ElementsAre("discardInput", "write next?", "write and?"));
    arrive("fresh\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "fresh\n"));
}

TEST_F(StaleInput, IsNotDiscardedAfterReadsThatSucceeded)
{
    arrive("1\n2345\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "1\n"));
    EXPECT_EQ(write("a"), VI_SUCCESS);
    EXPECT_EQ(read(2), Read(VI_SUCCESS_MAX_CNT, "23"));
    EXPECT_EQ(write("b"), VI_SUCCESS);
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "45\n"));
    EXPECT_THAT(stream_.calls, ElementsAre("write a", "write b"));
}

TEST_F(StaleInput, OnlyTheLastReadCounts)
{
    arrive("1");
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "1"));
    arrive("2\n3\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "12\n"));
    EXPECT_EQ(write("a"), VI_SUCCESS);
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "3\n"));
    EXPECT_THAT(stream_.calls, ElementsAre("write a"));
}

TEST_F(StaleInput, StaysWhereAnAttributeSaysSo)
{
    std::uint16_t value = 0;
    EXPECT_EQ(session_.getAttribute(VI_ATTR_KVX_DISCARD_STALE_INPUT, &value), VI_SUCCESS);
    EXPECT_EQ(value, VI_TRUE);
    set(VI_ATTR_KVX_DISCARD_STALE_INPUT, VI_FALSE);
    arrive("1");
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "1"));
    EXPECT_EQ(write("a"), VI_SUCCESS);
    EXPECT_THAT(stream_.calls, ElementsAre("write a"));
    arrive("2\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "12\n"));
}

TEST_F(StaleInput, NothingIsWrittenWhileItCannotBeDiscarded)
{
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, ""));
    stream_.discardStatus = VI_ERROR_IO;
    EXPECT_EQ(write("a"), VI_ERROR_IO);
    EXPECT_EQ(write("b"), VI_ERROR_IO);
    stream_.discardStatus = VI_SUCCESS;
    EXPECT_EQ(write("c"), VI_SUCCESS);
    EXPECT_EQ(write("d"), VI_SUCCESS);
    EXPECT_THAT(stream_.calls, ElementsAre("discardInput", "discardInput", "discardInput", "write c", "write d"));
}

TEST_F(StaleInput, DiscardingTakesNoLongerThanTheTimeoutOrAMoment)
{
    set(VI_ATTR_TMO_VALUE, 5000);
    EXPECT_EQ(session_.setBuffer(VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(stream_.discardMs, 5000);
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    EXPECT_EQ(session_.setBuffer(VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(stream_.discardMs, 100);
}

TEST_F(StaleInput, SizingTheReceiveBufferTellsWhyItCouldNotBeDropped)
{
    stream_.discardStatus = VI_ERROR_TMO;
    EXPECT_EQ(session_.setBuffer(VI_IO_IN_BUF, 1024), VI_ERROR_TMO);
    EXPECT_EQ(session_.setBuffer(VI_READ_BUF, 1024), VI_SUCCESS);
}

TEST_F(StaleInput, SizingTheReceiveBufferDropsWhatAFailedReadHasKept)
{
    arrive("1");
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, "1"));
    EXPECT_EQ(session_.setBuffer(VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    arrive("2\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "2\n"));
}

TEST_F(StaleInput, ClearDropsOutputBeforeInput)
{
    arrive("1\n2\n");
    EXPECT_EQ(read(), Read(VI_SUCCESS_TERM_CHAR, "1\n"));
    arrive("3\n");
    EXPECT_EQ(session_.clear(), VI_SUCCESS);
    EXPECT_THAT(stream_.calls, ElementsAre("clearDevice", "discardInput"));
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, ""));
}

TEST_F(StaleInput, ClearTellsItsFirstFailureAndDropsTheInputAllTheSame)
{
    stream_.clearStatus = VI_ERROR_TMO;
    arrive("1\n");
    EXPECT_EQ(session_.clear(), VI_ERROR_TMO);
    EXPECT_EQ(read(), Read(VI_ERROR_TMO, ""));
    stream_.clearStatus = VI_SUCCESS;
    stream_.discardStatus = VI_ERROR_CONN_LOST;
    EXPECT_EQ(session_.clear(), VI_ERROR_CONN_LOST);
}

TEST_F(StaleInput, ClearIsRefusedWhileAnotherSessionHoldsTheLock)
{
    const std::atomic<bool> isClosing = false;
    ASSERT_EQ(lock_->acquireExclusive(17, visa::Deadline(VI_TMO_IMMEDIATE), isClosing), VI_SUCCESS);
    EXPECT_EQ(session_.clear(), VI_ERROR_RSRC_LOCKED);
    EXPECT_THAT(stream_.calls, IsEmpty());
}

TEST_F(StaleInput, CountBeyondTheRoomIsNotBelieved)
{
    stream_.arrivals.push_back({VI_SUCCESS, std::string(kCarriedOver, 'x'), 1000000});
    EXPECT_EQ(read(2 * kCarriedOver), Read(VI_ERROR_TMO, std::string(kCarriedOver, 'x')));
}

TEST(ManagerSession, HasNoDeviceToClear)
{
    EXPECT_EQ(visa::ManagerSession().clear(), VI_ERROR_NSUP_OPER);
}

} // namespace
