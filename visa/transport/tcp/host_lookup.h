#pragma once

#include "visa/host/deadline.h"
#include "visa/host/network.h"

#include <cstdint>
#include <functional>
#include <string>

namespace visa
{

using HostEndpoints = asio::ip::tcp::resolver::results_type;

/// Looks a host's name up, in the host's own way. An address is taken as it is.
///
/// The host's way cannot be ended: it runs in a thread of its own, which is left behind when the time is over and ends
/// by itself. At most 64 are left behind at a time; beyond that, and without memory for a thread, the error says so.
/// @return asio::error::timed_out when the deadline passed
asio::error_code lookUpHost(const std::string& host, std::uint16_t port, const Deadline& deadline,
                            HostEndpoints& endpoints);

/// The host's own way; may take any time and may throw std::bad_alloc.
using HostLookup =
    std::function<asio::error_code(const std::string& host, const std::string& port, HostEndpoints& endpoints)>;

/// As lookUpHost, with another way in place of the host's. It must be callable from any thread as long as it takes.
asio::error_code lookUpHostBy(const HostLookup& lookup, const std::string& host, std::uint16_t port,
                              const Deadline& deadline, HostEndpoints& endpoints);

} // namespace visa
