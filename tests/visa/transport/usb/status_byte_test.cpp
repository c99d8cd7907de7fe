#include "tests/support/visa/usbtmc_fixture.h"

#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;
using Told = std::pair<ViStatus, ViUInt16>;

constexpr ViUInt16 kUntold = 0xEEEE;

class UsbStatusByte : public UsbtmcTest
{
protected:
    void SetUp() override { open(); }
};

/// A device with an interrupt pipe.
class UsbStatusNotification : public UsbtmcTest
{
protected:
    void SetUp() override
    {
        device_.addInterruptPipe();
        open();
    }
};

TEST_F(UsbStatusNotification, LargestIsThePacketOfThePipe)
{
    EXPECT_EQ(transport_->numberFact(VI_ATTR_USB_MAX_INTR_SIZE), 8U);
}

TEST_F(UsbStatusByte, IsInTheAnswer)
{
    device_.statusByte = 0x50;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x50));
    device_.statusByte = 0xFF;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0xFF));
    EXPECT_THAT(device_.log, ElementsAre("ReadStatusByte 2", "ReadStatusByte 3"));
}

TEST_F(UsbStatusByte, TagsGoRoundFromTwo)
{
    for (int i = 0; i < 126; ++i)
        ASSERT_EQ(statusByte().first, VI_SUCCESS);
    EXPECT_EQ(device_.log.back(), "ReadStatusByte 127");
    EXPECT_EQ(statusByte().first, VI_SUCCESS);
    EXPECT_EQ(device_.log.back(), "ReadStatusByte 2");
}

TEST_F(UsbStatusByte, FailuresOfTheDeviceAreTold)
{
    const std::vector<std::pair<UsbtmcDevice::Bytes, ViStatus>> answers{{{0x80, 2, 0}, VI_ERROR_IO},
                                                                        {{0x02, 2, 0}, VI_ERROR_TMO},
                                                                        {{0x20, 2, 0}, VI_ERROR_TMO},
                                                                        {{0x00, 2, 0}, VI_ERROR_INP_PROT_VIOL},
                                                                        {{0x01, 1, 0}, VI_ERROR_INP_PROT_VIOL},
                                                                        {{0x01, 2}, VI_ERROR_INP_PROT_VIOL},
                                                                        {{}, VI_ERROR_INP_PROT_VIOL}};
    for (const auto& [answer, status] : answers) {
        device_.answers[Request::ReadStatusByte] = answer;
        EXPECT_EQ(statusByte(), Told(status, kUntold)) << testing::PrintToString(answer);
    }
}

TEST_F(UsbStatusByte, DeviceThatStaysBusyIsAskedAFewTimes)
{
    device_.busyNotifications = 1000;
    EXPECT_EQ(statusByte(), Told(VI_ERROR_TMO, kUntold));
    EXPECT_EQ(device_.log.size(), 8U);
    device_.busyNotifications = 3;
    device_.statusByte = 4;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 4));
}

TEST_F(UsbStatusNotification, ComesOnTheInterruptPipe)
{
    device_.statusByte = 0x41;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x41));
    EXPECT_THAT(device_.log, ElementsAre("ReadStatusByte 2"));
}

TEST_F(UsbStatusNotification, OfAServiceRequestIsToldWithoutAsking)
{
    device_.notify({0x81, 0x50});
    device_.notify({0x81, 0x60});
    device_.statusByte = 4;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x50));
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x60));
    EXPECT_THAT(device_.log, IsEmpty());
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 4));
}

TEST_F(UsbStatusNotification, OthersAreDropped)
{
    device_.notify({});
    device_.notify({0x81});
    device_.notify({0x00, 0x11});
    device_.notify({0x7F, 0x11});
    device_.notify({0x83, 0x11});
    device_.statusByte = 9;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 9));
}

TEST_F(UsbStatusNotification, ThatNeverComesIsATimeout)
{
    device_.answers[Request::ReadStatusByte] = {0x01, 2, 0x55};
    EXPECT_EQ(statusByte(), Told(VI_ERROR_TMO, kUntold));
}

TEST_F(UsbStatusNotification, ServiceRequestsInFrontOfTheAnswerAreToldNext)
{
    device_.beforeAnswer = {{0x81, 0x50}, {0x01, 0x08}, {0x81, 0x44}};
    device_.statusByte = 1;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 1));
    device_.beforeAnswer.clear();
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x54));
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 1));
    EXPECT_THAT(device_.log, ElementsAre("ReadStatusByte 2", "ReadStatusByte 3"));
}

TEST_F(UsbStatusNotification, IsAskedForAgainAfterTheDeviceWasBusy)
{
    device_.busyNotifications = 2;
    device_.statusByte = 7;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 7));
    EXPECT_THAT(device_.log, ElementsAre("ReadStatusByte 2", "ReadStatusByte 3", "ReadStatusByte 4"));
}

TEST_F(UsbStatusNotification, FloodOfOthersIsGivenUp)
{
    for (int i = 0; i < 1000; ++i)
        device_.notify({0x01, 0x02});
    EXPECT_EQ(statusByte(), Told(VI_ERROR_INP_PROT_VIOL, kUntold));
    EXPECT_LT(device_.transfers, 200);
}

TEST_F(UsbStatusNotification, HaltOfThePipeIsEnded)
{
    device_.failsAt = 1;
    device_.failure = Outcome::Stalled;
    device_.statusByte = 3;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 3));
    EXPECT_THAT(device_.log, ElementsAre("clear halt 0x83", "ReadStatusByte 2"));
}

TEST_F(UsbStatusNotification, IsReadWhileAReadWaits)
{
    device_.waits = true;
    UsbRead result;
    std::thread reader([&] { result = read(); });
    device_.notify({0x81, 0x40});
    ViUInt16 byte = 0;
    visa::AttributeValues attributes;
    const visa::Deadline deadline(kTimeoutMs);
    EXPECT_EQ(transport_->readStatusByte({attributes, deadline}, byte), VI_SUCCESS);
    EXPECT_EQ(byte, 0x40);
    device_.answer("abc");
    reader.join();
    EXPECT_EQ(result, UsbRead(VI_SUCCESS, "abc"));
}

} // namespace
