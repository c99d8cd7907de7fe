#include "tests/support/visa/session_fixtures.h"

#include <chrono>
#include <thread>

namespace
{

using namespace kvxtest;

TEST_F(VisaSocket, WriteOfNothingSucceedsAndSendsNothing)
{
    ViUInt32 written = 5;
    EXPECT_EQ(viWrite(session_, nullptr, 0, &written), VI_SUCCESS);
    EXPECT_EQ(written, 0U);
    EXPECT_EQ(write(session_, "x"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(1), "x");
}

TEST_F(VisaSocket, WriteIsNotChangedBySendEnd)
{
    set(VI_ATTR_SEND_END_EN, VI_FALSE);
    EXPECT_EQ(write(session_, "abc"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(3), "abc");
}

TEST_F(VisaSocket, ReadEndsAtTheTerminationCharacter)
{
    endAt('\n');
    peer_.send("12.5\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "12.5\n"}));
}

TEST_F(VisaSocket, ReadEndsAtAnyByteThatIsTheTerminationCharacter)
{
    endAt('\xFE');
    peer_.send("a\n\xFE");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "a\n\xFE"}));
}

TEST_F(VisaSocket, ReadEndsWhenTheCountIsReached)
{
    endAt('\n');
    peer_.send("abcdef\n");
    EXPECT_EQ(read(session_, 3), (ReadResult{VI_SUCCESS_MAX_CNT, "abc"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "def\n"}));
}

TEST_F(VisaSocket, TheTerminationCharacterWinsOverTheCount)
{
    endAt('\n');
    peer_.send("ab\n");
    EXPECT_EQ(read(session_, 3), (ReadResult{VI_SUCCESS_TERM_CHAR, "ab\n"}));
}

TEST_F(VisaSocket, ReadOfNothingIsCompleteAtOnce)
{
    EXPECT_EQ(read(session_, 0), (ReadResult{VI_SUCCESS_MAX_CNT, ""}));
}

TEST_F(VisaSocket, BytesBeyondTheEndBelongToTheNextReads)
{
    endAt('\n');
    peer_.send("one\ntwo\nthree\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one\n"}));
    EXPECT_EQ(read(session_, 2), (ReadResult{VI_SUCCESS_MAX_CNT, "tw"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "o\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "three\n"}));
}

TEST_F(VisaSocket, WithoutTerminationCharacterAShortReplyEndsWithATimeoutAndIsDelivered)
{
    set(VI_ATTR_TMO_VALUE, kShortMs);
    peer_.send("abc\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "abc\n"}));
}

TEST_F(VisaSocket, ReadAndWriteRunAtTheSameTime)
{
    endAt('\n');
    std::thread reader([&] { EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "reply\n"})); });
    EXPECT_EQ(write(session_, "query\n"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(6), "query\n");
    peer_.send("reply\n");
    reader.join();
}

TEST_F(VisaSocket, SetBufResults)
{
    EXPECT_EQ(viSetBuf(session_, VI_READ_BUF, 1024), VI_SUCCESS);
    EXPECT_EQ(viSetBuf(session_, VI_WRITE_BUF, 2048), VI_SUCCESS);
    EXPECT_EQ(viSetBuf(session_, VI_READ_BUF | VI_WRITE_BUF, 512), VI_SUCCESS);
    EXPECT_EQ(viSetBuf(session_, VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(viSetBuf(session_, VI_IO_OUT_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(viSetBuf(session_, VI_READ_BUF | VI_IO_OUT_BUF, 1024), VI_WARN_NSUP_BUF);
    for (const ViUInt16 mask : std::initializer_list<ViUInt16>{0, 4, 8, 64, 128, 1 | 4, 0x8000})
        EXPECT_EQ(viSetBuf(session_, mask, 1024), VI_ERROR_INV_MASK) << mask;
}

TEST_F(VisaSocket, SizedBuffersDoNotLimitTransfers)
{
    EXPECT_EQ(viSetBuf(session_, VI_READ_BUF | VI_WRITE_BUF, 4), VI_SUCCESS);
    EXPECT_EQ(write(session_, "0123456789"), VI_SUCCESS);
    peer_.send(peer_.receive(10));
    EXPECT_EQ(read(session_, 10), (ReadResult{VI_SUCCESS_MAX_CNT, "0123456789"}));
}

TEST_F(VisaSocket, SizingTheReceiveBufferDropsWhatHasArrived)
{
    endAt('\n');
    peer_.send("old\nolder\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "old\n"}));
    EXPECT_EQ(viSetBuf(session_, VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    peer_.send("new\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "new\n"}));
}

TEST_F(VisaSocket, SizingTheReceiveBufferDoesNotWaitForAReadUnderWay)
{
    endAt('\n');
    std::thread reader([&] { EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "reply\n"})); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(viSetBuf(session_, VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    peer_.send("reply\n");
    reader.join();
}

TEST_F(VisaSerial, EndInTermCharEndsWithSuccessAtTheTerminationCharacter)
{
    peer_.send("one\ntwo\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "one\n"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "two\n"}));
}

TEST_F(VisaSerial, EndWinsOverTheTerminationCharacterAndTheCount)
{
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    peer_.send("ab\n");
    EXPECT_EQ(read(session_, 3), (ReadResult{VI_SUCCESS, "ab\n"}));
}

TEST_F(VisaSerial, EndInTermCharFollowsTheAttribute)
{
    set(VI_ATTR_TERMCHAR, ';');
    peer_.send("a\nb;");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "a\nb;"}));
}

TEST_F(VisaSerial, EndInNoneWithTermCharEnabledEndsAtTheTerminationCharacter)
{
    set(VI_ATTR_ASRL_END_IN, VI_ASRL_END_NONE);
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    peer_.send("one\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one\n"}));
}

TEST_F(VisaSerial, EndInNoneAloneEndsOnlyAtTheCountOrTheTimeout)
{
    set(VI_ATTR_ASRL_END_IN, VI_ASRL_END_NONE);
    set(VI_ATTR_TMO_VALUE, kShortMs);
    peer_.send("one\ntwo\n");
    EXPECT_EQ(read(session_, 5), (ReadResult{VI_SUCCESS_MAX_CNT, "one\nt"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_ERROR_TMO, "wo\n"}));
}

TEST_F(VisaSerial, SuppressedEndLeavesTheTerminationCharacter)
{
    set(VI_ATTR_SUPPRESS_END_EN, VI_TRUE);
    set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    peer_.send("one\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS_TERM_CHAR, "one\n"}));
}

TEST_F(VisaSerial, EndInLastBitEndsAtTheByteWithItsTopDataBitSet)
{
    set(VI_ATTR_ASRL_END_IN, VI_ASRL_END_LAST_BIT);
    peer_.send("a\nb\xE3rest\x80");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "a\nb\xE3"}));
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "rest\x80"}));
    set(VI_ATTR_ASRL_DATA_BITS, 5);
    peer_.send("abq");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "abq"}));
}

struct EndOutCase
{
    const char* name;
    ViUInt32 endOut;
    std::string sent;
};

class VisaSerialEndOut : public VisaSerial, public testing::WithParamInterface<EndOutCase>
{
};

TEST_P(VisaSerialEndOut, DecidesWhatFollowsTheBytes)
{
    set(VI_ATTR_ASRL_END_OUT, GetParam().endOut);
    ViUInt32 written = 0;
    EXPECT_EQ(write(session_,
                    "a\xC2"
                    "c",
                    &written),
              VI_SUCCESS);
    EXPECT_EQ(written, 3U);
    set(VI_ATTR_ASRL_END_OUT, VI_ASRL_END_NONE);
    EXPECT_EQ(write(session_, "|"), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(GetParam().sent.size() + 1), GetParam().sent + "|");
}

INSTANTIATE_TEST_SUITE_P(Modes, VisaSerialEndOut,
                         testing::Values(EndOutCase{"None", VI_ASRL_END_NONE,
                                                    "a\xC2"
                                                    "c"},
                                         EndOutCase{"LastBit", VI_ASRL_END_LAST_BIT, "a\x42\xE3"},
                                         EndOutCase{"TermChar", VI_ASRL_END_TERMCHAR,
                                                    "a\xC2"
                                                    "c\n"},
                                         EndOutCase{"Break", VI_ASRL_END_BREAK,
                                                    "a\xC2"
                                                    "c"}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(VisaSerial, LastBitMarksTheLastOfManyBytes)
{
    set(VI_ATTR_ASRL_END_OUT, VI_ASRL_END_LAST_BIT);
    const std::string bytes(1100, '\xFF');
    std::string received;
    std::thread receiver([&] { received = peer_.receive(bytes.size()); });
    EXPECT_EQ(write(session_, bytes), VI_SUCCESS);
    receiver.join();
    EXPECT_EQ(received, std::string(1099, '\x7F') + '\xFF');
}

TEST_F(VisaSerial, AvailNumCountsWhatANextReadCanTake)
{
    peer_.send("one\ntwo\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "one\n"}));
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_ASRL_AVAIL_NUM), 4U);
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "two\n"}));
    EXPECT_EQ(attribute<ViUInt32>(session_, VI_ATTR_ASRL_AVAIL_NUM), 0U);
}

TEST_F(VisaSerial, SetBufResults)
{
    EXPECT_EQ(viSetBuf(session_, VI_READ_BUF | VI_WRITE_BUF, 1024), VI_SUCCESS);
    EXPECT_EQ(viSetBuf(session_, VI_ASRL_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(viSetBuf(session_, VI_ASRL_OUT_BUF, 1024), VI_WARN_NSUP_BUF);
    EXPECT_EQ(viSetBuf(session_, 0, 1024), VI_ERROR_INV_MASK);
}

TEST_F(VisaSerial, SizingTheReceiveBufferDropsWhatHasArrived)
{
    peer_.send("one\ntwo\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "one\n"}));
    EXPECT_EQ(viSetBuf(session_, VI_IO_IN_BUF, 1024), VI_WARN_NSUP_BUF);
    peer_.send("new\n");
    EXPECT_EQ(read(session_, 100), (ReadResult{VI_SUCCESS, "new\n"}));
}

} // namespace
