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

/// All codes of the header, in its order.
constexpr std::array kTexts{
    StatusText{VI_SUCCESS, "Done."},
    StatusText{VI_SUCCESS_EVENT_EN, "The event was enabled already."},
    StatusText{VI_SUCCESS_EVENT_DIS, "The event was disabled already."},
    StatusText{VI_SUCCESS_QUEUE_EMPTY, "The event queue was empty already."},
    StatusText{VI_SUCCESS_TERM_CHAR, "The read ended at the termination character."},
    StatusText{VI_SUCCESS_MAX_CNT, "The read filled the requested count."},
    StatusText{VI_SUCCESS_DEV_NPRESENT, "The session is open, but the device does not answer."},
    StatusText{VI_SUCCESS_TRIG_MAPPED, "The trigger was mapped already."},
    StatusText{VI_SUCCESS_QUEUE_NEMPTY, "An event was taken; more of its kind are in the queue."},
    StatusText{VI_SUCCESS_NCHAIN, "The event was handled; no further handlers are called."},
    StatusText{VI_SUCCESS_NESTED_SHARED, "Done; the session still holds shared locks."},
    StatusText{VI_SUCCESS_NESTED_EXCLUSIVE, "Done; the session still holds exclusive locks."},
    StatusText{VI_SUCCESS_SYNC, "The operation was complete before it could be left to itself."},
    StatusText{VI_WARN_QUEUE_OVERFLOW, "The event queue was full and has lost events."},
    StatusText{VI_WARN_CONFIG_NLOADED, "The resource is open, but no configuration was loaded for it."},
    StatusText{VI_WARN_NULL_OBJECT, "The given handle was empty; there was nothing to do."},
    StatusText{VI_WARN_NSUP_ATTR_STATE, "The attribute does not support this value; it was ignored."},
    StatusText{VI_WARN_UNKNOWN_STATUS, "The status code has no description."},
    StatusText{VI_WARN_NSUP_BUF, "The size of this buffer cannot be changed."},
    StatusText{VI_WARN_EXT_FUNC_NIMPL, "Done, but a driver below does not know the extended part."},
    StatusText{VI_WARN_SERVER_CERT_UNTRUSTED,
               "The session is open, but nobody trusted has signed the server's certificate."},
    StatusText{VI_WARN_SERVER_CERT_INV_SUBJECT,
               "The session is open, but the server's certificate is for another name."},
    StatusText{VI_ERROR_SYSTEM_ERROR, "The system failed."},
    StatusText{VI_ERROR_INV_OBJECT, "The handle is not an open session."},
    StatusText{VI_ERROR_RSRC_LOCKED, "The resource is locked by another session."},
    StatusText{VI_ERROR_INV_EXPR, "The search expression is not well formed."},
    StatusText{VI_ERROR_RSRC_NFOUND, "The resource is not present or cannot be reached."},
    StatusText{VI_ERROR_INV_RSRC_NAME, "The resource string is not well formed."},
    StatusText{VI_ERROR_INV_ACC_MODE, "The access mode is not valid."},
    StatusText{VI_ERROR_TMO, "The time-out passed before the operation was complete."},
    StatusText{VI_ERROR_CLOSING_FAILED, "The session could not be closed properly."},
    StatusText{VI_ERROR_INV_DEGREE, "The degree of termination is not valid."},
    StatusText{VI_ERROR_INV_JOB_ID, "The session has no such job."},
    StatusText{VI_ERROR_NSUP_ATTR, "The resource does not have this attribute."},
    StatusText{VI_ERROR_NSUP_ATTR_STATE, "The attribute does not support this value."},
    StatusText{VI_ERROR_ATTR_READONLY, "The attribute can only be read."},
    StatusText{VI_ERROR_INV_LOCK_TYPE, "The kind of lock is not valid."},
    StatusText{VI_ERROR_INV_ACCESS_KEY, "The key does not open the shared lock."},
    StatusText{VI_ERROR_INV_EVENT, "The session does not know this event."},
    StatusText{VI_ERROR_INV_MECH, "The event mechanism is not valid."},
    StatusText{VI_ERROR_HNDLR_NINSTALLED, "No handler is installed for the event."},
    StatusText{VI_ERROR_INV_HNDLR_REF, "No such handler is installed."},
    StatusText{VI_ERROR_INV_CONTEXT, "The event context is not valid."},
    StatusText{VI_ERROR_NENABLED, "The session has not enabled the event."},
    StatusText{VI_ERROR_ABORT, "The operation was aborted."},
    StatusText{VI_ERROR_RAW_WR_PROT_VIOL, "A raw write violated the protocol."},
    StatusText{VI_ERROR_RAW_RD_PROT_VIOL, "A raw read violated the protocol."},
    StatusText{VI_ERROR_OUTP_PROT_VIOL, "The device violated the protocol during a write."},
    StatusText{VI_ERROR_INP_PROT_VIOL, "The device violated the protocol during a read."},
    StatusText{VI_ERROR_BERR, "A bus error happened."},
    StatusText{VI_ERROR_IN_PROGRESS, "An operation of this kind is under way and leaves no room for another."},
    StatusText{VI_ERROR_INV_SETUP, "The session's settings do not fit together."},
    StatusText{VI_ERROR_QUEUE_ERROR, "The operation could not be queued."},
    StatusText{VI_ERROR_ALLOC, "There is not enough memory or another resource of the system."},
    StatusText{VI_ERROR_INV_MASK, "The buffer mask is not valid."},
    StatusText{VI_ERROR_IO, "The transfer failed."},
    StatusText{VI_ERROR_INV_FMT, "The format string is not well formed."},
    StatusText{VI_ERROR_NSUP_FMT, "The format string asks for what is not supported."},
    StatusText{VI_ERROR_LINE_IN_USE, "The trigger line is in use."},
    StatusText{VI_ERROR_LINE_NRESERVED, "The trigger line is not reserved."},
    StatusText{VI_ERROR_NSUP_MODE, "The mode is not supported."},
    StatusText{VI_ERROR_SRQ_NOCCURRED, "The device has not requested service."},
    StatusText{VI_ERROR_INV_SPACE, "The address space is not valid."},
    StatusText{VI_ERROR_INV_OFFSET, "The offset is not valid."},
    StatusText{VI_ERROR_INV_WIDTH, "The width of an access is not valid."},
    StatusText{VI_ERROR_NSUP_OFFSET, "The offset cannot be reached."},
    StatusText{VI_ERROR_NSUP_VAR_WIDTH, "Source and destination cannot have different widths."},
    StatusText{VI_ERROR_WINDOW_NMAPPED, "No window is mapped."},
    StatusText{VI_ERROR_RESP_PENDING, "The response to an earlier command is still awaited."},
    StatusText{VI_ERROR_NLISTENERS, "No device listens on the bus."},
    StatusText{VI_ERROR_NCIC, "The interface is not the controller in charge."},
    StatusText{VI_ERROR_NSYS_CNTLR, "The interface is not the system controller."},
    StatusText{VI_ERROR_NSUP_OPER, "The session does not support this operation."},
    StatusText{VI_ERROR_INTR_PENDING, "An earlier interrupt is still pending."},
    StatusText{VI_ERROR_ASRL_PARITY, "A parity error happened on the serial line."},
    StatusText{VI_ERROR_ASRL_FRAMING, "A framing error happened on the serial line."},
    StatusText{VI_ERROR_ASRL_OVERRUN, "Received characters were lost on the serial line."},
    StatusText{VI_ERROR_TRIG_NMAPPED, "The trigger is not mapped."},
    StatusText{VI_ERROR_NSUP_ALIGN_OFFSET, "The offset is not aligned with the width."},
    StatusText{VI_ERROR_USER_BUF, "The buffer that was given cannot be used."},
    StatusText{VI_ERROR_RSRC_BUSY, "The resource exists but cannot be used now."},
    StatusText{VI_ERROR_NSUP_WIDTH, "The width of an access is not supported."},
    StatusText{VI_ERROR_INV_PARAMETER, "A parameter is not valid."},
    StatusText{VI_ERROR_INV_PROT, "The requested protocol is not available."},
    StatusText{VI_ERROR_INV_SIZE, "The size of the window is not valid."},
    StatusText{VI_ERROR_WINDOW_MAPPED, "A window is mapped already."},
    StatusText{VI_ERROR_NIMPL_OPER, "The operation is not implemented."},
    StatusText{VI_ERROR_INV_LENGTH, "The length is not valid."},
    StatusText{VI_ERROR_INV_MODE, "The mode is not valid."},
    StatusText{VI_ERROR_SESN_NLOCKED, "The session holds no lock."},
    StatusText{VI_ERROR_MEM_NSHARED, "The device shares no memory."},
    StatusText{VI_ERROR_LIBRARY_NFOUND,
               "The resource string is understood, but this library has nothing that reaches such a resource."},
    StatusText{VI_ERROR_NSUP_INTR, "The interface cannot make this interrupt."},
    StatusText{VI_ERROR_INV_LINE, "The trigger line is not valid."},
    StatusText{VI_ERROR_FILE_ACCESS, "The file could not be opened."},
    StatusText{VI_ERROR_FILE_IO, "The file could not be read or written."},
    StatusText{VI_ERROR_NSUP_LINE, "The trigger line is not supported."},
    StatusText{VI_ERROR_NSUP_MECH, "The event does not support this mechanism."},
    StatusText{VI_ERROR_INTF_NUM_NCONFIG, "No interface has this board number."},
    StatusText{VI_ERROR_CONN_LOST, "The connection was lost."},
    // USB is where this library meets it.
    StatusText{
        VI_ERROR_NPERMISSION,
        "The user may not open the device; for USB instruments, the udev rule 70-kvvisa-usbtmc.rules allows it."},
    StatusText{VI_ERROR_SERVER_CERT, "The server's certificate cannot be used."},
    StatusText{VI_ERROR_SERVER_CERT_UNTRUSTED, "Nobody trusted has signed the server's certificate."},
    StatusText{VI_ERROR_SERVER_CERT_EXPIRED, "The server's certificate has expired."},
    StatusText{VI_ERROR_SERVER_CERT_REVOKED, "The server's certificate has been revoked."},
    StatusText{VI_ERROR_SERVER_CERT_INV_SUBJECT, "The server's certificate is for another name."},
};

} // namespace

std::string_view statusText(ViStatus status)
{
    const auto* const found =
        std::find_if(kTexts.begin(), kTexts.end(), [status](const StatusText& row) { return row.status == status; });
    return found == kTexts.end() ? std::string_view() : found->text;
}

} // namespace visa
