#include "visa/transport/vxi11/vxi11_open.h"

#include "visa/transport/vxi11/portmapper.h"
#include "visa/transport/vxi11/vxi11_transport.h"

namespace visa
{

ViStatus openVxi11(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport)
{
    RpcPlace core;
    const ViStatus status = findVxi11Core(name.address, deadline, core);
    return status < 0 ? status : openVxi11Link(core, name.device, deadline, transport);
}

} // namespace visa
