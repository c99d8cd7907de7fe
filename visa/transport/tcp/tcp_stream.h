#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/stream.h"

#include <memory>

namespace visa
{

/// Opens a raw connection (TCPIP SOCKET) to whichever address of the host answers first, all of them within one
/// deadline.
ViStatus openTcpStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);

} // namespace visa
