#pragma once

#include "visa/host/deadline.h"
#include "visa/host/network.h"

#include <optional>

namespace visa
{

/// Connects to one endpoint; what the socket was connected to before is closed. Programs that the application starts do
/// not inherit the connection: an instrument that accepts a single client would stay occupied for as long as they run.
/// @param socket connected on success, and in the mode that TcpTransfer wants on this host
/// @return nothing when the deadline passed, otherwise what the host said
std::optional<asio::error_code> connectTo(asio::ip::tcp::socket& socket, const asio::ip::tcp::endpoint& endpoint,
                                          const Deadline& deadline);

} // namespace visa
