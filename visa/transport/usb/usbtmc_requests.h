#pragma once

#include "visa/host/deadline.h"
#include "visa/transport/usb/usb_interface.h"
#include "visa/transport/usb/usbtmc_messages.h"

#include <visa.h>

#include <cstdint>
#include <span>

/// The requests of USBTMC and USB488 on the control pipe.
namespace visa::usbtmc
{

/// The time that a transfer may take of an operation. What does not wait at all still takes a moment.
TransferLimit limitOf(const Deadline& deadline);

/// Sends a request to the interface.
/// @param answer receives what the device says: of what it was asked in the first byte, all other bytes where that is
///        Status::Success
ViStatus askInterface(UsbInterface& usb, Request request, std::uint16_t value, std::span<ViByte> answer,
                      const TransferLimit& limit);

/// Sends a request to the interface whose answer is a status alone.
ViStatus command(UsbInterface& usb, Request request, std::uint16_t value, const Deadline& deadline);

/// Asks for the capabilities. A device that does not answer to this has none.
ViStatus readCapabilities(UsbInterface& usb, const Deadline& deadline, Capabilities& capabilities);

/// Clears the device and waits until it is done, no longer than half a minute.
/// @param scratch for what the device still sends; a multiple of the largest packet
ViStatus clearDevice(UsbInterface& usb, std::span<ViByte> scratch, const Deadline& deadline);

/// Takes back the message with this tag, which ended early in this way, so that the next one can be sent. Takes a
/// second at most, whatever was cancelled.
void recoverBulkOut(UsbInterface& usb, ViByte tag, TransferOutcome outcome);

/// Takes back the request for a message with this tag, and drops what comes of it.
/// @param scratch as for clearDevice
/// @return false when an answer to the request may still come
bool recoverBulkIn(UsbInterface& usb, ViByte tag, TransferOutcome outcome, std::span<ViByte> scratch);

} // namespace visa::usbtmc
