#pragma once

#include "visa/resource/resource_name.h"
#include "visa/transport/transport.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace visa
{

/// A connection, and which attributes its sessions have.
struct OpenedTransport
{
    std::unique_ptr<Transport> transport{};
    SessionClass sessionClass = 0;
};

/// Connects to a resource through the transports that serve it, in the order of their table, until one answers.
/// @param opened receives the connection on success
/// @return VI_ERROR_LIBRARY_NFOUND for a resource without a transport, VI_ERROR_INV_PROT when the name asks for a
/// secure
///         connection, otherwise the last transport's own answer
ViStatus openTransport(const ResourceName& name, const Deadline& deadline, OpenedTransport& opened);

/// Looks for resources, each kind of interface in its own way, at those whose names begin as `isWanted` says. Takes as
/// long as the slowest of them, half a second with a network among them.
/// @return resource names in the order found; there may be duplicates
std::vector<std::string> presentResources(const std::function<bool(std::string_view beginning)>& isWanted);

} // namespace visa
