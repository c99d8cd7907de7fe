#include "visa/transport/usb/usb_transport.h"

#include "visa/transport/usb/usbtmc_transport.h"

#include <utility>

namespace visa
{

ViStatus openUsb(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport)
{
    std::unique_ptr<UsbInterface> usb;
    const ViStatus status = openUsbInterface(name, usb);
    return status < 0 ? status : makeUsbtmcTransport(std::move(usb), deadline, transport);
}

std::string usbResource(const UsbDescription& description, bool namesInterface)
{
    std::string text = "USB0::" + usbIdText(description.vendorId) + "::" + usbIdText(description.productId) +
                       "::" + description.serialNumber;
    if (namesInterface)
        text += "::" + std::to_string(description.interfaceNumber);
    return text + "::INSTR";
}

} // namespace visa
