/**
 * @file visa.h
 * VISA operations, attributes and status codes (VPP-4.3, VPP-4.3.2) of this platform's VISA library.
 *
 * Calls on different sessions may run in parallel. One viRead and one viWrite at a time may run on the same session.
 */
#ifndef KVX_VISA_H
#define KVX_VISA_H

#include "visatype.h"

#if defined(__cplusplus)
extern "C" {
#endif

/** @name Sessions @{ */

/** Opens a new resource manager session and stores it; 0 is stored on failure. VI_ERROR_ALLOC without memory. */
ViStatus _VI_FUNC viOpenDefaultRM(ViPSession sesn);

/**
 * Opens a session to a resource.
 * @param sesn    resource manager session
 * @param name    resource string, letter case is ignored
 * @param mode    VI_NULL, VI_EXCLUSIVE_LOCK or VI_LOAD_CONFIG, ORed
 * @param timeout milliseconds to wait for a connection; 0 stands for 2000
 * @param vi      receives the session, 0 on failure
 */
ViStatus _VI_FUNC viOpen(ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi);

/** Closes a session; a resource manager's session takes all sessions opened through it with it. Any thread. */
ViStatus _VI_FUNC viClose(ViObject vi);

/** @} */
/** @name Attributes @{ */

/** Stores the attribute's value in *attrValue, in the attribute's own width (strings: up to 256 characters). */
ViStatus _VI_FUNC viGetAttribute(ViObject vi, ViAttr attrName, void* attrValue);

/** Sets an attribute; the value is reduced to the attribute's own width first. */
ViStatus _VI_FUNC viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrValue);

/** Writes the meaning of a status code to desc, which has room for 256 characters. */
ViStatus _VI_FUNC viStatusDesc(ViObject vi, ViStatus status, ViChar desc[]);

/** @} */
/** @name Input and output @{ */

/**
 * Reads up to cnt bytes. retCnt (may be null) receives the bytes stored in buf, on an error as well.
 *
 * The bytes of a read that failed (a negative status) are not lost if the caller drops them: the next viRead begins
 * with them, unless viWrite, viClear or viSetBuf comes first.
 */
ViStatus _VI_FUNC viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);

/**
 * Writes cnt bytes. retCnt (may be null) receives the bytes handed over, on an error as well.
 *
 * If the last viRead of the session failed, everything that has arrived is discarded first, so that it is not taken for
 * the answer to these bytes. While that cannot be done, nothing is written and its error is returned. After a viRead
 * that succeeded, with VI_SUCCESS_MAX_CNT as well, nothing is discarded.
 */
ViStatus _VI_FUNC viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);

/**
 * Clears the device: discards what has not been sent, on a serial line followed by a break, and what has arrived. Waits
 * for a viWrite under way; what arrives during a viRead is left to that.
 */
ViStatus _VI_FUNC viClear(ViSession vi);

/** Flushes the buffers named by mask (VI_READ_BUF, VI_WRITE_BUF, VI_IO_IN_BUF, VI_IO_OUT_BUF) and sizes them. */
ViStatus _VI_FUNC viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 size);

/** @} */

/** The older name of viOpenDefaultRM. */
#define viGetDefaultRM(sesn) viOpenDefaultRM(sesn)

/** @name Attribute numbers; bit 31 marks a string @{ */
#define VI_ATTR_RSRC_CLASS ((ViAttr)0xBFFF0001)
#define VI_ATTR_RSRC_NAME ((ViAttr)0xBFFF0002)
#define VI_ATTR_SEND_END_EN ((ViAttr)0x3FFF0016)
#define VI_ATTR_TERMCHAR ((ViAttr)0x3FFF0018)
#define VI_ATTR_TMO_VALUE ((ViAttr)0x3FFF001A)
#define VI_ATTR_IO_PROT ((ViAttr)0x3FFF001C)
#define VI_ATTR_ASRL_BAUD ((ViAttr)0x3FFF0021)
#define VI_ATTR_ASRL_DATA_BITS ((ViAttr)0x3FFF0022)
#define VI_ATTR_ASRL_PARITY ((ViAttr)0x3FFF0023)
#define VI_ATTR_ASRL_STOP_BITS ((ViAttr)0x3FFF0024)
#define VI_ATTR_ASRL_FLOW_CNTRL ((ViAttr)0x3FFF0025)
#define VI_ATTR_RD_BUF_SIZE ((ViAttr)0x3FFF002B)
#define VI_ATTR_WR_BUF_SIZE ((ViAttr)0x3FFF002E)
#define VI_ATTR_SUPPRESS_END_EN ((ViAttr)0x3FFF0036)
#define VI_ATTR_TERMCHAR_EN ((ViAttr)0x3FFF0038)
#define VI_ATTR_ASRL_AVAIL_NUM ((ViAttr)0x3FFF00AC)
#define VI_ATTR_ASRL_END_IN ((ViAttr)0x3FFF00B3)
#define VI_ATTR_ASRL_END_OUT ((ViAttr)0x3FFF00B4)
#define VI_ATTR_RM_SESSION ((ViAttr)0x3FFF00C4)
#define VI_ATTR_INTF_TYPE ((ViAttr)0x3FFF0171)
#define VI_ATTR_INTF_NUM ((ViAttr)0x3FFF0176)
#define VI_ATTR_TCPIP_ADDR ((ViAttr)0xBFFF0195)
#define VI_ATTR_TCPIP_HOSTNAME ((ViAttr)0xBFFF0196)
#define VI_ATTR_TCPIP_PORT ((ViAttr)0x3FFF0197)
#define VI_ATTR_TCPIP_DEVICE_NAME ((ViAttr)0xBFFF0199)
#define VI_ATTR_TCPIP_NODELAY ((ViAttr)0x3FFF019A)
#define VI_ATTR_TCPIP_KEEPALIVE ((ViAttr)0x3FFF019B)
/** @} */

#ifdef KVVISA_EXTENSIONS
/** @name Attributes of this library only, for who defines KVVISA_EXTENSIONS @{ */

/** ViBoolean, VI_TRUE at first: whether viWrite discards what has arrived when the last viRead failed. */
#define VI_ATTR_KVX_DISCARD_STALE_INPUT ((ViAttr)0x3FFF8280)
/** @} */
#endif

/** @name Attribute values @{ */
#define VI_TMO_IMMEDIATE 0
#define VI_TMO_INFINITE ((ViUInt32)0xFFFFFFFF)

#define VI_INTF_GPIB 1
#define VI_INTF_ASRL 4
#define VI_INTF_PXI 5
#define VI_INTF_TCPIP 6
#define VI_INTF_USB 7

#define VI_PROT_NORMAL 1
#define VI_PROT_4882_STRS 4

#define VI_ASRL_PAR_NONE 0
#define VI_ASRL_PAR_ODD 1
#define VI_ASRL_PAR_EVEN 2
#define VI_ASRL_PAR_MARK 3
#define VI_ASRL_PAR_SPACE 4

#define VI_ASRL_STOP_ONE 10
#define VI_ASRL_STOP_ONE5 15
#define VI_ASRL_STOP_TWO 20

#define VI_ASRL_FLOW_NONE 0
#define VI_ASRL_FLOW_XON_XOFF 1
#define VI_ASRL_FLOW_RTS_CTS 2
#define VI_ASRL_FLOW_DTR_DSR 4

#define VI_ASRL_END_NONE 0
#define VI_ASRL_END_LAST_BIT 1
#define VI_ASRL_END_TERMCHAR 2
#define VI_ASRL_END_BREAK 3
/** @} */

/** @name Access modes of viOpen @{ */
#define VI_NO_LOCK 0
#define VI_EXCLUSIVE_LOCK 1
#define VI_LOAD_CONFIG 4
/** @} */

/** @name Buffers of viSetBuf @{ */
#define VI_READ_BUF 1
#define VI_WRITE_BUF 2
#define VI_IO_IN_BUF 16
#define VI_IO_OUT_BUF 32
#define VI_ASRL_IN_BUF VI_IO_IN_BUF
#define VI_ASRL_OUT_BUF VI_IO_OUT_BUF
/** @} */

/** @name Completion codes and warnings @{ */
#define VI_SUCCESS_TERM_CHAR ((ViStatus)0x3FFF0005)
#define VI_SUCCESS_MAX_CNT ((ViStatus)0x3FFF0006)
#define VI_SUCCESS_DEV_NPRESENT ((ViStatus)0x3FFF007D)
#define VI_WARN_CONFIG_NLOADED ((ViStatus)0x3FFF0077)
#define VI_WARN_NULL_OBJECT ((ViStatus)0x3FFF0082)
#define VI_WARN_NSUP_ATTR_STATE ((ViStatus)0x3FFF0084)
#define VI_WARN_UNKNOWN_STATUS ((ViStatus)0x3FFF0085)
#define VI_WARN_NSUP_BUF ((ViStatus)0x3FFF0088)
/** @} */

/** @name Errors @{ */
#define VI_ERROR_SYSTEM_ERROR ((ViStatus)0xBFFF0000)
#define VI_ERROR_INV_OBJECT ((ViStatus)0xBFFF000E)
#define VI_ERROR_INV_SESSION VI_ERROR_INV_OBJECT
#define VI_ERROR_RSRC_LOCKED ((ViStatus)0xBFFF000F)
#define VI_ERROR_RSRC_NFOUND ((ViStatus)0xBFFF0011)
#define VI_ERROR_INV_RSRC_NAME ((ViStatus)0xBFFF0012)
#define VI_ERROR_INV_ACC_MODE ((ViStatus)0xBFFF0013)
#define VI_ERROR_TMO ((ViStatus)0xBFFF0015)
#define VI_ERROR_CLOSING_FAILED ((ViStatus)0xBFFF0016)
#define VI_ERROR_NSUP_ATTR ((ViStatus)0xBFFF001D)
#define VI_ERROR_NSUP_ATTR_STATE ((ViStatus)0xBFFF001E)
#define VI_ERROR_ATTR_READONLY ((ViStatus)0xBFFF001F)
#define VI_ERROR_ABORT ((ViStatus)0xBFFF0030)
#define VI_ERROR_OUTP_PROT_VIOL ((ViStatus)0xBFFF0036)
#define VI_ERROR_INP_PROT_VIOL ((ViStatus)0xBFFF0037)
#define VI_ERROR_BERR ((ViStatus)0xBFFF0038)
#define VI_ERROR_INV_SETUP ((ViStatus)0xBFFF003A)
#define VI_ERROR_ALLOC ((ViStatus)0xBFFF003C)
#define VI_ERROR_INV_MASK ((ViStatus)0xBFFF003D)
#define VI_ERROR_IO ((ViStatus)0xBFFF003E)
#define VI_ERROR_NLISTENERS ((ViStatus)0xBFFF005F)
#define VI_ERROR_NCIC ((ViStatus)0xBFFF0060)
#define VI_ERROR_NSUP_OPER ((ViStatus)0xBFFF0067)
#define VI_ERROR_ASRL_PARITY ((ViStatus)0xBFFF006A)
#define VI_ERROR_ASRL_FRAMING ((ViStatus)0xBFFF006B)
#define VI_ERROR_ASRL_OVERRUN ((ViStatus)0xBFFF006C)
#define VI_ERROR_RSRC_BUSY ((ViStatus)0xBFFF0072)
#define VI_ERROR_INV_PARAMETER ((ViStatus)0xBFFF0078)
#define VI_ERROR_INV_PROT ((ViStatus)0xBFFF0079)
#define VI_ERROR_NIMPL_OPER ((ViStatus)0xBFFF0081)
#define VI_ERROR_LIBRARY_NFOUND ((ViStatus)0xBFFF009E)
#define VI_ERROR_INTF_NUM_NCONFIG ((ViStatus)0xBFFF00A5)
#define VI_ERROR_CONN_LOST ((ViStatus)0xBFFF00A6)
#define VI_ERROR_NPERMISSION ((ViStatus)0xBFFF00A8)
/** @} */

#if defined(__cplusplus)
}
#endif

#endif
