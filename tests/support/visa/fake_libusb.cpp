#include "tests/support/visa/fake_libusb.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <new>
#include <span>
#include <thread>

namespace kvxtest
{

FakeUsb& fakeUsb()
{
    static FakeUsb usb;
    return usb;
}

} // namespace kvxtest

using kvxtest::fakeUsb;
using kvxtest::PluggedDevice;
using kvxtest::UsbtmcDevice;

struct libusb_context
{
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<libusb_transfer*> underWay;
    std::vector<libusb_transfer*> cancelled;
};

struct libusb_device
{
    libusb_context* context;
    PluggedDevice* plugged;
};

struct libusb_device_handle
{
    libusb_device device;
};

namespace
{

constexpr visa::TransferLimit kNow{0};

/// The number of the call that is under way decides whether it fails.
bool failsNow()
{
    return ++fakeUsb().calls == fakeUsb().failingCall;
}

struct FakeConfiguration
{
    libusb_config_descriptor descriptor{};
    std::vector<libusb_interface> interfaces;
    std::vector<std::vector<libusb_interface_descriptor>> settings;
    std::array<libusb_endpoint_descriptor, 3> endpoints{};
};

libusb_endpoint_descriptor endpoint(std::uint8_t address, std::uint8_t type, std::uint16_t size)
{
    libusb_endpoint_descriptor descriptor{};
    descriptor.bEndpointAddress = address;
    descriptor.bmAttributes = type;
    descriptor.wMaxPacketSize = size;
    return descriptor;
}

void addInterface(FakeConfiguration& configuration, std::uint8_t number, const PluggedDevice& device, bool isTest)
{
    auto& settings = configuration.settings.emplace_back();
    for (std::uint8_t setting = 0; setting <= (isTest ? device.alternateSetting : 0); ++setting) {
        libusb_interface_descriptor descriptor{};
        const bool isHere = isTest && setting == device.alternateSetting;
        descriptor.bInterfaceNumber = number;
        descriptor.bAlternateSetting = setting;
        descriptor.bInterfaceClass = isHere ? 0xFE : 0x08;
        descriptor.bInterfaceSubClass = 0x03;
        descriptor.bInterfaceProtocol = 1;
        descriptor.endpoint = configuration.endpoints.data();
        const bool isNotifying = device.instrument->usb.interruptInSize > 0;
        descriptor.bNumEndpoints = static_cast<std::uint8_t>(!device.hasPipes ? 1 : isNotifying ? 3 : 2);
        settings.push_back(descriptor);
    }
    configuration.interfaces.push_back({settings.data(), static_cast<int>(settings.size())});
}

visa::Transfer performed(libusb_transfer* transfer)
{
    UsbtmcDevice& instrument = *transfer->dev_handle->device.plugged->instrument;
    const auto size = static_cast<std::size_t>(transfer->length);
    if (transfer->type == LIBUSB_TRANSFER_TYPE_CONTROL) {
        const auto* const setup = libusb_control_transfer_get_setup(transfer);
        return instrument.controlIn({setup->bmRequestType, setup->bRequest, setup->wValue, setup->wIndex},
                                    {libusb_control_transfer_get_data(transfer), setup->wLength}, kNow);
    }
    if (transfer->endpoint == UsbtmcDevice::kBulkOut)
        return instrument.bulkOut({transfer->buffer, size}, kNow);
    if (transfer->endpoint == UsbtmcDevice::kBulkIn)
        return instrument.bulkIn({transfer->buffer, size}, kNow);
    return instrument.interruptIn({transfer->buffer, size}, kNow);
}

libusb_transfer_status statusOf(visa::TransferOutcome outcome)
{
    constexpr std::array<libusb_transfer_status, 7> kStatuses{
        LIBUSB_TRANSFER_COMPLETED, LIBUSB_TRANSFER_TIMED_OUT, LIBUSB_TRANSFER_STALL, LIBUSB_TRANSFER_CANCELLED,
        LIBUSB_TRANSFER_OVERFLOW,  LIBUSB_TRANSFER_NO_DEVICE, LIBUSB_TRANSFER_ERROR};
    return kStatuses.at(static_cast<std::size_t>(outcome));
}

/// @return whether the transfer has ended
bool advance(libusb_transfer* transfer, bool isCancelled)
{
    const visa::Transfer result = isCancelled ? visa::Transfer{visa::TransferOutcome::Cancelled} : performed(transfer);
    if (result.outcome == visa::TransferOutcome::TimedOut)
        return false;
    transfer->status = statusOf(result.outcome);
    transfer->actual_length = static_cast<int>(result.count);
    return true;
}

/// Ends what can end, and tells whose it is.
std::vector<libusb_transfer*> takeEnded(libusb_context& context)
{
    std::vector<libusb_transfer*> ended;
    for (libusb_transfer* const transfer : context.underWay) {
        const bool isCancelled = std::erase(context.cancelled, transfer) > 0;
        if (advance(transfer, isCancelled))
            ended.push_back(transfer);
    }
    std::erase_if(context.underWay,
                  [&](libusb_transfer* t) { return std::find(ended.begin(), ended.end(), t) != ended.end(); });
    return ended;
}

} // namespace

int libusb_init(libusb_context** context)
{
    if (failsNow())
        return fakeUsb().callError;
    if (fakeUsb().initError != LIBUSB_SUCCESS)
        return fakeUsb().initError;
    ++fakeUsb().contexts;
    *context = new libusb_context;
    return LIBUSB_SUCCESS;
}

void libusb_exit(libusb_context* context)
{
    --fakeUsb().contexts;
    delete context;
}

ssize_t libusb_get_device_list(libusb_context* context, libusb_device*** list)
{
    if (failsNow())
        return fakeUsb().callError;
    auto& devices = fakeUsb().devices;
    ++fakeUsb().lists;
    *list = new libusb_device*[devices.size() + 1]();
    for (std::size_t i = 0; i < devices.size(); ++i)
        (*list)[i] = new libusb_device{context, &devices[i]};
    return static_cast<ssize_t>(devices.size());
}

void libusb_free_device_list(libusb_device** list, int)
{
    --fakeUsb().lists;
    for (libusb_device** device = list; *device != nullptr; ++device)
        delete *device;
    delete[] list;
}

int libusb_get_device_descriptor(libusb_device* device, libusb_device_descriptor* descriptor)
{
    *descriptor = {};
    descriptor->idVendor = device->plugged->vendorId;
    descriptor->idProduct = device->plugged->productId;
    descriptor->iManufacturer = 1;
    descriptor->iProduct = 2;
    descriptor->iSerialNumber = device->plugged->serialNumber.empty() ? 0 : 3;
    return LIBUSB_SUCCESS;
}

int libusb_get_active_config_descriptor(libusb_device* device, libusb_config_descriptor** descriptor)
{
    if (failsNow())
        return fakeUsb().callError;
    auto* const configuration = new FakeConfiguration;
    const auto& instrument = *device->plugged->instrument;
    configuration->endpoints = {endpoint(UsbtmcDevice::kBulkOut, LIBUSB_TRANSFER_TYPE_BULK, 64),
                                endpoint(UsbtmcDevice::kBulkIn, LIBUSB_TRANSFER_TYPE_BULK, 64),
                                endpoint(UsbtmcDevice::kInterruptIn, LIBUSB_TRANSFER_TYPE_INTERRUPT,
                                         static_cast<std::uint16_t>(instrument.usb.interruptInSize))};
    addInterface(*configuration, 0, *device->plugged, false);
    for (const std::uint8_t number : device->plugged->testInterfaces)
        addInterface(*configuration, number, *device->plugged, true);
    configuration->descriptor.bNumInterfaces = static_cast<std::uint8_t>(configuration->interfaces.size());
    configuration->descriptor.interface = configuration->interfaces.data();
    *descriptor = &configuration->descriptor;
    return LIBUSB_SUCCESS;
}

void libusb_free_config_descriptor(libusb_config_descriptor* descriptor)
{
    // It is the first member of what it was made as.
    delete reinterpret_cast<FakeConfiguration*>(descriptor);
}

int libusb_open(libusb_device* device, libusb_device_handle** handle)
{
    if (failsNow())
        return fakeUsb().callError;
    ++device->plugged->opened;
    if (device->plugged->openError != LIBUSB_SUCCESS)
        return device->plugged->openError;
    ++fakeUsb().handles;
    *handle = new libusb_device_handle{*device};
    return LIBUSB_SUCCESS;
}

void libusb_close(libusb_device_handle* handle)
{
    --fakeUsb().handles;
    delete handle;
}

libusb_device* libusb_get_device(libusb_device_handle* handle)
{
    return &handle->device;
}

int libusb_get_string_descriptor_ascii(libusb_device_handle* handle, std::uint8_t index, unsigned char* data,
                                       int length)
{
    if (failsNow())
        return LIBUSB_ERROR_IO;
    const std::array<std::string, 4> texts{"", "Vendor", "Product", handle->device.plugged->serialNumber};
    const std::string& text = texts.at(index);
    const std::size_t size = std::min(text.size(), static_cast<std::size_t>(length) - 1);
    std::memcpy(data, text.c_str(), size + 1);
    return static_cast<int>(size);
}

int libusb_set_auto_detach_kernel_driver(libusb_device_handle*, int)
{
    return LIBUSB_SUCCESS;
}

int libusb_claim_interface(libusb_device_handle* handle, int number)
{
    if (failsNow())
        return fakeUsb().callError;
    PluggedDevice& plugged = *handle->device.plugged;
    if (plugged.claimError != LIBUSB_SUCCESS || plugged.claimedInterface >= 0)
        return plugged.claimError != LIBUSB_SUCCESS ? plugged.claimError : LIBUSB_ERROR_BUSY;
    plugged.claimedInterface = number;
    plugged.isKernelDriverAttached = false;
    return LIBUSB_SUCCESS;
}

int libusb_release_interface(libusb_device_handle* handle, int)
{
    handle->device.plugged->claimedInterface = -1;
    handle->device.plugged->isKernelDriverAttached = true;
    return LIBUSB_SUCCESS;
}

int libusb_set_interface_alt_setting(libusb_device_handle* handle, int, int setting)
{
    if (failsNow())
        return fakeUsb().callError;
    handle->device.plugged->setting = setting;
    return LIBUSB_SUCCESS;
}

int libusb_clear_halt(libusb_device_handle* handle, unsigned char address)
{
    return handle->device.plugged->instrument->clearHalt(address) == visa::TransferOutcome::Gone
               ? LIBUSB_ERROR_NO_DEVICE
               : LIBUSB_SUCCESS;
}

libusb_transfer* libusb_alloc_transfer(int)
{
    if (failsNow())
        return nullptr;
    ++fakeUsb().transfers;
    return new libusb_transfer();
}

void libusb_free_transfer(libusb_transfer* transfer)
{
    --fakeUsb().transfers;
    delete transfer;
}

int libusb_submit_transfer(libusb_transfer* transfer)
{
    if (failsNow())
        return fakeUsb().callError;
    libusb_context& context = *transfer->dev_handle->device.context;
    const std::lock_guard guard(context.mutex);
    context.underWay.push_back(transfer);
    context.changed.notify_all();
    return LIBUSB_SUCCESS;
}

int libusb_cancel_transfer(libusb_transfer* transfer)
{
    libusb_context& context = *transfer->dev_handle->device.context;
    const std::lock_guard guard(context.mutex);
    if (std::find(context.underWay.begin(), context.underWay.end(), transfer) == context.underWay.end())
        return LIBUSB_ERROR_NOT_FOUND;
    context.cancelled.push_back(transfer);
    context.changed.notify_all();
    return LIBUSB_SUCCESS;
}

int libusb_handle_events_timeout_completed(libusb_context* context, timeval* time, int* completed)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(time->tv_sec) + std::chrono::microseconds(time->tv_usec);
    std::unique_lock lock(context->mutex);
    for (;;) {
        const auto ended = takeEnded(*context);
        for (libusb_transfer* const transfer : ended)
            transfer->callback(transfer);
        if (!ended.empty())
            context->changed.notify_all();
        if (!ended.empty() || *completed != 0 || Clock::now() >= end)
            return LIBUSB_SUCCESS;
        // The instrument says nothing when an answer comes, so it is asked again soon.
        context->changed.wait_until(lock, std::min(end, Clock::now() + std::chrono::milliseconds(2)));
    }
}
