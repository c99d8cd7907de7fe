#include "visa/transport/usb/libusb_interface.h"
#include "visa/transport/usb/usb_transport.h"
#include "visa/transport/usb/usbtmc_messages.h"

#include <algorithm>
#include <array>
#include <utility>

namespace visa
{
namespace
{

/// One of a device's test and measurement interfaces.
struct TestInterface
{
    UsbDescription description{};
    std::uint8_t alternateSetting = 0;
};

struct ErrorRow
{
    int error;
    ViStatus status;
};

constexpr std::array<ErrorRow, 6> kOpenErrors{{
    {LIBUSB_SUCCESS, VI_SUCCESS},
    {LIBUSB_ERROR_ACCESS, VI_ERROR_NPERMISSION},
    {LIBUSB_ERROR_BUSY, VI_ERROR_RSRC_BUSY},
    {LIBUSB_ERROR_NO_MEM, VI_ERROR_ALLOC},
    {LIBUSB_ERROR_NO_DEVICE, VI_ERROR_RSRC_NFOUND},
    {LIBUSB_ERROR_NOT_FOUND, VI_ERROR_RSRC_NFOUND},
}};

ViStatus statusOfOpening(int error)
{
    const auto* const row = std::find_if(kOpenErrors.begin(), kOpenErrors.end(),
                                         [error](const ErrorRow& candidate) { return candidate.error == error; });
    return row == kOpenErrors.end() ? VI_ERROR_SYSTEM_ERROR : row->status;
}

int open(LibusbContext& context)
{
    libusb_context* opened = nullptr;
    const int error = libusb_init(&opened);
    context.reset(opened);
    return error;
}

int open(libusb_device* device, LibusbHandle& handle)
{
    libusb_device_handle* opened = nullptr;
    const int error = libusb_open(device, &opened);
    handle.reset(opened);
    return error;
}

/// All devices that are plugged in.
class DeviceList
{
public:
    explicit DeviceList(libusb_context* context) : count_(libusb_get_device_list(context, &devices_)) {}
    ~DeviceList()
    {
        if (devices_ != nullptr)
            libusb_free_device_list(devices_, 1);
    }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    std::span<libusb_device* const> all() const
    {
        return {devices_, static_cast<std::size_t>(std::max<ssize_t>(count_, 0))};
    }

private:
    libusb_device** devices_ = nullptr;
    ssize_t count_;
};

std::string text(libusb_device_handle* handle, std::uint8_t index)
{
    std::array<unsigned char, 256> characters{};
    const int size = index == 0 ? 0
                                : libusb_get_string_descriptor_ascii(handle, index, characters.data(),
                                                                     static_cast<int>(characters.size()));
    return {characters.begin(), characters.begin() + std::clamp(size, 0, static_cast<int>(characters.size()))};
}

void addEndpoint(const libusb_endpoint_descriptor& endpoint, UsbDescription& description)
{
    const std::uint8_t address = endpoint.bEndpointAddress;
    const bool isIn = (address & LIBUSB_ENDPOINT_DIR_MASK) == LIBUSB_ENDPOINT_IN;
    const int type = endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK;
    const std::size_t size = std::clamp(endpoint.wMaxPacketSize & 0x7FF, 1, 1024);
    if (type == LIBUSB_TRANSFER_TYPE_BULK && !isIn)
        description.bulkOutAddress = address;
    if (type == LIBUSB_TRANSFER_TYPE_BULK && isIn) {
        description.bulkInAddress = address;
        description.bulkInPacketSize = size;
    }
    if (type == LIBUSB_TRANSFER_TYPE_INTERRUPT && isIn) {
        description.interruptInAddress = address;
        description.interruptInSize = size;
    }
}

bool isTestInterface(const libusb_interface_descriptor& setting)
{
    return setting.bInterfaceClass == usbtmc::kInterfaceClass &&
           setting.bInterfaceSubClass == usbtmc::kInterfaceSubclass;
}

TestInterface described(const libusb_device_descriptor& device, const libusb_interface_descriptor& setting)
{
    TestInterface test;
    test.alternateSetting = setting.bAlternateSetting;
    test.description.vendorId = device.idVendor;
    test.description.productId = device.idProduct;
    test.description.interfaceNumber = setting.bInterfaceNumber;
    test.description.protocol = setting.bInterfaceProtocol;
    for (const auto& endpoint : std::span(setting.endpoint, setting.bNumEndpoints))
        addEndpoint(endpoint, test.description);
    return test;
}

/// Its test and measurement interfaces by number, those with the pipes that messages need.
std::vector<TestInterface> testInterfaces(libusb_device* device)
{
    libusb_device_descriptor descriptor{};
    libusb_config_descriptor* read = nullptr;
    if (libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS ||
        libusb_get_active_config_descriptor(device, &read) != LIBUSB_SUCCESS)
        return {};
    const std::unique_ptr<libusb_config_descriptor, LibusbRelease<libusb_free_config_descriptor>> configuration(read);
    std::vector<TestInterface> found;
    for (const auto& interface : std::span(configuration->interface, configuration->bNumInterfaces)) {
        for (const auto& setting : std::span(interface.altsetting, static_cast<std::size_t>(interface.num_altsetting)))
        {
            if (!isTestInterface(setting))
                continue;
            const TestInterface test = described(descriptor, setting);
            if (test.description.bulkOutAddress == 0 || test.description.bulkInAddress == 0)
                continue;
            found.push_back(test);
            break;
        }
    }
    std::sort(found.begin(), found.end(), [](const TestInterface& a, const TestInterface& b) {
        return a.description.interfaceNumber < b.description.interfaceNumber;
    });
    return found;
}

void readTexts(libusb_device_handle* handle, UsbDescription& description)
{
    libusb_device_descriptor descriptor{};
    libusb_get_device_descriptor(libusb_get_device(handle), &descriptor);
    description.vendorName = text(handle, descriptor.iManufacturer);
    description.productName = text(handle, descriptor.iProduct);
}

std::string serialNumber(libusb_device_handle* handle)
{
    libusb_device_descriptor descriptor{};
    libusb_get_device_descriptor(libusb_get_device(handle), &descriptor);
    return text(handle, descriptor.iSerialNumber);
}

/// Resource strings do not tell letters by their case.
bool equalsIgnoringCase(const std::string& a, const std::string& b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [lower](char x, char y) { return lower(x) == lower(y); });
}

/// The interface that the name means, if the device can be the one.
std::optional<TestInterface> candidate(libusb_device* device, const ResourceName& name)
{
    for (const TestInterface& test : testInterfaces(device)) {
        const UsbDescription& usb = test.description;
        if (usb.vendorId == name.vendorId && usb.productId == name.productId &&
            (!name.interfaceNumber || usb.interfaceNumber == *name.interfaceNumber))
            return test;
    }
    return std::nullopt;
}

int claim(libusb_device_handle* handle, const TestInterface& test)
{
    const int number = test.description.interfaceNumber;
    // The host's own driver has the interface at first. Where none can be detached, none is in the way.
    libusb_set_auto_detach_kernel_driver(handle, 1);
    int error = libusb_claim_interface(handle, number);
    if (error != LIBUSB_SUCCESS || test.alternateSetting == 0)
        return error;
    error = libusb_set_interface_alt_setting(handle, number, test.alternateSetting);
    if (error != LIBUSB_SUCCESS)
        libusb_release_interface(handle, number);
    return error;
}

/// @return VI_ERROR_RSRC_NFOUND for a device with another serial number
ViStatus openCandidate(libusb_device* device, const std::string& serial, TestInterface& test, LibusbHandle& handle)
{
    if (const int error = open(device, handle); error != LIBUSB_SUCCESS)
        return statusOfOpening(error);
    test.description.serialNumber = serialNumber(handle.get());
    if (!equalsIgnoringCase(test.description.serialNumber, serial))
        return VI_ERROR_RSRC_NFOUND;
    readTexts(handle.get(), test.description);
    return statusOfOpening(claim(handle.get(), test));
}

void addResources(libusb_device* device, std::vector<std::string>& resources)
{
    const auto tests = testInterfaces(device);
    LibusbHandle handle;
    if (tests.empty() || open(device, handle) != LIBUSB_SUCCESS)
        return;
    const std::string serial = serialNumber(handle.get());
    for (TestInterface test : tests) {
        test.description.serialNumber = serial;
        const std::string resource = usbResource(test.description, tests.size() > 1);
        if (parseResourceName(resource))
            resources.push_back(resource);
    }
}

} // namespace

ViStatus openUsbInterface(const ResourceName& name, std::unique_ptr<UsbInterface>& usb)
{
    LibusbContext context;
    if (const int error = open(context); error != LIBUSB_SUCCESS)
        return statusOfOpening(error);
    const DeviceList devices(context.get());
    ViStatus status = VI_ERROR_RSRC_NFOUND;
    for (libusb_device* const device : devices.all()) {
        auto test = candidate(device, name);
        if (!test)
            continue;
        LibusbHandle handle;
        const ViStatus opened = openCandidate(device, name.serialNumber, *test, handle);
        if (opened >= 0) {
            usb =
                std::make_unique<LibusbInterface>(std::move(context), std::move(handle), std::move(test->description));
            return VI_SUCCESS;
        }
        // A device that could have been the one says more than those that are not.
        if (opened != VI_ERROR_RSRC_NFOUND)
            status = opened;
    }
    return status;
}

std::vector<std::string> findUsb()
{
    LibusbContext context;
    std::vector<std::string> resources;
    if (open(context) != LIBUSB_SUCCESS)
        return resources;
    const DeviceList devices(context.get());
    for (libusb_device* const device : devices.all())
        addResources(device, resources);
    return resources;
}

} // namespace visa
