#include "tests/support/visa/usbtmc_device.h"
#include "visa/transport/usb/usb_transport.h"

#include <glib-object.h>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <umockdev.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace
{

using kvxtest::UsbtmcDevice;
using testing::ElementsAre;

constexpr char kNode[] = "/dev/bus/usb/001/002";
constexpr visa::TransferLimit kNow{0};

/// Device, configuration, interface 1 of USBTMC's class with protocol USB488, bulk out 2, bulk in 81.
constexpr char kDescriptors[] = "12010002000000403412785600010102030109022000010100803209040100"
                                "02FE0301000705020240000007058102400000";

/// A string descriptor.
std::vector<std::uint8_t> textDescriptor(unsigned index)
{
    const std::vector<std::string> texts{"\x09\x04", "Vendor", "Product", "SN-1"};
    const std::string& text = texts.at(index);
    std::vector<std::uint8_t> bytes{static_cast<std::uint8_t>(index == 0 ? 4 : 2 + 2 * text.size()), 3};
    for (const char character : text) {
        bytes.push_back(static_cast<std::uint8_t>(character));
        if (index != 0)
            bytes.push_back(0);
    }
    return bytes;
}

/// The kernel's side of a device node: what usbfs does with its calls, on an instrument of the test's.
class DeviceNode
{
public:
    explicit DeviceNode(UsbtmcDevice& instrument) : instrument_(instrument) {}
    ~DeviceNode()
    {
        for (const Urb& urb : urbs_)
            release(urb);
    }
    DeviceNode(const DeviceNode&) = delete;
    DeviceNode& operator=(const DeviceNode&) = delete;

    static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self)
    {
        return static_cast<DeviceNode*>(self)->perform(client);
    }

    int claimError = 0;
    std::vector<std::string> calls;

private:
    struct Urb
    {
        UMockdevIoctlData* data;
        UMockdevIoctlData* buffer;
        bool isDiscarded;
    };

    static void release(const Urb& urb)
    {
        umockdev_ioctl_data_unref(urb.buffer);
        umockdev_ioctl_data_unref(urb.data);
    }

    static usbdevfs_urb& urbIn(UMockdevIoctlData* data) { return *reinterpret_cast<usbdevfs_urb*>(data->data); }

    static gboolean complete(UMockdevIoctlClient* client, int result, int error = 0)
    {
        umockdev_ioctl_client_complete(client, result, error);
        return TRUE;
    }

    gboolean perform(UMockdevIoctlClient* client)
    {
        switch (umockdev_ioctl_client_get_request(client)) {
        case USBDEVFS_GET_CAPABILITIES: {
            UMockdevIoctlData* const data = resolve(client, sizeof(std::uint32_t));
            const std::uint32_t capabilities = USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM;
            std::memcpy(data->data, &capabilities, sizeof capabilities);
            umockdev_ioctl_data_unref(data);
            return complete(client, 0);
        }
        case USBDEVFS_GETDRIVER:
            return complete(client, -1, ENODATA);
        case USBDEVFS_CLAIMINTERFACE:
        case USBDEVFS_DISCONNECT_CLAIM:
            calls.emplace_back("claim");
            return claimError == 0 ? complete(client, 0) : complete(client, -1, claimError);
        case USBDEVFS_RELEASEINTERFACE:
            calls.emplace_back("release");
            return complete(client, 0);
        case USBDEVFS_IOCTL:
            calls.emplace_back("attach");
            return complete(client, 0);
        case USBDEVFS_CLEAR_HALT:
            return complete(client, 0);
        case USBDEVFS_SUBMITURB:
            return submit(client);
        case USBDEVFS_DISCARDURB:
            return discard(client);
        case USBDEVFS_REAPURB:
        case USBDEVFS_REAPURBNDELAY:
            return reap(client);
        default:
            return complete(client, -1, ENOTTY);
        }
    }

    static UMockdevIoctlData* resolve(UMockdevIoctlClient* client, std::size_t size)
    {
        return umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, size, nullptr);
    }

    gboolean submit(UMockdevIoctlClient* client)
    {
        UMockdevIoctlData* const data = resolve(client, sizeof(usbdevfs_urb));
        const usbdevfs_urb& urb = urbIn(data);
        UMockdevIoctlData* const buffer = umockdev_ioctl_data_resolve(
            data, offsetof(usbdevfs_urb, buffer), static_cast<std::size_t>(urb.buffer_length), nullptr);
        urbs_.push_back({data, buffer, false});
        return complete(client, 0);
    }

    gboolean discard(UMockdevIoctlClient* client)
    {
        for (Urb& urb : urbs_)
            urb.isDiscarded = true;
        return complete(client, urbs_.empty() ? -1 : 0, urbs_.empty() ? EINVAL : 0);
    }

    gboolean reap(UMockdevIoctlClient* client)
    {
        if (urbs_.empty() || !finish(urbs_.front()))
            return complete(client, -1, EAGAIN);
        const Urb urb = urbs_.front();
        urbs_.pop_front();
        UMockdevIoctlData* const target = resolve(client, sizeof(void*));
        umockdev_ioctl_data_set_ptr(target, 0, urb.data);
        umockdev_ioctl_data_unref(target);
        complete(client, 0);
        release(urb);
        return TRUE;
    }

    /// @return whether the transfer has ended
    bool finish(Urb& urb)
    {
        usbdevfs_urb& told = urbIn(urb.data);
        const visa::Transfer transfer =
            urb.isDiscarded ? visa::Transfer{visa::TransferOutcome::Cancelled} : transferOf(told, urb.buffer->data);
        if (transfer.outcome == visa::TransferOutcome::TimedOut)
            return false;
        told.status = transfer.outcome == visa::TransferOutcome::Complete    ? 0
                      : transfer.outcome == visa::TransferOutcome::Cancelled ? -ENOENT
                                                                             : -EPIPE;
        told.actual_length = static_cast<int>(transfer.count);
        return true;
    }

    visa::Transfer transferOf(const usbdevfs_urb& urb, guint8* bytes)
    {
        const auto size = static_cast<std::size_t>(urb.buffer_length);
        if (urb.type == USBDEVFS_URB_TYPE_CONTROL)
            return control(bytes, size);
        return urb.endpoint == UsbtmcDevice::kBulkOut ? instrument_.bulkOut({bytes, size}, kNow)
                                                      : instrument_.bulkIn({bytes, size}, kNow);
    }

    visa::Transfer control(guint8* bytes, std::size_t size)
    {
        constexpr std::size_t kSetup = 8;
        const auto number = [bytes](std::size_t at) {
            return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
        };
        const auto answer = std::span(bytes, size).subspan(kSetup);
        if (bytes[0] != 0x80)
            return instrument_.controlIn({bytes[0], bytes[1], number(2), number(4)}, answer, kNow);
        const auto text = textDescriptor(bytes[2]);
        const std::size_t count = std::min(text.size(), answer.size());
        std::copy_n(text.begin(), count, answer.begin());
        return {visa::TransferOutcome::Complete, count};
    }

    UsbtmcDevice& instrument_;
    std::deque<Urb> urbs_;
};

/// A bus with one instrument, which the host's own libusb sees.
class UsbDevices : public testing::Test
{
protected:
    void SetUp() override
    {
        // Only a test bed makes the environment what it is.
        testbed_ = umockdev_testbed_new();
        if (!umockdev_in_mock_environment())
            GTEST_SKIP() << "USB devices cannot be played: this needs umockdev, and to be run under umockdev-wrapper";
        ASSERT_TRUE(umockdev_testbed_add_from_string(testbed_,
                                                     ("P: /devices/usb1/1-1\n"
                                                      "N: bus/usb/001/002=" +
                                                      std::string(kDescriptors) +
                                                      "\n"
                                                      "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
                                                      "E: DEVNAME=/dev/bus/usb/001/002\nE: BUSNUM=001\nE: DEVNUM=002\n"
                                                      "A: busnum=1\\n\nA: devnum=2\\n\nA: bConfigurationValue=1\\n\n"
                                                      "A: speed=480\\n\n"
                                                      "H: descriptors=" +
                                                      std::string(kDescriptors) + "\n\n")
                                                         .c_str(),
                                                     nullptr));
        handler_ = umockdev_ioctl_base_new();
        g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(DeviceNode::handle), &node_);
        ASSERT_TRUE(umockdev_testbed_attach_ioctl(testbed_, kNode, handler_, nullptr));
    }

    void TearDown() override
    {
        transport_.reset();
        if (handler_ == nullptr) {
            g_object_unref(testbed_);
            return;
        }
        umockdev_testbed_detach_ioctl(testbed_, kNode, nullptr);
        g_object_unref(handler_);
        g_object_unref(testbed_);
        EXPECT_THAT(instrument_.violations, testing::IsEmpty());
    }

    ViStatus open(const std::string& resource = "USB0::0x1234::0x5678::SN-1::INSTR")
    {
        const visa::Deadline deadline(2000);
        return visa::openUsb(*visa::parseResourceName(resource), deadline, transport_);
    }

    UsbtmcDevice instrument_;
    DeviceNode node_{instrument_};
    UMockdevTestbed* testbed_ = nullptr;
    UMockdevIoctlBase* handler_ = nullptr;
    std::unique_ptr<visa::Transport> transport_;
};

TEST_F(UsbDevices, AreFound)
{
    EXPECT_THAT(visa::findUsb(), ElementsAre("USB0::0x1234::0x5678::SN-1::INSTR"));
    EXPECT_THAT(node_.calls, testing::IsEmpty());
}

TEST_F(UsbDevices, AreOpenedWrittenAndRead)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    EXPECT_EQ(transport_->textFact(VI_ATTR_MANF_NAME), "Vendor");
    visa::AttributeValues attributes;
    const visa::Deadline deadline(2000);
    const std::string query = "*IDN?";
    std::size_t count = 0;
    EXPECT_EQ(
        transport_->write({reinterpret_cast<const ViByte*>(query.data()), query.size()}, {attributes, deadline}, count),
        VI_SUCCESS);
    instrument_.answer("it");
    std::array<ViByte, 100> buffer{};
    EXPECT_EQ(transport_->read(buffer, {attributes, deadline}, count), VI_SUCCESS);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count)), "it");
    transport_.reset();
    EXPECT_THAT(instrument_.log, ElementsAre("GetCapabilities 0", "out 1 '*IDN?' END", "ask 2 for 100"));
    EXPECT_EQ(node_.calls.front(), "claim");
    EXPECT_THAT(node_.calls, testing::Contains("release"));
}

TEST_F(UsbDevices, ReadThatTimesOutIsTakenBack)
{
    ASSERT_EQ(open(), VI_SUCCESS);
    visa::AttributeValues attributes;
    const visa::Deadline deadline(30);
    std::array<ViByte, 100> buffer{};
    std::size_t count = 0;
    EXPECT_EQ(transport_->read(buffer, {attributes, deadline}, count), VI_ERROR_TMO);
    EXPECT_THAT(instrument_.log,
                ElementsAre("GetCapabilities 0", "ask 1 for 100", "InitiateAbortBulkIn 1", "CheckAbortBulkInStatus 0"));
}

TEST_F(UsbDevices, OfAnotherProgramAreBusy)
{
    node_.claimError = EBUSY;
    EXPECT_EQ(open(), VI_ERROR_RSRC_BUSY);
}

TEST_F(UsbDevices, OtherNamesAreNotFound)
{
    EXPECT_EQ(open("USB0::0x1234::0x5678::SN-2::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(open("USB0::0x1234::0x9999::SN-1::INSTR"), VI_ERROR_RSRC_NFOUND);
}

} // namespace
