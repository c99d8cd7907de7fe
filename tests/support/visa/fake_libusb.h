#pragma once

#include "tests/support/visa/usbtmc_device.h"

#include <libusb.h>

#include <memory>
#include <string>
#include <vector>

namespace kvxtest
{

/// A device that is plugged into the bus that libusb's functions of this program see.
struct PluggedDevice
{
    std::uint16_t vendorId = 0x1234;
    std::uint16_t productId = 0x5678;
    std::string serialNumber = "SN-1";
    std::vector<std::uint8_t> testInterfaces{1}; ///< numbers of its USBTMC interfaces, behind one of another class
    std::uint8_t alternateSetting = 0;           ///< in which they are
    bool hasPipes = true;
    int openError = LIBUSB_SUCCESS;
    int claimError = LIBUSB_SUCCESS;
    std::shared_ptr<UsbtmcDevice> instrument = std::make_shared<UsbtmcDevice>();

    // What is done with it.
    int opened = 0;
    bool isKernelDriverAttached = true;
    int claimedInterface = -1;
    int setting = 0;
};

/// The bus, and what is left of what libusb has handed out. An instrument's bulk-in that has nothing to send stays
/// under way until it is cancelled.
struct FakeUsb
{
    std::vector<PluggedDevice> devices;
    int initError = LIBUSB_SUCCESS;
    int contexts = 0;
    int handles = 0;
    int transfers = 0;
    int lists = 0;
    int calls = 0;
    int failingCall = 0; ///< the number of the call that fails, 0: none
    int callError = LIBUSB_ERROR_NO_MEM;

    void reset() { *this = FakeUsb(); }
    bool isNothingLeft() const { return contexts == 0 && handles == 0 && transfers == 0 && lists == 0; }
};

FakeUsb& fakeUsb();

} // namespace kvxtest
