#pragma once

#include <cstdint>

namespace visa
{

/// A descriptor of the host that can be waited for.
using NativeHandle = std::intptr_t;

/// Keeps a connection out of the programs that the application starts: an instrument that accepts a single client would
/// stay occupied for as long as they run.
void keepFromChildren(NativeHandle handle) noexcept;

} // namespace visa
