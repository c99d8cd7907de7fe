#pragma once

namespace visa
{

/// Keeps this library in the process from now on: a thread of its own may be in it for longer than the caller.
void keepLibraryLoaded() noexcept;

} // namespace visa
