#include "virtual_instrument/transport/vxi11/rpcbind.h"

namespace kvxvirtual::vxi11
{

bool registerWithRpcbind(const std::string&, const PortMapping&)
{
    return false;
}

void unregisterFromRpcbind(const PortMapping&) {}

} // namespace kvxvirtual::vxi11
