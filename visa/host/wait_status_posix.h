#pragma once

#include "visa/host/wait_posix.h"

namespace visa
{

/// What the end of a wait means to VISA.
inline ViStatus statusOf(WaitResult result)
{
    switch (result) {
    case WaitResult::Ready:
        return VI_SUCCESS;
    case WaitResult::TimedOut:
        return VI_ERROR_TMO;
    case WaitResult::Aborted:
        return VI_ERROR_ABORT;
    case WaitResult::Interrupted:
        return VI_ERROR_INV_OBJECT;
    case WaitResult::Failed:
        break;
    }
    return VI_ERROR_IO;
}

} // namespace visa
