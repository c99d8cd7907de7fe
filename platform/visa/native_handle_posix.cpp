#include "native_handle.h"

#include <fcntl.h>

namespace visa
{

void keepFromChildren(NativeHandle handle) noexcept
{
    ::fcntl(static_cast<int>(handle), F_SETFD, FD_CLOEXEC);
}

} // namespace visa
