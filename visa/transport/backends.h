#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/stream.h"

#include <memory>

namespace visa
{

/// Connects to a resource through the transport of its kind.
/// @param stream receives the connection on success
/// @return VI_ERROR_LIBRARY_NFOUND for a kind without a transport, VI_ERROR_INV_PROT when the name asks for a secure
///         connection, otherwise the transport's own answer
ViStatus openStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);

} // namespace visa
