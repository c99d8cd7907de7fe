#include "visa/host/library.h"

namespace visa
{

// The linker has seen to it.
void keepLibraryLoaded() noexcept {}

} // namespace visa
