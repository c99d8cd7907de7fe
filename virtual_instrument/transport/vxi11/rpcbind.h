#pragma once

#include "virtual_instrument/transport/vxi11/portmapper.h"

#include <string>

namespace kvxvirtual::vxi11
{

/// Tells the portmapper that runs on this machine (rpcbind) of a program, in place of what it knew before; whether it
/// has taken it. Waits a second at most. Only where this host has one.
bool registerWithRpcbind(const std::string& address, const PortMapping& mapping);

/// Harmless when it knows nothing of it.
void unregisterFromRpcbind(const PortMapping& mapping);

} // namespace kvxvirtual::vxi11
