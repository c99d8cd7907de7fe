#pragma once

#include <cstdint>

namespace visa
{

/// A descriptor or handle of the host.
using NativeHandle = std::intptr_t;

} // namespace visa
