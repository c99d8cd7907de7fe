/**
 * @file visa.h
 * VISA operations, attributes and status codes (VPP-4.3, VPP-4.3.2) of this platform's VISA library.
 *
 * Calls on different sessions may run in parallel. One viRead and one viWrite at a time may run on the same session.
 */
#ifndef __VISA_HEADER__
#define __VISA_HEADER__

#include <stdarg.h>

#include "visatype.h"

/** The version of VISA's specification, as VI_ATTR_RSRC_SPEC_VERSION tells it. */
#define VI_SPEC_VERSION 0x00700200U

#if defined(__cplusplus)
extern "C" {
#endif

/** @name Types @{ */
#ifndef KVX_VISATYPE_H
/* The IVI types' own header, which may have come before, lacks these. */
typedef const ViByte* ViConstBuf;
typedef ViConstString ViConstRsrc;
#endif

typedef ViObject ViEvent;
typedef ViEvent* ViPEvent;
typedef ViObject ViFindList;
typedef ViFindList* ViPFindList;

/** As wide as a pointer: a caller that passes a negative 32-bit number sends a sign-extended value. */
#if defined(_VISA_ENV_IS_64_BIT)
typedef ViUInt64 ViBusAddress;
typedef ViUInt64 ViBusSize;
typedef ViUInt64 ViAttrState;
#else
typedef ViUInt32 ViBusAddress;
typedef ViUInt32 ViBusSize;
typedef ViUInt32 ViAttrState;
#endif
typedef ViUInt64 ViBusAddress64;
typedef ViBusAddress64* ViPBusAddress64;

typedef ViUInt32 ViEventType;
typedef ViEventType* ViPEventType;
typedef ViEventType* ViAEventType;
typedef void* ViPAttrState;
typedef ViAttr* ViPAttr;
typedef ViAttr* ViAAttr;

typedef ViString ViKeyId;
typedef ViConstString ViConstKeyId;
typedef ViPString ViPKeyId;
typedef ViUInt32 ViJobId;
typedef ViJobId* ViPJobId;
typedef ViUInt32 ViAccessMode;
typedef ViAccessMode* ViPAccessMode;
typedef ViBusAddress* ViPBusAddress;
typedef ViUInt32 ViEventFilter;

typedef va_list ViVAList;
typedef ViStatus(_VI_FUNCH* ViHndlr)(ViSession vi, ViEventType eventType, ViEvent event, ViAddr userHandle);
/** @} */

/** @name Resource manager @{ */

/** Opens a new resource manager session and stores it; 0 is stored on failure. VI_ERROR_ALLOC without memory. */
ViStatus _VI_FUNC viOpenDefaultRM(ViPSession vi);

/**
 * Finds resources whose names fit an expression (VPP-4.3 section 4.4), such as "?*INSTR": serial ports, USB and LAN
 * instruments. Asking the network takes about half a second.
 * @param sesn   resource manager session
 * @param expr   expression, letter case is ignored
 * @param vi     receives a find list for viFindNext, to be closed with viClose; may be null
 * @param retCnt receives how many there are; may be null
 * @param desc   receives the first name, with room for VI_FIND_BUFLEN characters
 */
ViStatus _VI_FUNC viFindRsrc(ViSession sesn, ViConstString expr, ViPFindList vi, ViPUInt32 retCnt, ViChar desc[]);

/** Stores the next name of a find list, in VI_FIND_BUFLEN characters; VI_ERROR_RSRC_NFOUND behind the last. */
ViStatus _VI_FUNC viFindNext(ViFindList vi, ViChar desc[]);

/** Takes a resource string apart without opening it: its VI_INTF_ type and its board number. */
ViStatus _VI_FUNC viParseRsrc(ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum);

/** As viParseRsrc, with the resource class, the full name and the alias, in 256 characters each; each may be null. */
ViStatus _VI_FUNC viParseRsrcEx(ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum,
                                ViChar rsrcClass[], ViChar expandedUnaliasedName[], ViChar aliasIfExists[]);

/**
 * Opens a session to a resource.
 * @param sesn    resource manager session
 * @param name    resource string or alias, letter case is ignored
 * @param mode    VI_NULL, VI_EXCLUSIVE_LOCK or VI_LOAD_CONFIG, ORed
 * @param timeout milliseconds for looking the host's name up, connecting and getting the lock, together; 0 stands for
 *                2000
 * @param vi      receives the session, 0 on failure
 */
ViStatus _VI_FUNC viOpen(ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi);

/** @} */
/** @name Sessions, attributes and locks @{ */

/** Closes a session; a resource manager's session takes all sessions opened through it with it. Any thread. */
ViStatus _VI_FUNC viClose(ViObject vi);

/** Stores the attribute's value in *attrValue, in the attribute's own width (strings: up to 256 characters). */
ViStatus _VI_FUNC viGetAttribute(ViObject vi, ViAttr attrName, void* attrValue);

/** Sets an attribute; the value is reduced to the attribute's own width first. */
ViStatus _VI_FUNC viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrValue);

/** Writes the meaning of a status code to desc, which has room for 256 characters. */
ViStatus _VI_FUNC viStatusDesc(ViObject vi, ViStatus status, ViChar desc[]);

/** Ends the viRead and the viWrite under way on a session, in other threads, with VI_ERROR_ABORT. */
ViStatus _VI_FUNC viTerminate(ViObject vi, ViUInt16 degree, ViJobId jobId);

/**
 * Locks a resource for this session (VPP-4.3 section 3.6). Locks nest; viUnlock takes back one at a time.
 * @param lockType     VI_EXCLUSIVE_LOCK or VI_SHARED_LOCK
 * @param timeout      milliseconds to wait while another session holds a lock that excludes this one
 * @param requestedKey shared locks: the key that sessions share, or null for a new one; at most 255 characters
 * @param accessKey    receives the key of a shared lock, with room for 256 characters; may be null for an exclusive one
 * @return VI_SUCCESS, VI_SUCCESS_NESTED_EXCLUSIVE, VI_SUCCESS_NESTED_SHARED, VI_ERROR_RSRC_LOCKED, VI_ERROR_TMO
 */
ViStatus _VI_FUNC viLock(ViSession vi, ViAccessMode lockType, ViUInt32 timeout, ViConstKeyId requestedKey,
                         ViChar accessKey[]);

/** Takes back the session's last lock; says what it still holds: VI_SUCCESS (nothing) or one of the NESTED codes. */
ViStatus _VI_FUNC viUnlock(ViSession vi);

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

/** Triggers the device (VI_TRIG_PROT_DEFAULT) where its protocol has a message for that. */
ViStatus _VI_FUNC viAssertTrigger(ViSession vi, ViUInt16 protocol);

/** Stores the status byte (IEEE 488.2), in the low 8 bits, by the protocol's own message; no query is sent. */
ViStatus _VI_FUNC viReadSTB(ViSession vi, ViPUInt16 status);

/**
 * Clears the device by its protocol's own message. A serial line: discards what has not been sent, sends a break and
 * discards what has arrived; a socket: discards what has arrived. Waits for a viWrite under way; what arrives during a
 * viRead is left to that.
 */
ViStatus _VI_FUNC viClear(ViSession vi);

/** Flushes the buffers named by mask (VI_READ_BUF, VI_WRITE_BUF, VI_IO_IN_BUF, VI_IO_OUT_BUF) and sizes them. */
ViStatus _VI_FUNC viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 size);

/** Empties the buffers named by mask; with VI_IO_IN_BUF and its discarding form what has arrived is dropped. */
ViStatus _VI_FUNC viFlush(ViSession vi, ViUInt16 mask);

/** Remote and local (VI_GPIB_REN_...), on a device whose protocol has messages for it. */
ViStatus _VI_FUNC viGpibControlREN(ViSession vi, ViUInt16 mode);

/** @} */
/** @name Events: none can be enabled @{ */

/** No event can be enabled: VI_SUCCESS_EVENT_DIS. */
ViStatus _VI_FUNC viDisableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism);

/** No event can be queued: VI_SUCCESS_QUEUE_EMPTY. */
ViStatus _VI_FUNC viDiscardEvents(ViSession vi, ViEventType eventType, ViUInt16 mechanism);

/** @} */
/** @name Not supported: VI_ERROR_NSUP_OPER, from viEnableEvent VI_ERROR_INV_EVENT @{ */

ViStatus _VI_FUNC viEnableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism, ViEventFilter context);
ViStatus _VI_FUNC viWaitOnEvent(ViSession vi, ViEventType inEventType, ViUInt32 timeout, ViPEventType outEventType,
                                ViPEvent outContext);
ViStatus _VI_FUNC viInstallHandler(ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle);
ViStatus _VI_FUNC viUninstallHandler(ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle);
ViStatus _VI_FUNC viReadAsync(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPJobId jobId);
ViStatus _VI_FUNC viReadToFile(ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt);
ViStatus _VI_FUNC viWriteAsync(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPJobId jobId);
ViStatus _VI_FUNC viWriteFromFile(ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt);
ViStatus _VI_FUNC viBufWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);
ViStatus _VI_FUNC viBufRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);
ViStatus _VI_FUNCC viPrintf(ViSession vi, ViConstString writeFmt, ...);
ViStatus _VI_FUNC viVPrintf(ViSession vi, ViConstString writeFmt, ViVAList params);
ViStatus _VI_FUNCC viSPrintf(ViSession vi, ViPBuf buf, ViConstString writeFmt, ...);
ViStatus _VI_FUNC viVSPrintf(ViSession vi, ViPBuf buf, ViConstString writeFmt, ViVAList parms);
ViStatus _VI_FUNCC viScanf(ViSession vi, ViConstString readFmt, ...);
ViStatus _VI_FUNC viVScanf(ViSession vi, ViConstString readFmt, ViVAList params);
ViStatus _VI_FUNCC viSScanf(ViSession vi, ViConstBuf buf, ViConstString readFmt, ...);
ViStatus _VI_FUNC viVSScanf(ViSession vi, ViConstBuf buf, ViConstString readFmt, ViVAList parms);
ViStatus _VI_FUNCC viQueryf(ViSession vi, ViConstString writeFmt, ViConstString readFmt, ...);
ViStatus _VI_FUNC viVQueryf(ViSession vi, ViConstString writeFmt, ViConstString readFmt, ViVAList params);
ViStatus _VI_FUNC viIn8(ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt8 val8);
ViStatus _VI_FUNC viOut8(ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt8 val8);
ViStatus _VI_FUNC viIn16(ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt16 val16);
ViStatus _VI_FUNC viOut16(ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt16 val16);
ViStatus _VI_FUNC viIn32(ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt32 val32);
ViStatus _VI_FUNC viOut32(ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt32 val32);
ViStatus _VI_FUNC viIn64(ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt64 val64);
ViStatus _VI_FUNC viOut64(ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt64 val64);
ViStatus _VI_FUNC viIn8Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt8 val8);
ViStatus _VI_FUNC viOut8Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt8 val8);
ViStatus _VI_FUNC viIn16Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt16 val16);
ViStatus _VI_FUNC viOut16Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt16 val16);
ViStatus _VI_FUNC viIn32Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt32 val32);
ViStatus _VI_FUNC viOut32Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt32 val32);
ViStatus _VI_FUNC viIn64Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt64 val64);
ViStatus _VI_FUNC viOut64Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt64 val64);
ViStatus _VI_FUNC viMoveIn8(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt8 buf8);
ViStatus _VI_FUNC viMoveOut8(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt8 buf8);
ViStatus _VI_FUNC viMoveIn16(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt16 buf16);
ViStatus _VI_FUNC viMoveOut16(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt16 buf16);
ViStatus _VI_FUNC viMoveIn32(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt32 buf32);
ViStatus _VI_FUNC viMoveOut32(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt32 buf32);
ViStatus _VI_FUNC viMoveIn64(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt64 buf64);
ViStatus _VI_FUNC viMoveOut64(ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt64 buf64);
ViStatus _VI_FUNC viMoveIn8Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt8 buf8);
ViStatus _VI_FUNC viMoveOut8Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt8 buf8);
ViStatus _VI_FUNC viMoveIn16Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt16 buf16);
ViStatus _VI_FUNC viMoveOut16Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt16 buf16);
ViStatus _VI_FUNC viMoveIn32Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt32 buf32);
ViStatus _VI_FUNC viMoveOut32Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt32 buf32);
ViStatus _VI_FUNC viMoveIn64Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt64 buf64);
ViStatus _VI_FUNC viMoveOut64Ex(ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt64 buf64);
ViStatus _VI_FUNC viMove(ViSession vi, ViUInt16 srcSpace, ViBusAddress srcOffset, ViUInt16 srcWidth, ViUInt16 destSpace,
                         ViBusAddress destOffset, ViUInt16 destWidth, ViBusSize srcLength);
ViStatus _VI_FUNC viMoveAsync(ViSession vi, ViUInt16 srcSpace, ViBusAddress srcOffset, ViUInt16 srcWidth,
                              ViUInt16 destSpace, ViBusAddress destOffset, ViUInt16 destWidth, ViBusSize srcLength,
                              ViPJobId jobId);
ViStatus _VI_FUNC viMoveEx(ViSession vi, ViUInt16 srcSpace, ViBusAddress64 srcOffset, ViUInt16 srcWidth,
                           ViUInt16 destSpace, ViBusAddress64 destOffset, ViUInt16 destWidth, ViBusSize srcLength);
ViStatus _VI_FUNC viMoveAsyncEx(ViSession vi, ViUInt16 srcSpace, ViBusAddress64 srcOffset, ViUInt16 srcWidth,
                                ViUInt16 destSpace, ViBusAddress64 destOffset, ViUInt16 destWidth, ViBusSize srcLength,
                                ViPJobId jobId);
ViStatus _VI_FUNC viMapAddress(ViSession vi, ViUInt16 mapSpace, ViBusAddress mapOffset, ViBusSize mapSize,
                               ViBoolean access, ViAddr suggested, ViPAddr address);
ViStatus _VI_FUNC viUnmapAddress(ViSession vi);
ViStatus _VI_FUNC viMapAddressEx(ViSession vi, ViUInt16 mapSpace, ViBusAddress64 mapOffset, ViBusSize mapSize,
                                 ViBoolean access, ViAddr suggested, ViPAddr address);
void _VI_FUNC viPeek8(ViSession vi, ViAddr address, ViPUInt8 val8);
void _VI_FUNC viPoke8(ViSession vi, ViAddr address, ViUInt8 val8);
void _VI_FUNC viPeek16(ViSession vi, ViAddr address, ViPUInt16 val16);
void _VI_FUNC viPoke16(ViSession vi, ViAddr address, ViUInt16 val16);
void _VI_FUNC viPeek32(ViSession vi, ViAddr address, ViPUInt32 val32);
void _VI_FUNC viPoke32(ViSession vi, ViAddr address, ViUInt32 val32);
void _VI_FUNC viPeek64(ViSession vi, ViAddr address, ViPUInt64 val64);
void _VI_FUNC viPoke64(ViSession vi, ViAddr address, ViUInt64 val64);
ViStatus _VI_FUNC viMemAlloc(ViSession vi, ViBusSize size, ViPBusAddress offset);
ViStatus _VI_FUNC viMemFree(ViSession vi, ViBusAddress offset);
ViStatus _VI_FUNC viMemAllocEx(ViSession vi, ViBusSize size, ViPBusAddress64 offset);
ViStatus _VI_FUNC viMemFreeEx(ViSession vi, ViBusAddress64 offset);
ViStatus _VI_FUNC viGpibControlATN(ViSession vi, ViUInt16 mode);
ViStatus _VI_FUNC viGpibSendIFC(ViSession vi);
ViStatus _VI_FUNC viGpibCommand(ViSession vi, ViConstBuf cmd, ViUInt32 cnt, ViPUInt32 retCnt);
ViStatus _VI_FUNC viGpibPassControl(ViSession vi, ViUInt16 primAddr, ViUInt16 secAddr);
ViStatus _VI_FUNC viVxiCommandQuery(ViSession vi, ViUInt16 mode, ViUInt32 cmd, ViPUInt32 response);
ViStatus _VI_FUNC viAssertUtilSignal(ViSession vi, ViUInt16 line);
ViStatus _VI_FUNC viAssertIntrSignal(ViSession vi, ViInt16 mode, ViUInt32 statusID);
ViStatus _VI_FUNC viMapTrigger(ViSession vi, ViInt16 trigSrc, ViInt16 trigDest, ViUInt16 mode);
ViStatus _VI_FUNC viUnmapTrigger(ViSession vi, ViInt16 trigSrc, ViInt16 trigDest);
ViStatus _VI_FUNC viUsbControlOut(ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue,
                                  ViUInt16 wIndex, ViUInt16 wLength, ViConstBuf buf);
ViStatus _VI_FUNC viUsbControlIn(ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue,
                                 ViUInt16 wIndex, ViUInt16 wLength, ViPBuf buf, ViPUInt16 retCnt);
ViStatus _VI_FUNC viPxiReserveTriggers(ViSession vi, ViInt16 cnt, ViAInt16 trigBuses, ViAInt16 trigLines,
                                       ViPInt16 failureIndex);
/** @} */

/** @name Attribute numbers; bit 31 marks a string @{ */
#define VI_ATTR_RSRC_CLASS ((ViAttr)0xBFFF0001)
#define VI_ATTR_RSRC_NAME ((ViAttr)0xBFFF0002)
#define VI_ATTR_RSRC_IMPL_VERSION ((ViAttr)0x3FFF0003)
#define VI_ATTR_RSRC_LOCK_STATE ((ViAttr)0x3FFF0004)
#define VI_ATTR_MAX_QUEUE_LENGTH ((ViAttr)0x3FFF0005)
#define VI_ATTR_USER_DATA_32 ((ViAttr)0x3FFF0007)
#define VI_ATTR_FDC_CHNL ((ViAttr)0x3FFF000D)
#define VI_ATTR_FDC_MODE ((ViAttr)0x3FFF000F)
#define VI_ATTR_FDC_GEN_SIGNAL_EN ((ViAttr)0x3FFF0011)
#define VI_ATTR_FDC_USE_PAIR ((ViAttr)0x3FFF0013)
#define VI_ATTR_SEND_END_EN ((ViAttr)0x3FFF0016)
#define VI_ATTR_TERMCHAR ((ViAttr)0x3FFF0018)
#define VI_ATTR_TMO_VALUE ((ViAttr)0x3FFF001A)
#define VI_ATTR_GPIB_READDR_EN ((ViAttr)0x3FFF001B)
#define VI_ATTR_IO_PROT ((ViAttr)0x3FFF001C)
#define VI_ATTR_DMA_ALLOW_EN ((ViAttr)0x3FFF001E)
#define VI_ATTR_ASRL_BAUD ((ViAttr)0x3FFF0021)
#define VI_ATTR_ASRL_DATA_BITS ((ViAttr)0x3FFF0022)
#define VI_ATTR_ASRL_PARITY ((ViAttr)0x3FFF0023)
#define VI_ATTR_ASRL_STOP_BITS ((ViAttr)0x3FFF0024)
#define VI_ATTR_ASRL_FLOW_CNTRL ((ViAttr)0x3FFF0025)
#define VI_ATTR_RD_BUF_OPER_MODE ((ViAttr)0x3FFF002A)
#define VI_ATTR_RD_BUF_SIZE ((ViAttr)0x3FFF002B)
#define VI_ATTR_WR_BUF_OPER_MODE ((ViAttr)0x3FFF002D)
#define VI_ATTR_WR_BUF_SIZE ((ViAttr)0x3FFF002E)
#define VI_ATTR_SUPPRESS_END_EN ((ViAttr)0x3FFF0036)
#define VI_ATTR_TERMCHAR_EN ((ViAttr)0x3FFF0038)
#define VI_ATTR_DEST_ACCESS_PRIV ((ViAttr)0x3FFF0039)
#define VI_ATTR_DEST_BYTE_ORDER ((ViAttr)0x3FFF003A)
#define VI_ATTR_SRC_ACCESS_PRIV ((ViAttr)0x3FFF003C)
#define VI_ATTR_SRC_BYTE_ORDER ((ViAttr)0x3FFF003D)
#define VI_ATTR_SRC_INCREMENT ((ViAttr)0x3FFF0040)
#define VI_ATTR_DEST_INCREMENT ((ViAttr)0x3FFF0041)
#define VI_ATTR_WIN_ACCESS_PRIV ((ViAttr)0x3FFF0045)
#define VI_ATTR_WIN_BYTE_ORDER ((ViAttr)0x3FFF0047)
#define VI_ATTR_GPIB_ATN_STATE ((ViAttr)0x3FFF0057)
#define VI_ATTR_GPIB_ADDR_STATE ((ViAttr)0x3FFF005C)
#define VI_ATTR_GPIB_CIC_STATE ((ViAttr)0x3FFF005E)
#define VI_ATTR_GPIB_NDAC_STATE ((ViAttr)0x3FFF0062)
#define VI_ATTR_GPIB_SRQ_STATE ((ViAttr)0x3FFF0067)
#define VI_ATTR_GPIB_SYS_CNTRL_STATE ((ViAttr)0x3FFF0068)
#define VI_ATTR_GPIB_HS488_CBL_LEN ((ViAttr)0x3FFF0069)
#define VI_ATTR_CMDR_LA ((ViAttr)0x3FFF006B)
#define VI_ATTR_VXI_DEV_CLASS ((ViAttr)0x3FFF006C)
#define VI_ATTR_MAINFRAME_LA ((ViAttr)0x3FFF0070)
#define VI_ATTR_MANF_NAME ((ViAttr)0xBFFF0072)
#define VI_ATTR_MODEL_NAME ((ViAttr)0xBFFF0077)
#define VI_ATTR_VXI_VME_INTR_STATUS ((ViAttr)0x3FFF008B)
#define VI_ATTR_VXI_TRIG_STATUS ((ViAttr)0x3FFF008D)
#define VI_ATTR_VXI_VME_SYSFAIL_STATE ((ViAttr)0x3FFF0094)
#define VI_ATTR_WIN_BASE_ADDR_32 ((ViAttr)0x3FFF0098)
#define VI_ATTR_WIN_SIZE_32 ((ViAttr)0x3FFF009A)
#define VI_ATTR_ASRL_AVAIL_NUM ((ViAttr)0x3FFF00AC)
#define VI_ATTR_MEM_BASE_32 ((ViAttr)0x3FFF00AD)
#define VI_ATTR_ASRL_CTS_STATE ((ViAttr)0x3FFF00AE)
#define VI_ATTR_ASRL_DCD_STATE ((ViAttr)0x3FFF00AF)
#define VI_ATTR_ASRL_DSR_STATE ((ViAttr)0x3FFF00B1)
#define VI_ATTR_ASRL_DTR_STATE ((ViAttr)0x3FFF00B2)
#define VI_ATTR_ASRL_END_IN ((ViAttr)0x3FFF00B3)
#define VI_ATTR_ASRL_END_OUT ((ViAttr)0x3FFF00B4)
#define VI_ATTR_ASRL_REPLACE_CHAR ((ViAttr)0x3FFF00BE)
#define VI_ATTR_ASRL_RI_STATE ((ViAttr)0x3FFF00BF)
#define VI_ATTR_ASRL_RTS_STATE ((ViAttr)0x3FFF00C0)
#define VI_ATTR_ASRL_XON_CHAR ((ViAttr)0x3FFF00C1)
#define VI_ATTR_ASRL_XOFF_CHAR ((ViAttr)0x3FFF00C2)
#define VI_ATTR_WIN_ACCESS ((ViAttr)0x3FFF00C3)
#define VI_ATTR_RM_SESSION ((ViAttr)0x3FFF00C4)
#define VI_ATTR_VXI_LA ((ViAttr)0x3FFF00D5)
#define VI_ATTR_MANF_ID ((ViAttr)0x3FFF00D9)
#define VI_ATTR_MEM_SIZE_32 ((ViAttr)0x3FFF00DD)
#define VI_ATTR_MEM_SPACE ((ViAttr)0x3FFF00DE)
#define VI_ATTR_MODEL_CODE ((ViAttr)0x3FFF00DF)
#define VI_ATTR_SLOT ((ViAttr)0x3FFF00E8)
#define VI_ATTR_INTF_INST_NAME ((ViAttr)0xBFFF00E9)
#define VI_ATTR_IMMEDIATE_SERV ((ViAttr)0x3FFF0100)
#define VI_ATTR_INTF_PARENT_NUM ((ViAttr)0x3FFF0101)
#define VI_ATTR_RSRC_SPEC_VERSION ((ViAttr)0x3FFF0170)
#define VI_ATTR_INTF_TYPE ((ViAttr)0x3FFF0171)
#define VI_ATTR_GPIB_PRIMARY_ADDR ((ViAttr)0x3FFF0172)
#define VI_ATTR_GPIB_SECONDARY_ADDR ((ViAttr)0x3FFF0173)
#define VI_ATTR_RSRC_MANF_NAME ((ViAttr)0xBFFF0174)
#define VI_ATTR_RSRC_MANF_ID ((ViAttr)0x3FFF0175)
#define VI_ATTR_INTF_NUM ((ViAttr)0x3FFF0176)
#define VI_ATTR_TRIG_ID ((ViAttr)0x3FFF0177)
#define VI_ATTR_GPIB_REN_STATE ((ViAttr)0x3FFF0181)
#define VI_ATTR_GPIB_UNADDR_EN ((ViAttr)0x3FFF0184)
#define VI_ATTR_DEV_STATUS_BYTE ((ViAttr)0x3FFF0189)
#define VI_ATTR_FILE_APPEND_EN ((ViAttr)0x3FFF0192)
#define VI_ATTR_VXI_TRIG_SUPPORT ((ViAttr)0x3FFF0194)
#define VI_ATTR_TCPIP_ADDR ((ViAttr)0xBFFF0195)
#define VI_ATTR_TCPIP_HOSTNAME ((ViAttr)0xBFFF0196)
#define VI_ATTR_TCPIP_PORT ((ViAttr)0x3FFF0197)
#define VI_ATTR_TCPIP_DEVICE_NAME ((ViAttr)0xBFFF0199)
#define VI_ATTR_TCPIP_NODELAY ((ViAttr)0x3FFF019A)
#define VI_ATTR_TCPIP_KEEPALIVE ((ViAttr)0x3FFF019B)
#define VI_ATTR_4882_COMPLIANT ((ViAttr)0x3FFF019F)
#define VI_ATTR_USB_SERIAL_NUM ((ViAttr)0xBFFF01A0)
#define VI_ATTR_USB_INTFC_NUM ((ViAttr)0x3FFF01A1)
#define VI_ATTR_USB_PROTOCOL ((ViAttr)0x3FFF01A7)
#define VI_ATTR_USB_MAX_INTR_SIZE ((ViAttr)0x3FFF01AF)
#define VI_ATTR_PXI_DEV_NUM ((ViAttr)0x3FFF0201)
#define VI_ATTR_PXI_FUNC_NUM ((ViAttr)0x3FFF0202)
#define VI_ATTR_PXI_BUS_NUM ((ViAttr)0x3FFF0205)
#define VI_ATTR_PXI_CHASSIS ((ViAttr)0x3FFF0206)
#define VI_ATTR_PXI_SLOTPATH ((ViAttr)0xBFFF0207)
#define VI_ATTR_PXI_SLOT_LBUS_LEFT ((ViAttr)0x3FFF0208)
#define VI_ATTR_PXI_SLOT_LBUS_RIGHT ((ViAttr)0x3FFF0209)
#define VI_ATTR_PXI_TRIG_BUS ((ViAttr)0x3FFF020A)
#define VI_ATTR_PXI_STAR_TRIG_BUS ((ViAttr)0x3FFF020B)
#define VI_ATTR_PXI_STAR_TRIG_LINE ((ViAttr)0x3FFF020C)
#define VI_ATTR_PXI_SRC_TRIG_BUS ((ViAttr)0x3FFF020D)
#define VI_ATTR_PXI_DEST_TRIG_BUS ((ViAttr)0x3FFF020E)
#define VI_ATTR_PXI_MEM_TYPE_BAR0 ((ViAttr)0x3FFF0211)
#define VI_ATTR_PXI_MEM_TYPE_BAR1 ((ViAttr)0x3FFF0212)
#define VI_ATTR_PXI_MEM_TYPE_BAR2 ((ViAttr)0x3FFF0213)
#define VI_ATTR_PXI_MEM_TYPE_BAR3 ((ViAttr)0x3FFF0214)
#define VI_ATTR_PXI_MEM_TYPE_BAR4 ((ViAttr)0x3FFF0215)
#define VI_ATTR_PXI_MEM_TYPE_BAR5 ((ViAttr)0x3FFF0216)
#define VI_ATTR_PXI_MEM_BASE_BAR0_32 ((ViAttr)0x3FFF0221)
#define VI_ATTR_PXI_MEM_BASE_BAR1_32 ((ViAttr)0x3FFF0222)
#define VI_ATTR_PXI_MEM_BASE_BAR2_32 ((ViAttr)0x3FFF0223)
#define VI_ATTR_PXI_MEM_BASE_BAR3_32 ((ViAttr)0x3FFF0224)
#define VI_ATTR_PXI_MEM_BASE_BAR4_32 ((ViAttr)0x3FFF0225)
#define VI_ATTR_PXI_MEM_BASE_BAR5_32 ((ViAttr)0x3FFF0226)
#define VI_ATTR_PXI_MEM_BASE_BAR0_64 ((ViAttr)0x3FFF0228)
#define VI_ATTR_PXI_MEM_BASE_BAR1_64 ((ViAttr)0x3FFF0229)
#define VI_ATTR_PXI_MEM_BASE_BAR2_64 ((ViAttr)0x3FFF022A)
#define VI_ATTR_PXI_MEM_BASE_BAR3_64 ((ViAttr)0x3FFF022B)
#define VI_ATTR_PXI_MEM_BASE_BAR4_64 ((ViAttr)0x3FFF022C)
#define VI_ATTR_PXI_MEM_BASE_BAR5_64 ((ViAttr)0x3FFF022D)
#define VI_ATTR_PXI_MEM_SIZE_BAR0_32 ((ViAttr)0x3FFF0231)
#define VI_ATTR_PXI_MEM_SIZE_BAR1_32 ((ViAttr)0x3FFF0232)
#define VI_ATTR_PXI_MEM_SIZE_BAR2_32 ((ViAttr)0x3FFF0233)
#define VI_ATTR_PXI_MEM_SIZE_BAR3_32 ((ViAttr)0x3FFF0234)
#define VI_ATTR_PXI_MEM_SIZE_BAR4_32 ((ViAttr)0x3FFF0235)
#define VI_ATTR_PXI_MEM_SIZE_BAR5_32 ((ViAttr)0x3FFF0236)
#define VI_ATTR_PXI_MEM_SIZE_BAR0_64 ((ViAttr)0x3FFF0238)
#define VI_ATTR_PXI_MEM_SIZE_BAR1_64 ((ViAttr)0x3FFF0239)
#define VI_ATTR_PXI_MEM_SIZE_BAR2_64 ((ViAttr)0x3FFF023A)
#define VI_ATTR_PXI_MEM_SIZE_BAR3_64 ((ViAttr)0x3FFF023B)
#define VI_ATTR_PXI_MEM_SIZE_BAR4_64 ((ViAttr)0x3FFF023C)
#define VI_ATTR_PXI_MEM_SIZE_BAR5_64 ((ViAttr)0x3FFF023D)
#define VI_ATTR_PXI_IS_EXPRESS ((ViAttr)0x3FFF0240)
#define VI_ATTR_PXI_SLOT_LWIDTH ((ViAttr)0x3FFF0241)
#define VI_ATTR_PXI_MAX_LWIDTH ((ViAttr)0x3FFF0242)
#define VI_ATTR_PXI_ACTUAL_LWIDTH ((ViAttr)0x3FFF0243)
#define VI_ATTR_PXI_DSTAR_BUS ((ViAttr)0x3FFF0244)
#define VI_ATTR_PXI_DSTAR_SET ((ViAttr)0x3FFF0245)
#define VI_ATTR_PXI_ALLOW_WRITE_COMBINE ((ViAttr)0x3FFF0246)
#define VI_ATTR_PXI_SLOT_WIDTH ((ViAttr)0x3FFF0247)
#define VI_ATTR_PXI_SLOT_OFFSET ((ViAttr)0x3FFF0248)
#define VI_ATTR_TCPIP_SERVER_CERT_ISSUER_NAME ((ViAttr)0xBFFF0270)
#define VI_ATTR_TCPIP_SERVER_CERT_SUBJECT_NAME ((ViAttr)0xBFFF0271)
#define VI_ATTR_TCPIP_SERVER_CERT_EXPIRATION_DATE ((ViAttr)0xBFFF0272)
#define VI_ATTR_TCPIP_SERVER_CERT_IS_PERPETUAL ((ViAttr)0x3FFF0273)
#define VI_ATTR_TCPIP_SASL_MECHANISM ((ViAttr)0xBFFF0274)
#define VI_ATTR_TCPIP_TLS_CIPHER_SUITE ((ViAttr)0xBFFF0275)
#define VI_ATTR_TCPIP_SERVER_CERT ((ViAttr)0xBFFF0276)
#define VI_ATTR_TCPIP_SERVER_CERT_SIZE ((ViAttr)0x3FFF0277)
#define VI_ATTR_TCPIP_HISLIP_OVERLAP_EN ((ViAttr)0x3FFF0300)
#define VI_ATTR_TCPIP_HISLIP_VERSION ((ViAttr)0x3FFF0301)
#define VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB ((ViAttr)0x3FFF0302)
#define VI_ATTR_TCPIP_IS_HISLIP ((ViAttr)0x3FFF0303)
#define VI_ATTR_TCPIP_HISLIP_ENCRYPTION_EN ((ViAttr)0x3FFF0304)
#define VI_ATTR_JOB_ID ((ViAttr)0x3FFF4006)
#define VI_ATTR_EVENT_TYPE ((ViAttr)0x3FFF4010)
#define VI_ATTR_SIGP_STATUS_ID ((ViAttr)0x3FFF4011)
#define VI_ATTR_RECV_TRIG_ID ((ViAttr)0x3FFF4012)
#define VI_ATTR_INTR_STATUS_ID ((ViAttr)0x3FFF4023)
#define VI_ATTR_STATUS ((ViAttr)0x3FFF4025)
#define VI_ATTR_RET_COUNT_32 ((ViAttr)0x3FFF4026)
#define VI_ATTR_BUFFER ((ViAttr)0x3FFF4027)
#define VI_ATTR_RECV_INTR_LEVEL ((ViAttr)0x3FFF4041)
#define VI_ATTR_OPER_NAME ((ViAttr)0xBFFF4042)
#define VI_ATTR_GPIB_RECV_CIC_STATE ((ViAttr)0x3FFF4193)
#define VI_ATTR_RECV_TCPIP_ADDR ((ViAttr)0xBFFF4198)
#define VI_ATTR_USB_RECV_INTR_SIZE ((ViAttr)0x3FFF41B0)
#define VI_ATTR_USB_RECV_INTR_DATA ((ViAttr)0xBFFF41B1)
#define VI_ATTR_PXI_RECV_INTR_SEQ ((ViAttr)0x3FFF4240)
#define VI_ATTR_PXI_RECV_INTR_DATA ((ViAttr)0x3FFF4241)
#define VI_ATTR_USER_DATA_64 ((ViAttr)0x3FFF000A)
#define VI_ATTR_RET_COUNT_64 ((ViAttr)0x3FFF4028)
#define VI_ATTR_WIN_BASE_ADDR_64 ((ViAttr)0x3FFF009B)
#define VI_ATTR_WIN_SIZE_64 ((ViAttr)0x3FFF009C)
#define VI_ATTR_MEM_BASE_64 ((ViAttr)0x3FFF00D0)
#define VI_ATTR_MEM_SIZE_64 ((ViAttr)0x3FFF00D1)
/** @} */

/** @name Attributes as wide as the host @{ */
#if defined(_VISA_ENV_IS_64_BIT)
#define VI_ATTR_USER_DATA VI_ATTR_USER_DATA_64
#define VI_ATTR_RET_COUNT VI_ATTR_RET_COUNT_64
#define VI_ATTR_WIN_BASE_ADDR VI_ATTR_WIN_BASE_ADDR_64
#define VI_ATTR_WIN_SIZE VI_ATTR_WIN_SIZE_64
#define VI_ATTR_MEM_BASE VI_ATTR_MEM_BASE_64
#define VI_ATTR_MEM_SIZE VI_ATTR_MEM_SIZE_64
#define VI_ATTR_PXI_MEM_BASE_BAR0 VI_ATTR_PXI_MEM_BASE_BAR0_64
#define VI_ATTR_PXI_MEM_BASE_BAR1 VI_ATTR_PXI_MEM_BASE_BAR1_64
#define VI_ATTR_PXI_MEM_BASE_BAR2 VI_ATTR_PXI_MEM_BASE_BAR2_64
#define VI_ATTR_PXI_MEM_BASE_BAR3 VI_ATTR_PXI_MEM_BASE_BAR3_64
#define VI_ATTR_PXI_MEM_BASE_BAR4 VI_ATTR_PXI_MEM_BASE_BAR4_64
#define VI_ATTR_PXI_MEM_BASE_BAR5 VI_ATTR_PXI_MEM_BASE_BAR5_64
#define VI_ATTR_PXI_MEM_SIZE_BAR0 VI_ATTR_PXI_MEM_SIZE_BAR0_64
#define VI_ATTR_PXI_MEM_SIZE_BAR1 VI_ATTR_PXI_MEM_SIZE_BAR1_64
#define VI_ATTR_PXI_MEM_SIZE_BAR2 VI_ATTR_PXI_MEM_SIZE_BAR2_64
#define VI_ATTR_PXI_MEM_SIZE_BAR3 VI_ATTR_PXI_MEM_SIZE_BAR3_64
#define VI_ATTR_PXI_MEM_SIZE_BAR4 VI_ATTR_PXI_MEM_SIZE_BAR4_64
#define VI_ATTR_PXI_MEM_SIZE_BAR5 VI_ATTR_PXI_MEM_SIZE_BAR5_64
#else
#define VI_ATTR_USER_DATA VI_ATTR_USER_DATA_32
#define VI_ATTR_RET_COUNT VI_ATTR_RET_COUNT_32
#define VI_ATTR_WIN_BASE_ADDR VI_ATTR_WIN_BASE_ADDR_32
#define VI_ATTR_WIN_SIZE VI_ATTR_WIN_SIZE_32
#define VI_ATTR_MEM_BASE VI_ATTR_MEM_BASE_32
#define VI_ATTR_MEM_SIZE VI_ATTR_MEM_SIZE_32
#define VI_ATTR_PXI_MEM_BASE_BAR0 VI_ATTR_PXI_MEM_BASE_BAR0_32
#define VI_ATTR_PXI_MEM_BASE_BAR1 VI_ATTR_PXI_MEM_BASE_BAR1_32
#define VI_ATTR_PXI_MEM_BASE_BAR2 VI_ATTR_PXI_MEM_BASE_BAR2_32
#define VI_ATTR_PXI_MEM_BASE_BAR3 VI_ATTR_PXI_MEM_BASE_BAR3_32
#define VI_ATTR_PXI_MEM_BASE_BAR4 VI_ATTR_PXI_MEM_BASE_BAR4_32
#define VI_ATTR_PXI_MEM_BASE_BAR5 VI_ATTR_PXI_MEM_BASE_BAR5_32
#define VI_ATTR_PXI_MEM_SIZE_BAR0 VI_ATTR_PXI_MEM_SIZE_BAR0_32
#define VI_ATTR_PXI_MEM_SIZE_BAR1 VI_ATTR_PXI_MEM_SIZE_BAR1_32
#define VI_ATTR_PXI_MEM_SIZE_BAR2 VI_ATTR_PXI_MEM_SIZE_BAR2_32
#define VI_ATTR_PXI_MEM_SIZE_BAR3 VI_ATTR_PXI_MEM_SIZE_BAR3_32
#define VI_ATTR_PXI_MEM_SIZE_BAR4 VI_ATTR_PXI_MEM_SIZE_BAR4_32
#define VI_ATTR_PXI_MEM_SIZE_BAR5 VI_ATTR_PXI_MEM_SIZE_BAR5_32
#endif
/** @} */

#ifdef KVVISA_EXTENSIONS
/** @name Attributes of this library only, for who defines KVVISA_EXTENSIONS @{ */

/** ViBoolean, VI_TRUE at first: whether viWrite discards what has arrived when the last viRead failed. */
#define VI_ATTR_KVX_DISCARD_STALE_INPUT ((ViAttr)0x3FFF8280)
/** @} */
#endif

/** @name Event types @{ */
#define VI_EVENT_IO_COMPLETION ((ViEventType)0x3FFF2009)
#define VI_EVENT_TRIG ((ViEventType)0xBFFF200A)
#define VI_EVENT_SERVICE_REQ ((ViEventType)0x3FFF200B)
#define VI_EVENT_CLEAR ((ViEventType)0x3FFF200D)
#define VI_EVENT_EXCEPTION ((ViEventType)0xBFFF200E)
#define VI_EVENT_GPIB_CIC ((ViEventType)0x3FFF2012)
#define VI_EVENT_GPIB_TALK ((ViEventType)0x3FFF2013)
#define VI_EVENT_GPIB_LISTEN ((ViEventType)0x3FFF2014)
#define VI_EVENT_VXI_VME_SYSFAIL ((ViEventType)0x3FFF201D)
#define VI_EVENT_VXI_VME_SYSRESET ((ViEventType)0x3FFF201E)
#define VI_EVENT_VXI_SIGP ((ViEventType)0x3FFF2020)
#define VI_EVENT_VXI_VME_INTR ((ViEventType)0xBFFF2021)
#define VI_EVENT_PXI_INTR ((ViEventType)0x3FFF2022)
#define VI_EVENT_TCPIP_CONNECT ((ViEventType)0x3FFF2036)
#define VI_EVENT_USB_INTR ((ViEventType)0x3FFF2037)
#define VI_ALL_ENABLED_EVENTS ((ViEventType)0x3FFF7FFF)
/** @} */

/** @name Completion codes and warnings @{ */
#define VI_SUCCESS_EVENT_EN ((ViStatus)0x3FFF0002)
#define VI_SUCCESS_EVENT_DIS ((ViStatus)0x3FFF0003)
#define VI_SUCCESS_QUEUE_EMPTY ((ViStatus)0x3FFF0004)
#define VI_SUCCESS_TERM_CHAR ((ViStatus)0x3FFF0005)
#define VI_SUCCESS_MAX_CNT ((ViStatus)0x3FFF0006)
#define VI_SUCCESS_DEV_NPRESENT ((ViStatus)0x3FFF007D)
#define VI_SUCCESS_TRIG_MAPPED ((ViStatus)0x3FFF007E)
#define VI_SUCCESS_QUEUE_NEMPTY ((ViStatus)0x3FFF0080)
#define VI_SUCCESS_NCHAIN ((ViStatus)0x3FFF0098)
#define VI_SUCCESS_NESTED_SHARED ((ViStatus)0x3FFF0099)
#define VI_SUCCESS_NESTED_EXCLUSIVE ((ViStatus)0x3FFF009A)
#define VI_SUCCESS_SYNC ((ViStatus)0x3FFF009B)
#define VI_WARN_QUEUE_OVERFLOW ((ViStatus)0x3FFF000C)
#define VI_WARN_CONFIG_NLOADED ((ViStatus)0x3FFF0077)
#define VI_WARN_NULL_OBJECT ((ViStatus)0x3FFF0082)
#define VI_WARN_NSUP_ATTR_STATE ((ViStatus)0x3FFF0084)
#define VI_WARN_UNKNOWN_STATUS ((ViStatus)0x3FFF0085)
#define VI_WARN_NSUP_BUF ((ViStatus)0x3FFF0088)
#define VI_WARN_EXT_FUNC_NIMPL ((ViStatus)0x3FFF00A9)
#define VI_WARN_SERVER_CERT_UNTRUSTED ((ViStatus)0x3FFF00F0)
#define VI_WARN_SERVER_CERT_INV_SUBJECT ((ViStatus)0x3FFF00F1)
/** @} */

/** @name Errors @{ */
#define VI_ERROR_SYSTEM_ERROR ((ViStatus)0xBFFF0000)
#define VI_ERROR_INV_OBJECT ((ViStatus)0xBFFF000E)
#define VI_ERROR_RSRC_LOCKED ((ViStatus)0xBFFF000F)
#define VI_ERROR_INV_EXPR ((ViStatus)0xBFFF0010)
#define VI_ERROR_RSRC_NFOUND ((ViStatus)0xBFFF0011)
#define VI_ERROR_INV_RSRC_NAME ((ViStatus)0xBFFF0012)
#define VI_ERROR_INV_ACC_MODE ((ViStatus)0xBFFF0013)
#define VI_ERROR_TMO ((ViStatus)0xBFFF0015)
#define VI_ERROR_CLOSING_FAILED ((ViStatus)0xBFFF0016)
#define VI_ERROR_INV_DEGREE ((ViStatus)0xBFFF001B)
#define VI_ERROR_INV_JOB_ID ((ViStatus)0xBFFF001C)
#define VI_ERROR_NSUP_ATTR ((ViStatus)0xBFFF001D)
#define VI_ERROR_NSUP_ATTR_STATE ((ViStatus)0xBFFF001E)
#define VI_ERROR_ATTR_READONLY ((ViStatus)0xBFFF001F)
#define VI_ERROR_INV_LOCK_TYPE ((ViStatus)0xBFFF0020)
#define VI_ERROR_INV_ACCESS_KEY ((ViStatus)0xBFFF0021)
#define VI_ERROR_INV_EVENT ((ViStatus)0xBFFF0026)
#define VI_ERROR_INV_MECH ((ViStatus)0xBFFF0027)
#define VI_ERROR_HNDLR_NINSTALLED ((ViStatus)0xBFFF0028)
#define VI_ERROR_INV_HNDLR_REF ((ViStatus)0xBFFF0029)
#define VI_ERROR_INV_CONTEXT ((ViStatus)0xBFFF002A)
#define VI_ERROR_NENABLED ((ViStatus)0xBFFF002F)
#define VI_ERROR_ABORT ((ViStatus)0xBFFF0030)
#define VI_ERROR_RAW_WR_PROT_VIOL ((ViStatus)0xBFFF0034)
#define VI_ERROR_RAW_RD_PROT_VIOL ((ViStatus)0xBFFF0035)
#define VI_ERROR_OUTP_PROT_VIOL ((ViStatus)0xBFFF0036)
#define VI_ERROR_INP_PROT_VIOL ((ViStatus)0xBFFF0037)
#define VI_ERROR_BERR ((ViStatus)0xBFFF0038)
#define VI_ERROR_IN_PROGRESS ((ViStatus)0xBFFF0039)
#define VI_ERROR_INV_SETUP ((ViStatus)0xBFFF003A)
#define VI_ERROR_QUEUE_ERROR ((ViStatus)0xBFFF003B)
#define VI_ERROR_ALLOC ((ViStatus)0xBFFF003C)
#define VI_ERROR_INV_MASK ((ViStatus)0xBFFF003D)
#define VI_ERROR_IO ((ViStatus)0xBFFF003E)
#define VI_ERROR_INV_FMT ((ViStatus)0xBFFF003F)
#define VI_ERROR_NSUP_FMT ((ViStatus)0xBFFF0041)
#define VI_ERROR_LINE_IN_USE ((ViStatus)0xBFFF0042)
#define VI_ERROR_LINE_NRESERVED ((ViStatus)0xBFFF0043)
#define VI_ERROR_NSUP_MODE ((ViStatus)0xBFFF0046)
#define VI_ERROR_SRQ_NOCCURRED ((ViStatus)0xBFFF004A)
#define VI_ERROR_INV_SPACE ((ViStatus)0xBFFF004E)
#define VI_ERROR_INV_OFFSET ((ViStatus)0xBFFF0051)
#define VI_ERROR_INV_WIDTH ((ViStatus)0xBFFF0052)
#define VI_ERROR_NSUP_OFFSET ((ViStatus)0xBFFF0054)
#define VI_ERROR_NSUP_VAR_WIDTH ((ViStatus)0xBFFF0055)
#define VI_ERROR_WINDOW_NMAPPED ((ViStatus)0xBFFF0057)
#define VI_ERROR_RESP_PENDING ((ViStatus)0xBFFF0059)
#define VI_ERROR_NLISTENERS ((ViStatus)0xBFFF005F)
#define VI_ERROR_NCIC ((ViStatus)0xBFFF0060)
#define VI_ERROR_NSYS_CNTLR ((ViStatus)0xBFFF0061)
#define VI_ERROR_NSUP_OPER ((ViStatus)0xBFFF0067)
#define VI_ERROR_INTR_PENDING ((ViStatus)0xBFFF0068)
#define VI_ERROR_ASRL_PARITY ((ViStatus)0xBFFF006A)
#define VI_ERROR_ASRL_FRAMING ((ViStatus)0xBFFF006B)
#define VI_ERROR_ASRL_OVERRUN ((ViStatus)0xBFFF006C)
#define VI_ERROR_TRIG_NMAPPED ((ViStatus)0xBFFF006E)
#define VI_ERROR_NSUP_ALIGN_OFFSET ((ViStatus)0xBFFF0070)
#define VI_ERROR_USER_BUF ((ViStatus)0xBFFF0071)
#define VI_ERROR_RSRC_BUSY ((ViStatus)0xBFFF0072)
#define VI_ERROR_NSUP_WIDTH ((ViStatus)0xBFFF0076)
#define VI_ERROR_INV_PARAMETER ((ViStatus)0xBFFF0078)
#define VI_ERROR_INV_PROT ((ViStatus)0xBFFF0079)
#define VI_ERROR_INV_SIZE ((ViStatus)0xBFFF007B)
#define VI_ERROR_WINDOW_MAPPED ((ViStatus)0xBFFF0080)
#define VI_ERROR_NIMPL_OPER ((ViStatus)0xBFFF0081)
#define VI_ERROR_INV_LENGTH ((ViStatus)0xBFFF0083)
#define VI_ERROR_INV_MODE ((ViStatus)0xBFFF0091)
#define VI_ERROR_SESN_NLOCKED ((ViStatus)0xBFFF009C)
#define VI_ERROR_MEM_NSHARED ((ViStatus)0xBFFF009D)
#define VI_ERROR_LIBRARY_NFOUND ((ViStatus)0xBFFF009E)
#define VI_ERROR_NSUP_INTR ((ViStatus)0xBFFF009F)
#define VI_ERROR_INV_LINE ((ViStatus)0xBFFF00A0)
#define VI_ERROR_FILE_ACCESS ((ViStatus)0xBFFF00A1)
#define VI_ERROR_FILE_IO ((ViStatus)0xBFFF00A2)
#define VI_ERROR_NSUP_LINE ((ViStatus)0xBFFF00A3)
#define VI_ERROR_NSUP_MECH ((ViStatus)0xBFFF00A4)
#define VI_ERROR_INTF_NUM_NCONFIG ((ViStatus)0xBFFF00A5)
#define VI_ERROR_CONN_LOST ((ViStatus)0xBFFF00A6)
#define VI_ERROR_NPERMISSION ((ViStatus)0xBFFF00A8)
#define VI_ERROR_SERVER_CERT ((ViStatus)0xBFFF00B0)
#define VI_ERROR_SERVER_CERT_UNTRUSTED ((ViStatus)0xBFFF00B1)
#define VI_ERROR_SERVER_CERT_EXPIRED ((ViStatus)0xBFFF00B2)
#define VI_ERROR_SERVER_CERT_REVOKED ((ViStatus)0xBFFF00B3)
#define VI_ERROR_SERVER_CERT_INV_SUBJECT ((ViStatus)0xBFFF00B4)
/** @} */

/** @name Versions @{ */
#define VI_VERSION_MAJOR(ver) ((((ViVersion)(ver)) & 0xFFF00000U) >> 20)
#define VI_VERSION_MINOR(ver) ((((ViVersion)(ver)) & 0x000FFF00U) >> 8)
#define VI_VERSION_SUBMINOR(ver) (((ViVersion)(ver)) & 0x000000FFU)
/** @} */

/** @name Buffer of a name @{ */
#define VI_FIND_BUFLEN 256
/** @} */

/** @name Interface types @{ */
#define VI_INTF_GPIB 1
#define VI_INTF_VXI 2
#define VI_INTF_GPIB_VXI 3
#define VI_INTF_ASRL 4
#define VI_INTF_PXI 5
#define VI_INTF_TCPIP 6
#define VI_INTF_USB 7
/** @} */

/** @name Protocols of VI_ATTR_IO_PROT @{ */
#define VI_PROT_NORMAL 1
#define VI_PROT_FDC 2
#define VI_PROT_HS488 3
#define VI_PROT_4882_STRS 4
#define VI_PROT_USBTMC_VENDOR 5
/** @} */

/** @name VXI and PXI: word-serial channels and address spaces @{ */
#define VI_FDC_NORMAL 1
#define VI_FDC_STREAM 2
#define VI_LOCAL_SPACE 0
#define VI_A16_SPACE 1
#define VI_A24_SPACE 2
#define VI_A32_SPACE 3
#define VI_A64_SPACE 4
#define VI_PXI_ALLOC_SPACE 9
#define VI_PXI_CFG_SPACE 10
#define VI_PXI_BAR0_SPACE 11
#define VI_PXI_BAR1_SPACE 12
#define VI_PXI_BAR2_SPACE 13
#define VI_PXI_BAR3_SPACE 14
#define VI_PXI_BAR4_SPACE 15
#define VI_PXI_BAR5_SPACE 16
#define VI_OPAQUE_SPACE 0xFFFF
#define VI_UNKNOWN_LA (-1)
#define VI_UNKNOWN_SLOT (-1)
#define VI_UNKNOWN_LEVEL (-1)
#define VI_UNKNOWN_CHASSIS (-1)
#define VI_ASRL_PAR_SPACE 4
/** @} */

/** @name Event mechanisms @{ */
#define VI_QUEUE 1
#define VI_HNDLR 2
#define VI_SUSPEND_HNDLR 4
#define VI_ALL_MECH 0xFFFF
#define VI_ANY_HNDLR 0
/** @} */

/** @name Triggers @{ */
#define VI_TRIG_ALL (-2)
#define VI_TRIG_SW (-1)
#define VI_TRIG_TTL0 0
#define VI_TRIG_TTL1 1
#define VI_TRIG_TTL2 2
#define VI_TRIG_TTL3 3
#define VI_TRIG_TTL4 4
#define VI_TRIG_TTL5 5
#define VI_TRIG_TTL6 6
#define VI_TRIG_TTL7 7
#define VI_TRIG_ECL0 8
#define VI_TRIG_ECL1 9
#define VI_TRIG_ECL2 10
#define VI_TRIG_ECL3 11
#define VI_TRIG_ECL4 12
#define VI_TRIG_ECL5 13
#define VI_TRIG_STAR_SLOT1 14
#define VI_TRIG_STAR_SLOT2 15
#define VI_TRIG_STAR_SLOT3 16
#define VI_TRIG_STAR_SLOT4 17
#define VI_TRIG_STAR_SLOT5 18
#define VI_TRIG_STAR_SLOT6 19
#define VI_TRIG_STAR_SLOT7 20
#define VI_TRIG_STAR_SLOT8 21
#define VI_TRIG_STAR_SLOT9 22
#define VI_TRIG_STAR_SLOT10 23
#define VI_TRIG_STAR_SLOT11 24
#define VI_TRIG_STAR_SLOT12 25
#define VI_TRIG_STAR_INSTR 26
#define VI_TRIG_PANEL_IN 27
#define VI_TRIG_PANEL_OUT 28
#define VI_TRIG_STAR_VXI0 29
#define VI_TRIG_STAR_VXI1 30
#define VI_TRIG_STAR_VXI2 31
#define VI_TRIG_TTL8 32
#define VI_TRIG_TTL9 33
#define VI_TRIG_TTL10 34
#define VI_TRIG_TTL11 35
#define VI_TRIG_PROT_DEFAULT 0
#define VI_TRIG_PROT_ON 1
#define VI_TRIG_PROT_OFF 2
#define VI_TRIG_PROT_SYNC 5
#define VI_TRIG_PROT_RESERVE 6
#define VI_TRIG_PROT_UNRESERVE 7
#define VI_TRIG_UNKNOWN (-1)
/** @} */

/** @name Buffers and when they are flushed @{ */
#define VI_READ_BUF 1
#define VI_WRITE_BUF 2
#define VI_READ_BUF_DISCARD 4
#define VI_WRITE_BUF_DISCARD 8
#define VI_IO_IN_BUF 16
#define VI_IO_OUT_BUF 32
#define VI_IO_IN_BUF_DISCARD 64
#define VI_IO_OUT_BUF_DISCARD 128
#define VI_FLUSH_ON_ACCESS 1
#define VI_FLUSH_WHEN_FULL 2
#define VI_FLUSH_DISABLE 3
/** @} */

/** @name Windows into memory @{ */
#define VI_NMAPPED 1
#define VI_USE_OPERS 2
#define VI_DEREF_ADDR 3
/** @} */

/** @name Time-outs, in milliseconds @{ */
#define VI_TMO_IMMEDIATE 0
#define VI_TMO_INFINITE ((ViUInt32)0xFFFFFFFF)
/** @} */

/** @name Locks and access modes @{ */
#define VI_NO_LOCK 0
#define VI_EXCLUSIVE_LOCK 1
#define VI_SHARED_LOCK 2
#define VI_LOAD_CONFIG 4
/** @} */

/** @name Serial lines @{ */
#define VI_ASRL_PAR_NONE 0
#define VI_ASRL_PAR_ODD 1
#define VI_ASRL_PAR_EVEN 2
#define VI_ASRL_PAR_MARK 3
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

/** @name States of lines @{ */
#define VI_STATE_ASSERTED 1
#define VI_STATE_UNASSERTED 0
#define VI_STATE_UNKNOWN (-1)
/** @} */

/** @name Byte orders, privileges and widths @{ */
#define VI_BIG_ENDIAN 0
#define VI_LITTLE_ENDIAN 1
#define VI_DATA_PRIV 0
#define VI_DATA_NPRIV 1
#define VI_PROG_PRIV 2
#define VI_PROG_NPRIV 3
#define VI_BLCK_PRIV 4
#define VI_BLCK_NPRIV 5
#define VI_D64_PRIV 6
#define VI_D64_NPRIV 7
#define VI_D64_2EVME 8
#define VI_D64_SST160 9
#define VI_D64_SST267 10
#define VI_D64_SST320 11
#define VI_WIDTH_8 1
#define VI_WIDTH_16 2
#define VI_WIDTH_32 4
#define VI_WIDTH_64 8
/** @} */

/** @name GPIB @{ */
#define VI_NO_SEC_ADDR 0xFFFF
#define VI_GPIB_REN_DEASSERT 0
#define VI_GPIB_REN_ASSERT 1
#define VI_GPIB_REN_DEASSERT_GTL 2
#define VI_GPIB_REN_ASSERT_ADDRESS 3
#define VI_GPIB_REN_ASSERT_LLO 4
#define VI_GPIB_REN_ASSERT_ADDRESS_LLO 5
#define VI_GPIB_REN_ADDRESS_GTL 6
#define VI_GPIB_ATN_DEASSERT 0
#define VI_GPIB_ATN_ASSERT 1
#define VI_GPIB_ATN_DEASSERT_HANDSHAKE 2
#define VI_GPIB_ATN_ASSERT_IMMEDIATE 3
#define VI_GPIB_HS488_DISABLED 0
#define VI_GPIB_HS488_NIMPL (-1)
#define VI_GPIB_UNADDRESSED 0
#define VI_GPIB_TALKER 1
#define VI_GPIB_LISTENER 2
/** @} */

/** @name VXI and PXI commands, signals and classes @{ */
#define VI_VXI_CMD16 0x0200
#define VI_VXI_CMD16_RESP16 0x0202
#define VI_VXI_RESP16 0x0002
#define VI_VXI_CMD32 0x0400
#define VI_VXI_CMD32_RESP16 0x0402
#define VI_VXI_CMD32_RESP32 0x0404
#define VI_VXI_RESP32 0x0004
#define VI_ASSERT_SIGNAL (-1)
#define VI_ASSERT_USE_ASSIGNED 0
#define VI_ASSERT_IRQ1 1
#define VI_ASSERT_IRQ2 2
#define VI_ASSERT_IRQ3 3
#define VI_ASSERT_IRQ4 4
#define VI_ASSERT_IRQ5 5
#define VI_ASSERT_IRQ6 6
#define VI_ASSERT_IRQ7 7
#define VI_UTIL_ASSERT_SYSRESET 1
#define VI_UTIL_ASSERT_SYSFAIL 2
#define VI_UTIL_DEASSERT_SYSFAIL 3
#define VI_VXI_CLASS_MEMORY 0
#define VI_VXI_CLASS_EXTENDED 1
#define VI_VXI_CLASS_MESSAGE 2
#define VI_VXI_CLASS_REGISTER 3
#define VI_VXI_CLASS_OTHER 4
#define VI_PXI_ADDR_NONE 0
#define VI_PXI_ADDR_MEM 1
#define VI_PXI_ADDR_IO 2
#define VI_PXI_ADDR_CFG 3
#define VI_PXI_LBUS_STAR_TRIG_BUS_0 1000
#define VI_PXI_LBUS_STAR_TRIG_BUS_1 1001
#define VI_PXI_LBUS_STAR_TRIG_BUS_2 1002
#define VI_PXI_LBUS_STAR_TRIG_BUS_3 1003
#define VI_PXI_LBUS_STAR_TRIG_BUS_4 1004
#define VI_PXI_LBUS_STAR_TRIG_BUS_5 1005
#define VI_PXI_LBUS_STAR_TRIG_BUS_6 1006
#define VI_PXI_LBUS_STAR_TRIG_BUS_7 1007
#define VI_PXI_LBUS_STAR_TRIG_BUS_8 1008
#define VI_PXI_LBUS_STAR_TRIG_BUS_9 1009
#define VI_PXI_STAR_TRIG_CONTROLLER 1413
/** @} */

/** @name Older names @{ */
#define viGetDefaultRM(vi) viOpenDefaultRM(vi)
#define VI_ERROR_INV_SESSION VI_ERROR_INV_OBJECT
#define VI_INFINITE VI_TMO_INFINITE
#define VI_NORMAL VI_PROT_NORMAL
#define VI_FDC VI_PROT_FDC
#define VI_HS488 VI_PROT_HS488
#define VI_ASRL488 VI_PROT_4882_STRS
#define VI_ASRL_IN_BUF VI_IO_IN_BUF
#define VI_ASRL_OUT_BUF VI_IO_OUT_BUF
#define VI_ASRL_IN_BUF_DISCARD VI_IO_IN_BUF_DISCARD
#define VI_ASRL_OUT_BUF_DISCARD VI_IO_OUT_BUF_DISCARD
/** @} */

#if defined(__cplusplus)
}
#endif

#endif
