#pragma once

#include "visa/host/deadline.h"
#include "visa/transport/usb/usb_interface.h"

#include <visa.h>

#include <optional>

namespace visa::usbtmc
{

/// The status byte of a USB488 device, which it tells on the control pipe or, where it has one, on the interrupt pipe.
/// For one caller at a time.
class StatusByte
{
public:
    explicit StatusByte(UsbInterface& usb) : usb_(usb) {}

    /// Where the device has requested service, the status byte is the one that came with the request (VPP-4.3 rule
    /// 6.1.29). Those of requests that came while it waited for another are or'ed.
    ViStatus read(const Deadline& deadline, ViUInt16& status);

private:
    struct Notification
    {
        ViByte kind = 0;
        ViByte value = 0;
    };

    bool hasInterruptPipe() const { return usb_.description().interruptInSize > 0; }
    ViStatus next(const TransferLimit& limit, Notification& notification);
    ViStatus awaitAnswer(ViByte tag, const Deadline& deadline, ViUInt16& status);
    ViStatus ask(const Deadline& deadline, ViUInt16& status, bool& isBusy);
    void takeServiceRequest(const TransferLimit& limit);

    UsbInterface& usb_;
    ViByte tag_ = 1;
    std::optional<ViByte> serviceRequest_; ///< a status byte that nobody has been told yet
};

} // namespace visa::usbtmc
