#include "tests/support/visa/usbtmc_fixture.h"

#include <chrono>
#include <thread>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kPart = 65536;

class UsbtmcTransport : public UsbtmcTest
{
protected:
    void SetUp() override { open(); }
};

/// What a device lacks is said before it is opened.
using UsbtmcOpening = UsbtmcTest;

TEST_F(UsbtmcTransport, WritesAMessageWithEnd)
{
    std::size_t written = 0;
    EXPECT_EQ(write("*RST\n", &written), VI_SUCCESS);
    EXPECT_EQ(written, 5U);
    EXPECT_EQ(write("abcd"), VI_SUCCESS);
    EXPECT_THAT(device_.log, ElementsAre("out 1 '*RST\n' END", "out 2 'abcd' END"));
}

TEST_F(UsbtmcTransport, WritesAMessageWithoutEndWhereItIsNotWanted)
{
    set(VI_ATTR_SEND_END_EN, VI_FALSE);
    EXPECT_EQ(write("a"), VI_SUCCESS);
    EXPECT_THAT(device_.log, ElementsAre("out 1 'a'"));
}

TEST_F(UsbtmcTransport, WriteOfNothingSendsNothing)
{
    EXPECT_EQ(write(""), VI_SUCCESS);
    EXPECT_THAT(device_.log, IsEmpty());
}

TEST_F(UsbtmcTransport, LongMessagesGoInPartsTheLastOfWhichHasEnd)
{
    std::size_t written = 0;
    EXPECT_EQ(write(std::string(2 * kPart + 3, 'x'), &written), VI_SUCCESS);
    EXPECT_EQ(written, 2 * kPart + 3);
    EXPECT_THAT(device_.log, ElementsAre("out 1 65536 bytes", "out 2 65536 bytes", "out 3 'xxx' END"));
}

TEST_F(UsbtmcTransport, TagsGoRoundWithoutZero)
{
    for (int i = 0; i < 600; ++i)
        ASSERT_EQ(write("a"), VI_SUCCESS);
    EXPECT_EQ(device_.log.at(254), "out 255 'a' END");
    EXPECT_EQ(device_.log.at(255), "out 1 'a' END");
}

TEST_F(UsbtmcTransport, ReadEndsWithTheMessage)
{
    device_.answer("12.5\n");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "12.5\n"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100"));
}

TEST_F(UsbtmcTransport, ReadAsksForNoMoreThanItsCount)
{
    device_.answer("0123456789abcde");
    EXPECT_EQ(read(10), UsbRead(VI_SUCCESS_MAX_CNT, "0123456789"));
    EXPECT_EQ(read(10), UsbRead(VI_SUCCESS, "abcde"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 10", "ask 2 for 10"));
    EXPECT_EQ(device_.largestRoom, 64U);
}

TEST_F(UsbtmcTransport, EndWinsOverTheCount)
{
    device_.answer("0123456789");
    EXPECT_EQ(read(10), UsbRead(VI_SUCCESS, "0123456789"));
}

TEST_F(UsbtmcTransport, ReadOfNothingAsksForNothing)
{
    EXPECT_EQ(read(0), UsbRead(VI_SUCCESS_MAX_CNT, ""));
    EXPECT_THAT(device_.log, IsEmpty());
}

TEST_F(UsbtmcTransport, EveryLengthOfAReplyIsRead)
{
    // Those around whole packets end with an empty one.
    for (std::size_t size = 1; size < 300; ++size) {
        const std::string message(size, 'a');
        device_.answer(message);
        ASSERT_EQ(read(300), UsbRead(VI_SUCCESS, message)) << size;
        device_.answer(message);
        ASSERT_EQ(read(size), UsbRead(VI_SUCCESS, message)) << size;
    }
}

TEST_F(UsbtmcTransport, MessagesInPartsAreReadWhole)
{
    device_.mostInOnePart = 4;
    device_.answer("0123456789");
    EXPECT_EQ(read(50), UsbRead(VI_SUCCESS, "0123456789"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 50", "ask 2 for 46", "ask 3 for 42"));
}

TEST_F(UsbtmcTransport, LongReadsAskForAPartAtATime)
{
    std::string message(3 * kPart + 17, 'x');
    for (std::size_t i = 0; i < message.size(); ++i)
        message[i] = static_cast<char>('a' + i % 23);
    device_.answer(message);
    EXPECT_EQ(read(4 * kPart), UsbRead(VI_SUCCESS, message));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 65536", "ask 2 for 65536", "ask 3 for 65536", "ask 4 for 65536"));
    EXPECT_LE(device_.largestRoom, kPart + 128);
}

TEST_F(UsbtmcTransport, MessageOfNothingEndsTheRead)
{
    device_.answer("");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, ""));
}

TEST_F(UsbtmcTransport, DeviceThatSendsNothingOverAndOverIsGivenUp)
{
    for (int i = 0; i < 100; ++i)
        device_.answer("", false);
    EXPECT_EQ(read(), UsbRead(VI_ERROR_INP_PROT_VIOL, ""));
    EXPECT_EQ(device_.log.size(), 8U);
}

TEST_F(UsbtmcTransport, DeviceEndsAtTheTerminationCharacterWhereItCan)
{
    endAt('\n');
    device_.answer("one\ntwo");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
    endAt('\xFE');
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "two"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100 to 0x0A", "ask 2 for 100 to 0xFE"));
}

TEST_F(UsbtmcTransport, TerminationCharacterCountsOnlyWhereItIsEnabled)
{
    device_.answer("one\ntwo");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "one\ntwo"));
}

TEST_F(UsbtmcTransport, TerminationCharacterWinsOverTheCount)
{
    endAt('\n');
    device_.answer("one\ntwo");
    EXPECT_EQ(read(4), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
}

TEST_F(UsbtmcTransport, EndWinsOverTheTerminationCharacter)
{
    endAt('\n');
    device_.answer("one\n");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "one\n"));
}

TEST_F(UsbtmcOpening, TerminationCharacterIsFoundInWhatADeviceWithoutItSends)
{
    device_.capabilities[5] = 0;
    open();
    endAt('\n');
    device_.answer("one\ntwo\nthree");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
    EXPECT_EQ(read(2), UsbRead(VI_SUCCESS_MAX_CNT, "tw"));
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "o\n"));
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "three"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100"));
}

TEST_F(UsbtmcTransport, DeviceThatOverlooksTheTerminationCharacterIsNoMatter)
{
    device_.heedsTermChar = false;
    endAt('\n');
    device_.answer("one\ntwo");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "two"));
}

TEST_F(UsbtmcTransport, FlushingDropsWhatNoReadHasTaken)
{
    device_.heedsTermChar = false;
    endAt('\n');
    device_.answer("one\ntwo");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "one\n"));
    EXPECT_EQ(run([&](const visa::Terms& terms) { return transport_->discardInput(terms); }), VI_SUCCESS);
    device_.answer("new");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "new"));
}

TEST_F(UsbtmcTransport, SuppressedEndReadsOnToTheCount)
{
    set(VI_ATTR_SUPPRESS_END_EN, VI_TRUE);
    device_.answer("one");
    device_.answer("two");
    EXPECT_EQ(read(6), UsbRead(VI_SUCCESS_MAX_CNT, "onetwo"));
    endAt('!');
    device_.answer("a");
    device_.answer("b!");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "ab!"));
}

TEST_F(UsbtmcTransport, ReadWithoutWaitingTakesWhatIsThere)
{
    set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
    device_.answer("now");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "now"));
    EXPECT_EQ(read(), UsbRead(VI_ERROR_TMO, ""));
}

TEST_F(UsbtmcTransport, EmptyTransferBeforeTheReplyIsSkipped)
{
    device_.leftOver = {{}};
    device_.answer("abc");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS, "abc"));
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100"));
}

TEST_F(UsbtmcTransport, DeviceThatSendsNothingButEmptyTransfersIsGivenUp)
{
    for (int i = 0; i < 1000; ++i)
        device_.leftOver.emplace_back();
    EXPECT_EQ(read(), UsbRead(VI_ERROR_INP_PROT_VIOL, ""));
    EXPECT_LT(device_.transfers, 20);
}

TEST_F(UsbtmcTransport, TriggersTheDevice)
{
    EXPECT_EQ(trigger(), VI_SUCCESS);
    EXPECT_EQ(write("a"), VI_SUCCESS);
    EXPECT_EQ(trigger(), VI_SUCCESS);
    EXPECT_THAT(device_.log, ElementsAre("trigger 1", "out 2 'a' END", "trigger 3"));
}

TEST_F(UsbtmcOpening, DeviceWithoutATriggerIsNotTriggered)
{
    device_.capabilities[14] = 6;
    open();
    EXPECT_EQ(trigger(), VI_ERROR_INV_SETUP);
    EXPECT_THAT(device_.log, IsEmpty());
}

TEST_F(UsbtmcTransport, EveryRemoteModeHasItsRequests)
{
    const std::vector<std::vector<std::string>> expected{
        {"RenControl 0"},
        {"RenControl 1"},
        {"GoToLocal 0", "RenControl 0"},
        {"RenControl 1"},
        {"RenControl 1", "LocalLockout 0"},
        {"RenControl 1", "LocalLockout 0"},
        {"GoToLocal 0"},
    };
    for (ViUInt16 mode = 0; mode < expected.size(); ++mode) {
        device_.log.clear();
        EXPECT_EQ(controlRemote(mode), VI_SUCCESS) << mode;
        EXPECT_EQ(device_.log, expected[mode]) << mode;
    }
    EXPECT_EQ(controlRemote(7), VI_ERROR_INV_MODE);
}

TEST_F(UsbtmcTransport, RefusedRemoteRequestIsTheLast)
{
    device_.answers[Request::GoToLocal] = {0x80};
    EXPECT_EQ(controlRemote(VI_GPIB_REN_DEASSERT_GTL), VI_ERROR_IO);
    EXPECT_THAT(device_.log, ElementsAre("GoToLocal 0"));
}

TEST_F(UsbtmcOpening, DeviceWithoutRemoteAndLocalHasNone)
{
    device_.capabilities[14] = 5;
    open();
    EXPECT_EQ(controlRemote(VI_GPIB_REN_ASSERT), VI_ERROR_NSUP_OPER);
    EXPECT_THAT(device_.log, IsEmpty());
}

TEST_F(UsbtmcOpening, DeviceOfTheBaseClassHasNothingOfUsb488)
{
    device_.usb.protocol = 0;
    open();
    EXPECT_EQ(trigger(), VI_ERROR_INV_SETUP);
    EXPECT_EQ(statusByte().first, VI_ERROR_INV_SETUP);
    EXPECT_EQ(controlRemote(VI_GPIB_REN_ASSERT), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(transport_->numberFact(VI_ATTR_4882_COMPLIANT), static_cast<ViUInt32>(VI_FALSE));
    EXPECT_THAT(device_.log, IsEmpty());
}

TEST_F(UsbtmcOpening, DeviceThatDoesNotTellItsCapabilitiesHasNone)
{
    device_.outcomes[Request::GetCapabilities] = Outcome::Stalled;
    open();
    endAt('\n');
    device_.answer("a\nb");
    EXPECT_EQ(read(), UsbRead(VI_SUCCESS_TERM_CHAR, "a\n"));
    EXPECT_EQ(trigger(), VI_ERROR_INV_SETUP);
    EXPECT_THAT(device_.log, ElementsAre("ask 1 for 100"));
}

TEST_F(UsbtmcOpening, CapabilitiesOfAFailedRequestDoNotCount)
{
    device_.capabilities[0] = 0x80;
    open();
    EXPECT_EQ(trigger(), VI_ERROR_INV_SETUP);
}

TEST(UsbtmcSilentDevice, IsNotOpened)
{
    auto device = std::make_unique<UsbtmcDevice>();
    device->outcomes[UsbtmcDevice::Request::GetCapabilities] = visa::TransferOutcome::TimedOut;
    const visa::Deadline deadline(100);
    std::unique_ptr<visa::Transport> transport;
    EXPECT_EQ(visa::makeUsbtmcTransport(std::move(device), deadline, transport), VI_ERROR_TMO);
    EXPECT_EQ(transport, nullptr);
}

TEST_F(UsbtmcTransport, TellsTheDevicesFacts)
{
    const std::vector<std::pair<ViAttr, ViUInt32>> numbers{
        {VI_ATTR_MANF_ID, 0x1234},  {VI_ATTR_MODEL_CODE, 0x5678}, {VI_ATTR_4882_COMPLIANT, VI_TRUE},
        {VI_ATTR_USB_INTFC_NUM, 1}, {VI_ATTR_USB_PROTOCOL, 1},    {VI_ATTR_USB_MAX_INTR_SIZE, 0}};
    for (const auto& [attribute, value] : numbers)
        EXPECT_EQ(transport_->numberFact(attribute), value) << std::hex << attribute;
    EXPECT_EQ(transport_->textFact(VI_ATTR_MANF_NAME), "Vendor");
    EXPECT_EQ(transport_->textFact(VI_ATTR_MODEL_NAME), "Product");
    EXPECT_EQ(transport_->textFact(VI_ATTR_USB_SERIAL_NUM), "SN-1");
}

} // namespace
