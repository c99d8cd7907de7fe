#pragma once

#include "visa/host/network.h"
#include "visa/resource/resource_name.h"
#include "visa/transport/stream.h"

#include <memory>

namespace visa
{

/// Connects to a resource through the back end of its kind.
/// @param stream receives the connection on success
/// @return VI_ERROR_LIBRARY_NFOUND for a kind without a back end, VI_ERROR_INV_PROT when the name asks for a secure
///         connection, otherwise the back end's own answer
ViStatus openStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);

/// The context that all sockets and ports belong to. Nothing runs in it: the back ends wait for themselves.
asio::io_context& ioContext();

ViStatus openTcpStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);
ViStatus openSerialStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);

} // namespace visa
