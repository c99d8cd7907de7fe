#pragma once

#include "visa/host/network.h"

namespace visa
{

/// The context that all sockets and ports belong to. Nothing runs in it: the transports wait for themselves.
asio::io_context& ioContext();

} // namespace visa
