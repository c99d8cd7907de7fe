#include "visa/session/status_texts.h"

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

struct StatusText
{
    ViStatus status;
    std::string_view text;
};

constexpr std::array kTexts{
    StatusText{VI_SUCCESS, "Done."},
    StatusText{VI_SUCCESS_TERM_CHAR, "The read ended at the termination character."},
    StatusText{VI_SUCCESS_MAX_CNT, "The read filled the requested count."},
    StatusText{VI_WARN_CONFIG_NLOADED, "The resource is open, but no configuration was loaded for it."},
    StatusText{VI_SUCCESS_DEV_NPRESENT, "The session is open, but the device does not answer."},
    StatusText{VI_WARN_NULL_OBJECT, "The given handle was empty; there was nothing to do."},
    StatusText{VI_WARN_NSUP_ATTR_STATE, "The attribute does not support this value; it was ignored."},
    StatusText{VI_WARN_UNKNOWN_STATUS, "The status code has no description."},
    StatusText{VI_WARN_NSUP_BUF, "The size of this buffer cannot be changed."},
    StatusText{VI_ERROR_SYSTEM_ERROR, "The system failed."},
    StatusText{VI_ERROR_INV_OBJECT, "The handle is not an open session."},
    StatusText{VI_ERROR_RSRC_LOCKED, "The resource is locked by another session."},
    StatusText{VI_ERROR_RSRC_NFOUND, "The resource is not present or cannot be reached."},
    StatusText{VI_ERROR_INV_RSRC_NAME, "The resource string is not well formed."},
    StatusText{VI_ERROR_INV_ACC_MODE, "The access mode is not valid."},
    StatusText{VI_ERROR_TMO, "The time-out passed before the operation was complete."},
    StatusText{VI_ERROR_CLOSING_FAILED, "The session could not be closed properly."},
    StatusText{VI_ERROR_NSUP_ATTR, "The resource does not have this attribute."},
    StatusText{VI_ERROR_NSUP_ATTR_STATE, "The attribute does not support this value."},
    StatusText{VI_ERROR_ATTR_READONLY, "The attribute can only be read."},
    StatusText{VI_ERROR_ABORT, "The operation was aborted."},
    StatusText{VI_ERROR_OUTP_PROT_VIOL, "The device violated the protocol during a write."},
    StatusText{VI_ERROR_INP_PROT_VIOL, "The device violated the protocol during a read."},
    StatusText{VI_ERROR_BERR, "A bus error happened."},
    StatusText{VI_ERROR_INV_SETUP, "The session's settings do not fit together."},
    StatusText{VI_ERROR_ALLOC, "There is not enough memory or another resource of the system."},
    StatusText{VI_ERROR_INV_MASK, "The buffer mask is not valid."},
    StatusText{VI_ERROR_IO, "The transfer failed."},
    StatusText{VI_ERROR_NLISTENERS, "No device listens on the bus."},
    StatusText{VI_ERROR_NCIC, "The interface is not the controller in charge."},
    StatusText{VI_ERROR_NSUP_OPER, "The session does not support this operation."},
    StatusText{VI_ERROR_ASRL_PARITY, "A parity error happened on the serial line."},
    StatusText{VI_ERROR_ASRL_FRAMING, "A framing error happened on the serial line."},
    StatusText{VI_ERROR_ASRL_OVERRUN, "Received characters were lost on the serial line."},
    StatusText{VI_ERROR_RSRC_BUSY, "The resource exists but cannot be used now."},
    StatusText{VI_ERROR_INV_PARAMETER, "A parameter is not valid."},
    StatusText{VI_ERROR_INV_PROT, "The requested protocol is not available."},
    StatusText{VI_ERROR_NIMPL_OPER, "The operation is not implemented."},
    StatusText{VI_ERROR_LIBRARY_NFOUND, "The library that this kind of resource needs is not available."},
    StatusText{VI_ERROR_INTF_NUM_NCONFIG, "No interface has this board number."},
    StatusText{VI_ERROR_CONN_LOST, "The connection was lost."},
    StatusText{VI_ERROR_NPERMISSION, "Access was refused."},
};

} // namespace

std::string_view statusText(ViStatus status)
{
    const auto* const found =
        std::find_if(kTexts.begin(), kTexts.end(), [status](const StatusText& row) { return row.status == status; });
    return found == kTexts.end() ? std::string_view() : found->text;
}

} // namespace visa
