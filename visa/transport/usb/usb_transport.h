#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/transport.h"
#include "visa/transport/usb/usb_interface.h"

#include <memory>
#include <string>
#include <vector>

namespace visa
{

/// Opens the USB instrument of this name: the device with its numbers and serial number, and of its test and
/// measurement interfaces the one with the number, or the lowest.
/// @return VI_ERROR_RSRC_NFOUND; VI_ERROR_NPERMISSION when the user may not open a device that could be the one;
///         VI_ERROR_RSRC_BUSY while another program has the interface; VI_ERROR_LIBRARY_NFOUND on a host without libusb
ViStatus openUsb(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport);

/// The resource strings of all USB instruments that the user may open, each interface of its own where a device has
/// several. Devices without a serial number that a resource string can hold are left out.
std::vector<std::string> findUsb();

/// The pipes of an instrument, by openUsb's rules.
ViStatus openUsbInterface(const ResourceName& name, std::unique_ptr<UsbInterface>& usb);

/// "USB0::0x1234::0x5678::SERIAL::INSTR"
/// @param namesInterface whether the number of the interface is in it
std::string usbResource(const UsbDescription& description, bool namesInterface);

} // namespace visa
