#include "tests/support/visa/usbtmc_fixture.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class UsbtmcRecovery : public UsbtmcTest
{
protected:
    void SetUp() override { open(); }

    /// That the next message and its answer come through.
    void expectInOrder()
    {
        device_.violations.clear();
        EXPECT_EQ(write("query"), VI_SUCCESS);
        device_.answer("answer");
        EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "answer"));
    }
};

TEST_F(UsbtmcRecovery, ReadThatTimesOutIsTakenBack)
{
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100", "InitiateAbortBulkIn 1", "CheckAbortBulkInStatus 0"));
    expectInOrder();
}

TEST_F(UsbtmcRecovery, ReadThatTimesOutInTheMiddleGivesWhatCame)
{
    device_.answer("abc");
    device_.bulkInEnds = Outcome::TimedOut;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, "abc"));
    device_.bulkInEnds = Outcome::Complete;
    expectInOrder();
}

TEST_F(UsbtmcRecovery, PartsBeforeATimeoutAreGiven)
{
    device_.answer("abc", false);
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, "abc"));
    EXPECT_THAT(device_.log,
                ElementsAre("ask 1 for 100", "ask 2 for 97", "InitiateAbortBulkIn 2", "CheckAbortBulkInStatus 0"));
    expectInOrder();
}

TEST_F(UsbtmcRecovery, AbortOfAReadWaitsUntilTheDeviceIsDone)
{
    device_.pendingPolls = 3;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_THAT(device_.log,
                ElementsAre("ask 1 for 100", "InitiateAbortBulkIn 1", "CheckAbortBulkInStatus 0",
                            "CheckAbortBulkInStatus 0", "CheckAbortBulkInStatus 0", "CheckAbortBulkInStatus 0"));
    EXPECT_EQ(device_.pauses, 3);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, AbortOfAReadDropsWhatTheDeviceStillHas)
{
    device_.pendingPolls = 2;
    device_.hasMoreWhilePending = true;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_EQ(device_.pauses, 0);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, DeviceThatNeverEndsAnAbortIsGivenUp)
{
    device_.pendingPolls = 1000000;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_LE(device_.transfers, 3010);
    device_.hasMoreWhilePending = true;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
}

TEST_F(UsbtmcRecovery, DeviceWithoutAbortMayAnswerLate)
{
    device_.outcomes[Request::InitiateAbortBulkIn] = Outcome::Stalled;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    const UsbtmcDevice::Bytes first{2, 1, 0xFE, 0, 4, 0, 0, 0, 1, 0, 0, 0, 'l', 'a', 't', 'e'};
    const UsbtmcDevice::Bytes second{2, 2, 0xFD, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    device_.leftOver = {first, second};
    expectInOrder();
    device_.leftOver = {first};
    EXPECT_EQ(read(), UsbRead(VI_ERROR_INP_PROT_VIOL, ""));
}

struct BadReply
{
    const char* name;
    void (*mangle)(UsbtmcDevice::Bytes&);
    std::string kept;
};

class UsbtmcBadReply : public UsbtmcRecovery, public testing::WithParamInterface<BadReply>
{
};

TEST_P(UsbtmcBadReply, IsAViolationThatIsTakenBack)
{
    device_.answer("0123456789ab");
    device_.mangle = GetParam().mangle;
    EXPECT_EQ(read(20), UsbRead(VI_ERROR_INP_PROT_VIOL, GetParam().kept));
    EXPECT_EQ(device_.log.at(1), "InitiateAbortBulkIn 1");
    device_.mangle = nullptr;
    expectInOrder();
}

INSTANTIATE_TEST_SUITE_P(
    Faults, UsbtmcBadReply,
    testing::Values(BadReply{"OtherMessage", [](auto& bytes) { bytes[0] = 3; }, ""},
                    BadReply{"WrongTag",
                             [](auto& bytes) {
                                 bytes[1] = 9;
                                 bytes[2] = 0xF6;
                             },
                             ""},
                    BadReply{"WrongComplement", [](auto& bytes) { bytes[2] = 0; }, ""},
                    BadReply{"SizeBeyondTheTransfer", [](auto& bytes) { bytes[4] = 15; }, "0123456789ab"},
                    BadReply{"SizeBeyondTheCount", [](auto& bytes) { bytes[4] = 21; }, "0123456789ab"},
                    BadReply{"HugeSize", [](auto& bytes) { bytes[7] = 0xFF; }, "0123456789ab"},
                    BadReply{"HeaderCutShort", [](auto& bytes) { bytes.resize(11); }, ""},
                    BadReply{"DataCutShort", [](auto& bytes) { bytes.resize(15); }, "012"},
                    BadReply{"MoreThanThereIsRoomFor", [](auto& bytes) { bytes.resize(100000); }, "0123456789ab"}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(UsbtmcRecovery, HaltedPipesAreEnded)
{
    device_.answer("abc");
    device_.bulkInEnds = Outcome::Stalled;
    EXPECT_EQ(read().first, VI_ERROR_IO);
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100", "clear halt 0x81"));
    device_.bulkInEnds = Outcome::Complete;
    device_.log.clear();
    device_.bulkOutEnds = Outcome::Stalled;
    device_.bulkOutTakes = 0;
    EXPECT_EQ(write("abc"), VI_ERROR_IO);
    EXPECT_THAT(device_.log, ElementsAre("clear halt 0x02"));
}

TEST_F(UsbtmcRecovery, WriteThatTimesOutIsTakenBack)
{
    device_.bulkOutEnds = Outcome::TimedOut;
    device_.bulkOutTakes = 14;
    device_.pendingPolls = 1;
    std::size_t written = 0;
    EXPECT_EQ(write("abc", &written), VI_ERROR_TMO);
    EXPECT_EQ(written, 2U);
    EXPECT_THAT(device_.log, ElementsAre("InitiateAbortBulkOut 1", "CheckAbortBulkOutStatus 0",
                                         "CheckAbortBulkOutStatus 0", "clear halt 0x02"));
    device_.bulkOutEnds = Outcome::Complete;
    device_.bulkOutTakes = 1000;
    expectInOrder();
}

TEST_F(UsbtmcRecovery, RequestThatTimesOutIsTakenBackAsAMessage)
{
    device_.bulkOutEnds = Outcome::TimedOut;
    device_.bulkOutTakes = 0;
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
    EXPECT_EQ(device_.log.front(), "InitiateAbortBulkOut 1");
}

TEST_F(UsbtmcRecovery, WriteOfFewerBytesThanGivenFails)
{
    device_.bulkOutTakes = 13;
    std::size_t written = 0;
    EXPECT_EQ(write("abc", &written), VI_ERROR_IO);
    EXPECT_EQ(written, 1U);
    EXPECT_EQ(device_.log.front(), "InitiateAbortBulkOut 1");
}

TEST_F(UsbtmcRecovery, DeviceThatKnowsOfNoTransferHasNothingToTakeBack)
{
    for (const ViByte status : std::initializer_list<ViByte>{0x80, 0x81, 0x02, 0x20, 0x00}) {
        device_.log.clear();
        device_.answers[Request::InitiateAbortBulkIn] = {status, 0};
        EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
        EXPECT_EQ(device_.log.size(), 2U) << int{status};
    }
}

TEST_F(UsbtmcRecovery, ClearTellsTheDeviceAndEndsAHalt)
{
    device_.pendingPolls = 2;
    EXPECT_EQ(clear(), VI_SUCCESS);
    EXPECT_THAT(device_.log, ElementsAre("InitiateClear 0", "CheckClearStatus 0", "CheckClearStatus 0",
                                         "CheckClearStatus 0", "clear halt 0x02"));
    EXPECT_EQ(device_.pauses, 2);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, ClearDropsWhatNoReadHasTaken)
{
    device_.heedsTermChar = false;
    endAt('\n');
    device_.answer("one\ntwo");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
    EXPECT_EQ(clear(), VI_SUCCESS);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, ClearDropsWhatTheDeviceStillSends)
{
    device_.pendingPolls = 3;
    device_.hasMoreWhilePending = true;
    device_.leftOver = {UsbtmcDevice::Bytes(200000, 'x'), {}, UsbtmcDevice::Bytes(5, 'x')};
    EXPECT_EQ(clear(), VI_SUCCESS);
    EXPECT_THAT(device_.leftOver, IsEmpty());
    EXPECT_EQ(device_.pauses, 0);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, ClearThatIsNotDoneInTimeFails)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    device_.pendingPolls = 1000000;
    EXPECT_EQ(clear(), VI_ERROR_TMO);
    EXPECT_EQ(device_.log.back(), "clear halt 0x02");
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    EXPECT_EQ(clear(), VI_ERROR_TMO);
    EXPECT_EQ(device_.pauses, 3000);
}

TEST_F(UsbtmcRecovery, EveryStatusOfAClearIsTold)
{
    for (int status = 0; status < 256; ++status) {
        if (status == 2)
            continue;
        const auto byte = static_cast<ViByte>(status);
        device_.answers[Request::CheckClearStatus] = {byte, 0};
        EXPECT_EQ(clear(), visa::usbtmc::visaStatus(static_cast<Status>(byte))) << status;
        device_.answers[Request::InitiateClear] = {byte};
        EXPECT_EQ(clear(), visa::usbtmc::visaStatus(static_cast<Status>(byte))) << status;
        device_.answers.clear();
    }
}

TEST_F(UsbtmcRecovery, AbortEndsAReadThatWaits)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    device_.waits = true;
    std::thread aborting([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(transport_->abort(), VI_SUCCESS);
    });
    EXPECT_EQ(read(), UsbRead(VI_ERROR_ABORT, ""));
    aborting.join();
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100", "InitiateAbortBulkIn 1", "CheckAbortBulkInStatus 0"));
    expectInOrder();
}

TEST_F(UsbtmcRecovery, AbortOfNothingIsNothing)
{
    EXPECT_EQ(transport_->abort(), VI_SUCCESS);
    expectInOrder();
}

TEST_F(UsbtmcRecovery, ClearEndsAReadThatWaits)
{
    set(VI_ATTR_TMO_VALUE, 60000);
    device_.waits = true;
    UsbRead result;
    std::thread reader([&] { result = read(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(clear(), VI_SUCCESS);
    reader.join();
    EXPECT_EQ(result, UsbRead(VI_ERROR_ABORT, ""));
    expectInOrder();
}

TEST_F(UsbtmcRecovery, OthersWaitForTheirTurnNoLongerThanTheirDeadline)
{
    set(VI_ATTR_TMO_VALUE, 60000);
    device_.waits = true;
    UsbRead result;
    std::thread reader([&] { result = read(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    visa::AttributeValues attributes;
    const visa::Deadline deadline(20);
    const ViByte byte = 'a';
    std::size_t count = 0;
    EXPECT_EQ(transport_->write({&byte, 1}, {attributes, deadline}, count), VI_ERROR_TMO);
    device_.answer("late");
    reader.join();
    EXPECT_EQ(result, UsbRead(VI_SUCCESS, "late"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100"));
}

TEST_F(UsbtmcRecovery, InterruptEndsAllThatWaitsForGood)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_INFINITE);
    device_.waits = true;
    std::vector<UsbRead> results(3);
    std::vector<std::thread> readers;
    readers.reserve(results.size());
    for (UsbRead& result : results)
        readers.emplace_back([&] { result = read(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    transport_->interrupt();
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_THAT(results, testing::Each(UsbRead(VI_ERROR_INV_OBJECT, "")));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100", "InitiateAbortBulkIn 1", "CheckAbortBulkInStatus 0"));
    EXPECT_EQ(write("a"), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(clear(), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(statusByte().first, VI_ERROR_INV_OBJECT);
}

/// What a session does, with each of its transfers failing in turn.
class UsbtmcEveryTransfer : public UsbtmcTest, public testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        if (GetParam())
            device_.addInterruptPipe();
        open();
        all();
        count_ = device_.transfers;
        ASSERT_GT(count_, 12);
    }

    std::vector<ViStatus> all()
    {
        device_.answer("abc");
        return {write("a"), read().first,       read().first,
                trigger(),  statusByte().first, controlRemote(VI_GPIB_REN_DEASSERT_GTL),
                clear()};
    }

    std::vector<ViStatus> allWith(int failsAt, Outcome failure, bool fromThenOn)
    {
        device_.transfers = 0;
        device_.failsAt = failsAt;
        device_.failure = failure;
        device_.failsFromThenOn = fromThenOn;
        auto statuses = all();
        device_.failsAt.reset();
        return statuses;
    }

    void expectInOrder()
    {
        EXPECT_EQ(clear(), VI_SUCCESS);
        EXPECT_EQ(write("a"), VI_SUCCESS);
        device_.answer("abc");
        EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "abc"));
        EXPECT_EQ(statusByte().first, VI_SUCCESS);
    }

    int count_ = 0;
};

TEST_P(UsbtmcEveryTransfer, FromWhichTheDeviceIsGoneLosesTheConnection)
{
    for (int n = 1; n <= count_; ++n) {
        const auto statuses = allWith(n, Outcome::Gone, true);
        EXPECT_EQ(statuses.back(), VI_ERROR_CONN_LOST) << n;
        // From the first one that notices, none comes through.
        const auto lost = std::find(statuses.begin(), statuses.end(), VI_ERROR_CONN_LOST);
        EXPECT_TRUE(std::all_of(lost, statuses.end(), [](ViStatus status) { return status == VI_ERROR_CONN_LOST; }))
            << n << testing::PrintToString(statuses);
        expectInOrder();
    }
}

TEST_P(UsbtmcEveryTransfer, ThatFailsOnceLeavesASessionThatAClearBringsToOrder)
{
    for (const Outcome failure : {Outcome::TimedOut, Outcome::Stalled, Outcome::Overflow, Outcome::Failed}) {
        for (int n = 1; n <= count_; ++n) {
            const auto statuses = allWith(n, failure, false);
            EXPECT_LE(std::count(statuses.begin(), statuses.end(), visa::usbtmc::visaStatus(failure)), 3) << n;
            expectInOrder();
        }
    }
}

TEST_P(UsbtmcEveryTransfer, ThatFailsWithAllBehindItComesToAnEnd)
{
    for (const Outcome failure : {Outcome::TimedOut, Outcome::Stalled, Outcome::Overflow, Outcome::Failed}) {
        for (int n = 1; n <= count_; ++n) {
            allWith(n, failure, true);
            EXPECT_LT(device_.transfers, 1000) << n;
            expectInOrder();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(InterruptPipe, UsbtmcEveryTransfer, testing::Bool());

} // namespace
