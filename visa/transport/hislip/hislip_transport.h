#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/stream.h"
#include "visa/transport/transport.h"

#include <functional>
#include <memory>
#include <string_view>

namespace visa
{

/// Connects to a LAN instrument with HiSLIP 1.0 or 2.0 without encryption (IVI-6.1): two TCP connections to port 4880,
/// or to the one behind the device's name; "hislip0" where the name has no device.
/// @return VI_ERROR_RSRC_NFOUND, VI_ERROR_TMO and VI_ERROR_ALLOC as connecting has it, or for what the device answers:
///         VI_ERROR_RSRC_NFOUND without such a device, VI_ERROR_RSRC_BUSY with too many clients, VI_ERROR_INV_PROT when
///         it insists on encryption, VI_ERROR_INP_PROT_VIOL when it does not speak HiSLIP
ViStatus openHislip(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport);

/// Makes one of the two connections.
using HislipConnect = std::function<ViStatus(const Deadline& deadline, std::unique_ptr<Stream>& stream)>;

/// The same on connections of another kind.
ViStatus openHislip(const HislipConnect& connect, std::string_view device, const Deadline& deadline,
                    std::unique_ptr<Transport>& transport);

} // namespace visa
