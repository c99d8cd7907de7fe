#pragma once

#include <system_error>

namespace visa
{

/// Whether the host failed for want of descriptors or memory, which is VI_ERROR_ALLOC wherever it happens.
bool isExhaustion(const std::error_code& error);

/// Whether somebody else has the device, or the user may not have it.
bool isOccupied(const std::error_code& error);

} // namespace visa
