#include "visa/transport/usb/usb_transport.h"

namespace visa
{

ViStatus openUsbInterface(const ResourceName&, std::unique_ptr<UsbInterface>&)
{
    return VI_ERROR_LIBRARY_NFOUND;
}

std::vector<std::string> findUsb()
{
    return {};
}

} // namespace visa
