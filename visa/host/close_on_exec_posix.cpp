#include "visa/host/close_on_exec_posix.h"

#include <fcntl.h>

namespace visa
{

void closeOnExec(int descriptor) noexcept
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace visa
