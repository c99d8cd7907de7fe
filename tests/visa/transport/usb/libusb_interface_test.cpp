#include "tests/support/visa/fake_libusb.h"
#include "visa/transport/usb/usb_transport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <thread>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class LibusbTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeUsb().reset();
        fakeUsb().devices.emplace_back();
    }

    void TearDown() override
    {
        transport_.reset();
        for (const PluggedDevice& device : fakeUsb().devices) {
            EXPECT_THAT(device.instrument->violations, IsEmpty());
            EXPECT_TRUE(device.isKernelDriverAttached);
        }
        EXPECT_TRUE(fakeUsb().isNothingLeft());
    }

    static PluggedDevice& plugIn(const std::string& serial)
    {
        PluggedDevice& device = fakeUsb().devices.emplace_back();
        device.serialNumber = serial;
        return device;
    }

    ViStatus open(const std::string& resource = "USB0::0x1234::0x5678::SN-1::INSTR")
    {
        const auto name = visa::parseResourceName(resource);
        const visa::Deadline deadline(2000);
        return visa::openUsb(name.value(), deadline, transport_);
    }

    std::pair<ViStatus, std::string> read(ViUInt32 timeoutMs = 2000)
    {
        std::string buffer(100, '\0');
        std::size_t count = 0;
        const visa::Deadline deadline(timeoutMs);
        const ViStatus status =
            transport_->read({reinterpret_cast<ViByte*>(buffer.data()), buffer.size()}, {attributes_, deadline}, count);
        return {status, buffer.substr(0, count)};
    }

    ViStatus write(const std::string& bytes)
    {
        std::size_t count = 0;
        const visa::Deadline deadline(2000);
        return transport_->write({reinterpret_cast<const ViByte*>(bytes.data()), bytes.size()}, {attributes_, deadline},
                                 count);
    }

    std::pair<ViStatus, ViUInt16> statusByte(ViUInt32 timeoutMs = 2000)
    {
        ViUInt16 status = 0;
        const visa::Deadline deadline(timeoutMs);
        const ViStatus result = transport_->readStatusByte({attributes_, deadline}, status);
        return {result, status};
    }

    UsbtmcDevice& instrument() { return *fakeUsb().devices.front().instrument; }

    visa::AttributeValues attributes_;
    std::unique_ptr<visa::Transport> transport_;
};

using Read = std::pair<ViStatus, std::string>;
using Told = std::pair<ViStatus, ViUInt16>;

TEST_F(LibusbTest, OpensWritesAndReads)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    EXPECT_FALSE(fakeUsb().devices[0].isKernelDriverAttached);
    EXPECT_EQ(fakeUsb().devices[0].claimedInterface, 1);
    EXPECT_EQ(write("*IDN?"), VI_SUCCESS);
    instrument().answer("it");
    EXPECT_EQ(read(), Read(VI_SUCCESS, "it"));
    EXPECT_THAT(instrument().log, ElementsAre("GetCapabilities 0", "out 1 '*IDN?' END", "ask 2 for 100"));
    EXPECT_EQ(transport_->textFact(VI_ATTR_MANF_NAME), "Vendor");
    EXPECT_EQ(transport_->textFact(VI_ATTR_MODEL_NAME), "Product");
    EXPECT_EQ(transport_->textFact(VI_ATTR_USB_SERIAL_NUM), "SN-1");
    EXPECT_EQ(transport_->numberFact(VI_ATTR_MANF_ID), 0x1234U);
    EXPECT_EQ(transport_->numberFact(VI_ATTR_MODEL_CODE), 0x5678U);
}

TEST_F(LibusbTest, EqualDevicesAreToldApartBySerialNumber)
{
    plugIn("SN-2");
    plugIn("SN-3");
    ASSERT_EQ(open("usb::4660::0x5678::sn-2"), VI_SUCCESS);
    EXPECT_EQ(fakeUsb().devices[0].claimedInterface, -1);
    EXPECT_EQ(fakeUsb().devices[1].claimedInterface, 1);
    EXPECT_EQ(fakeUsb().devices[2].opened, 0);
}

TEST_F(LibusbTest, DevicesThatAreNotTheOneAreNotFound)
{
    for (const char* resource : {"USB::0x1234::0x5678::SN-9", "USB::0x1235::0x5678::SN-1", "USB::0x1234::0x5679::SN-1",
                                 "USB::0x1234::0x5678::SN-1::0", "USB::0x1234::0x5678::SN-1::2"})
        EXPECT_EQ(open(resource), VI_ERROR_RSRC_NFOUND) << resource;
    fakeUsb().devices[0].hasPipes = false;
    EXPECT_EQ(open(), VI_ERROR_RSRC_NFOUND);
    fakeUsb().devices.clear();
    EXPECT_EQ(open(), VI_ERROR_RSRC_NFOUND);
}

TEST_F(LibusbTest, InterfaceIsTheOneNamedOrTheLowest)
{
    fakeUsb().devices[0].testInterfaces = {4, 2};
    instrument().usb.interfaceNumber = 2;
    std::unique_ptr<visa::UsbInterface> usb;
    ASSERT_EQ(visa::openUsbInterface(*visa::parseResourceName("USB::0x1234::0x5678::SN-1"), usb), VI_SUCCESS);
    EXPECT_EQ(usb->description().interfaceNumber, 2);
    usb.reset();
    ASSERT_EQ(visa::openUsbInterface(*visa::parseResourceName("USB::0x1234::0x5678::SN-1::4"), usb), VI_SUCCESS);
    EXPECT_EQ(usb->description().interfaceNumber, 4);
    EXPECT_EQ(fakeUsb().devices[0].claimedInterface, 4);
    usb.reset();
}

TEST_F(LibusbTest, AlternateSettingIsSelected)
{
    fakeUsb().devices[0].alternateSetting = 2;
    ASSERT_EQ(open(), VI_SUCCESS);
    EXPECT_EQ(fakeUsb().devices[0].setting, 2);
}

TEST_F(LibusbTest, ErrorsOfOpeningAreTold)
{
    const std::vector<std::pair<int, ViStatus>> errors{
        {LIBUSB_ERROR_ACCESS, VI_ERROR_NPERMISSION},    {LIBUSB_ERROR_BUSY, VI_ERROR_RSRC_BUSY},
        {LIBUSB_ERROR_NO_MEM, VI_ERROR_ALLOC},          {LIBUSB_ERROR_NO_DEVICE, VI_ERROR_RSRC_NFOUND},
        {LIBUSB_ERROR_NOT_FOUND, VI_ERROR_RSRC_NFOUND}, {LIBUSB_ERROR_OTHER, VI_ERROR_SYSTEM_ERROR}};
    for (const auto& [error, status] : errors) {
        fakeUsb().devices[0].openError = error;
        EXPECT_EQ(open(), status) << error;
        fakeUsb().devices[0].openError = LIBUSB_SUCCESS;
        fakeUsb().devices[0].claimError = error;
        EXPECT_EQ(open(), status) << error;
        fakeUsb().devices[0].claimError = LIBUSB_SUCCESS;
        fakeUsb().initError = error;
        EXPECT_EQ(open(), status) << error;
        fakeUsb().initError = LIBUSB_SUCCESS;
    }
}

TEST_F(LibusbTest, DeviceThatMayNotBeOpenedDoesNotHideTheOne)
{
    fakeUsb().devices[0].openError = LIBUSB_ERROR_ACCESS;
    plugIn("SN-2");
    EXPECT_EQ(open("USB::0x1234::0x5678::SN-2"), VI_SUCCESS);
    transport_.reset();
    EXPECT_EQ(open("USB::0x1234::0x5678::SN-3"), VI_ERROR_NPERMISSION);
}

TEST_F(LibusbTest, SecondSessionFindsTheInterfaceBusy)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    const auto first = std::move(transport_);
    EXPECT_EQ(open(), VI_ERROR_RSRC_BUSY);
}

TEST_F(LibusbTest, EveryCallThatFailsLeavesNothingBehind)
{
    instrument().addInterruptPipe();
    fakeUsb().devices[0].alternateSetting = 1;
    ASSERT_EQ(open(), VI_SUCCESS);
    const int count = fakeUsb().calls;
    ASSERT_GT(count, 10);
    int failures = 0;
    for (int n = 1; n <= count; ++n) {
        transport_.reset();
        fakeUsb().calls = 0;
        fakeUsb().failingCall = n;
        try {
            failures += open() < 0 ? 1 : 0;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        fakeUsb().failingCall = 0;
    }
    // All but the names, which may be missing, and what can be tried again.
    EXPECT_GE(failures, count - 4);
}

TEST_F(LibusbTest, ReadThatTimesOutIsCancelledAndTakenBack)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    EXPECT_EQ(read(30), Read(VI_ERROR_TMO, ""));
    EXPECT_EQ(instrument().log.at(2), "InitiateAbortBulkIn 1");
    instrument().answer("late");
    EXPECT_EQ(read(), Read(VI_SUCCESS, "late"));
}

TEST_F(LibusbTest, AbortCancelsAReadThatWaits)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    std::thread aborting([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        transport_->abort();
    });
    EXPECT_EQ(read(VI_TMO_INFINITE), Read(VI_ERROR_ABORT, ""));
    aborting.join();
    instrument().answer("next");
    EXPECT_EQ(read(), Read(VI_SUCCESS, "next"));
}

TEST_F(LibusbTest, InterruptCancelsWhatWaitsForGood)
{
    instrument().addInterruptPipe();
    ASSERT_EQ(open(), VI_SUCCESS);
    std::thread interrupting([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        transport_->interrupt();
    });
    EXPECT_EQ(read(VI_TMO_INFINITE), Read(VI_ERROR_INV_OBJECT, ""));
    interrupting.join();
    EXPECT_EQ(statusByte().first, VI_ERROR_INV_OBJECT);
    EXPECT_EQ(write("a"), VI_ERROR_INV_OBJECT);
}

TEST_F(LibusbTest, NotificationsAreKeptUntilTheyAreAskedFor)
{
    instrument().addInterruptPipe();
    ASSERT_EQ(open(), VI_SUCCESS);
    instrument().statusByte = 4;
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 4));
    instrument().notify({0x81, 0x50});
    instrument().notify({0x81, 0x60});
    instrument().answer("abc");
    EXPECT_EQ(read(), Read(VI_SUCCESS, "abc"));
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x50));
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 0x60));
    EXPECT_EQ(statusByte(), Told(VI_SUCCESS, 4));
}

TEST_F(LibusbTest, OutcomesOfTransfersAreTold)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    const std::vector<std::pair<visa::TransferOutcome, ViStatus>> outcomes{
        {visa::TransferOutcome::Stalled, VI_ERROR_IO},
        {visa::TransferOutcome::Overflow, VI_ERROR_INP_PROT_VIOL},
        {visa::TransferOutcome::Gone, VI_ERROR_CONN_LOST},
        {visa::TransferOutcome::Failed, VI_ERROR_IO}};
    for (const auto& [outcome, status] : outcomes) {
        instrument().transfers = 0;
        instrument().failsAt = 1;
        instrument().failure = outcome;
        EXPECT_EQ(write("a"), status) << static_cast<int>(outcome);
        instrument().failsAt.reset();
        fakeUsb().failingCall = 0;
    }
    fakeUsb().calls = 0;
    fakeUsb().failingCall = 1;
    fakeUsb().callError = LIBUSB_ERROR_NO_DEVICE;
    EXPECT_EQ(write("a"), VI_ERROR_CONN_LOST);
}

TEST_F(LibusbTest, FindsEveryInterfaceOfThoseWithASerialNumber)
{
    plugIn("SN-2").testInterfaces = {3, 1};
    plugIn("");
    plugIn("S N");
    plugIn("SN-5").openError = LIBUSB_ERROR_ACCESS;
    plugIn("SN-6").testInterfaces.clear();
    EXPECT_THAT(visa::findUsb(),
                ElementsAre("USB0::0x1234::0x5678::SN-1::INSTR", "USB0::0x1234::0x5678::SN-2::1::INSTR",
                            "USB0::0x1234::0x5678::SN-2::3::INSTR"));
    EXPECT_EQ(fakeUsb().devices[5].opened, 0);
    EXPECT_THAT(instrument().log, IsEmpty());
    EXPECT_EQ(fakeUsb().devices[0].claimedInterface, -1);
    fakeUsb().initError = LIBUSB_ERROR_OTHER;
    EXPECT_THAT(visa::findUsb(), IsEmpty());
}

} // namespace
