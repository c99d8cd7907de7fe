#pragma once

#include "visa/host/deadline.h"

#include <visa.h>

#include <cstdint>
#include <string>

namespace visa
{

/// Where a program of a host listens for TCP connections.
struct RpcPlace
{
    std::string address{}; ///< the one of the host's addresses that answered
    ViUInt16 port = 0;
};

/// Asks the portmapper of a host, by TCP and, where that is refused, by UDP. Nothing of the process decides about it
/// but the arguments.
/// @return VI_ERROR_RSRC_NFOUND when there is no such host, portmapper or program, VI_ERROR_TMO when none answers
ViStatus findRpcProgram(const std::string& host, std::uint32_t program, std::uint32_t version, const Deadline& deadline,
                        RpcPlace& place);

} // namespace visa
