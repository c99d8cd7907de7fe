#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/transport.h"

#include <memory>

namespace visa
{

/// Connects to a LAN instrument with VXI-11.
/// @return VI_ERROR_RSRC_NFOUND when the host or its portmapper does not know it; VI_ERROR_LIBRARY_NFOUND on hosts
/// where
///         VXI-11 is left to vendors
ViStatus openVxi11(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport);

} // namespace visa
