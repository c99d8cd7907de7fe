#pragma once

#include <visa.h>

// An older name, which visa.h has as a macro.
#undef viGetDefaultRM
extern "C" ViStatus _VI_FUNC viGetDefaultRM(ViPSession vi);

/// VISA's functions: FUNCTION(result, name, (parameters), (their names), how each of them is shown: enumerators of
/// How).
// clang-format off
#define KVX_VISATRACE_FUNCTIONS(FUNCTION) \
    FUNCTION(ViStatus, viOpenDefaultRM, (ViPSession vi), (vi), Stored32) \
    FUNCTION(ViStatus, viGetDefaultRM, (ViPSession vi), (vi), Stored32) \
    FUNCTION(ViStatus, viFindRsrc, (ViSession sesn, ViConstString expr, ViPFindList vi, ViPUInt32 retCnt, ViChar desc[]), (sesn, expr, vi, retCnt, desc), Number, Text, Stored32, Stored32, StoredText) \
    FUNCTION(ViStatus, viFindNext, (ViFindList vi, ViChar desc[]), (vi, desc), Number, StoredText) \
    FUNCTION(ViStatus, viParseRsrc, (ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum), (rmSesn, rsrcName, intfType, intfNum), Number, Text, Stored16, Stored16) \
    FUNCTION(ViStatus, viParseRsrcEx, (ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum, ViChar rsrcClass[], ViChar expandedUnaliasedName[], ViChar aliasIfExists[]), (rmSesn, rsrcName, intfType, intfNum, rsrcClass, expandedUnaliasedName, aliasIfExists), Number, Text, Stored16, Stored16, StoredText, StoredText, StoredText) \
    FUNCTION(ViStatus, viOpen, (ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi), (sesn, name, mode, timeout, vi), Number, Text, Number, Number, Stored32) \
    FUNCTION(ViStatus, viClose, (ViObject vi), (vi), Number) \
    FUNCTION(ViStatus, viGetAttribute, (ViObject vi, ViAttr attrName, void* attrValue), (vi, attrName, attrValue), Number, Attribute, StoredAttributeState) \
    FUNCTION(ViStatus, viSetAttribute, (ViObject vi, ViAttr attrName, ViAttrState attrValue), (vi, attrName, attrValue), Number, Attribute, AttributeState) \
    FUNCTION(ViStatus, viStatusDesc, (ViObject vi, ViStatus status, ViChar desc[]), (vi, status, desc), Number, Status, StoredText) \
    FUNCTION(ViStatus, viTerminate, (ViObject vi, ViUInt16 degree, ViJobId jobId), (vi, degree, jobId), Number, Number, Number) \
    FUNCTION(ViStatus, viLock, (ViSession vi, ViAccessMode lockType, ViUInt32 timeout, ViConstKeyId requestedKey, ViChar accessKey[]), (vi, lockType, timeout, requestedKey, accessKey), Number, Number, Number, Text, StoredKey) \
    FUNCTION(ViStatus, viUnlock, (ViSession vi), (vi), Number) \
    FUNCTION(ViStatus, viRead, (ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt), Number, StoredBytes, Number, Stored32) \
    FUNCTION(ViStatus, viWrite, (ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt), Number, Bytes, Number, Stored32) \
    FUNCTION(ViStatus, viAssertTrigger, (ViSession vi, ViUInt16 protocol), (vi, protocol), Number, Number) \
    FUNCTION(ViStatus, viReadSTB, (ViSession vi, ViPUInt16 status), (vi, status), Number, Stored16) \
    FUNCTION(ViStatus, viClear, (ViSession vi), (vi), Number) \
    FUNCTION(ViStatus, viSetBuf, (ViSession vi, ViUInt16 mask, ViUInt32 size), (vi, mask, size), Number, Number, Number) \
    FUNCTION(ViStatus, viFlush, (ViSession vi, ViUInt16 mask), (vi, mask), Number, Number) \
    FUNCTION(ViStatus, viGpibControlREN, (ViSession vi, ViUInt16 mode), (vi, mode), Number, Number) \
    FUNCTION(ViStatus, viDisableEvent, (ViSession vi, ViEventType eventType, ViUInt16 mechanism), (vi, eventType, mechanism), Number, Event, Number) \
    FUNCTION(ViStatus, viDiscardEvents, (ViSession vi, ViEventType eventType, ViUInt16 mechanism), (vi, eventType, mechanism), Number, Event, Number) \
    FUNCTION(ViStatus, viEnableEvent, (ViSession vi, ViEventType eventType, ViUInt16 mechanism, ViEventFilter context), (vi, eventType, mechanism, context), Number, Event, Number, Number) \
    FUNCTION(ViStatus, viWaitOnEvent, (ViSession vi, ViEventType inEventType, ViUInt32 timeout, ViPEventType outEventType, ViPEvent outContext), (vi, inEventType, timeout, outEventType, outContext), Number, Event, Number, StoredEvent, Stored32) \
    FUNCTION(ViStatus, viInstallHandler, (ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle), (vi, eventType, handler, userHandle), Number, Event, Hex, Hex) \
    FUNCTION(ViStatus, viUninstallHandler, (ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle), (vi, eventType, handler, userHandle), Number, Event, Hex, Hex) \
    FUNCTION(ViStatus, viReadAsync, (ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPJobId jobId), (vi, buf, cnt, jobId), Number, Hex, Number, Stored32) \
    FUNCTION(ViStatus, viReadToFile, (ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt), (vi, filename, cnt, retCnt), Number, Text, Number, Stored32) \
    FUNCTION(ViStatus, viWriteAsync, (ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPJobId jobId), (vi, buf, cnt, jobId), Number, Bytes, Number, Stored32) \
    FUNCTION(ViStatus, viWriteFromFile, (ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt), (vi, filename, cnt, retCnt), Number, Text, Number, Stored32) \
    FUNCTION(ViStatus, viBufWrite, (ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt), Number, Bytes, Number, Stored32) \
    FUNCTION(ViStatus, viBufRead, (ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt), Number, StoredBytes, Number, Stored32) \
    FUNCTION(ViStatus, viIn8, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt8 val8), (vi, space, offset, val8), Number, Number, Hex, Stored8) \
    FUNCTION(ViStatus, viOut8, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt8 val8), (vi, space, offset, val8), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn16, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt16 val16), (vi, space, offset, val16), Number, Number, Hex, Stored16) \
    FUNCTION(ViStatus, viOut16, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt16 val16), (vi, space, offset, val16), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn32, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt32 val32), (vi, space, offset, val32), Number, Number, Hex, Stored32) \
    FUNCTION(ViStatus, viOut32, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt32 val32), (vi, space, offset, val32), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn64, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViPUInt64 val64), (vi, space, offset, val64), Number, Number, Hex, Stored64) \
    FUNCTION(ViStatus, viOut64, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViUInt64 val64), (vi, space, offset, val64), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn8Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt8 val8), (vi, space, offset, val8), Number, Number, Hex, Stored8) \
    FUNCTION(ViStatus, viOut8Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt8 val8), (vi, space, offset, val8), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn16Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt16 val16), (vi, space, offset, val16), Number, Number, Hex, Stored16) \
    FUNCTION(ViStatus, viOut16Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt16 val16), (vi, space, offset, val16), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn32Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt32 val32), (vi, space, offset, val32), Number, Number, Hex, Stored32) \
    FUNCTION(ViStatus, viOut32Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt32 val32), (vi, space, offset, val32), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viIn64Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViPUInt64 val64), (vi, space, offset, val64), Number, Number, Hex, Stored64) \
    FUNCTION(ViStatus, viOut64Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViUInt64 val64), (vi, space, offset, val64), Number, Number, Hex, Number) \
    FUNCTION(ViStatus, viMoveIn8, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt8 buf8), (vi, space, offset, length, buf8), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut8, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt8 buf8), (vi, space, offset, length, buf8), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn16, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt16 buf16), (vi, space, offset, length, buf16), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut16, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt16 buf16), (vi, space, offset, length, buf16), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn32, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt32 buf32), (vi, space, offset, length, buf32), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut32, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt32 buf32), (vi, space, offset, length, buf32), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn64, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt64 buf64), (vi, space, offset, length, buf64), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut64, (ViSession vi, ViUInt16 space, ViBusAddress offset, ViBusSize length, ViAUInt64 buf64), (vi, space, offset, length, buf64), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn8Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt8 buf8), (vi, space, offset, length, buf8), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut8Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt8 buf8), (vi, space, offset, length, buf8), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn16Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt16 buf16), (vi, space, offset, length, buf16), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut16Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt16 buf16), (vi, space, offset, length, buf16), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn32Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt32 buf32), (vi, space, offset, length, buf32), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut32Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt32 buf32), (vi, space, offset, length, buf32), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveIn64Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt64 buf64), (vi, space, offset, length, buf64), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMoveOut64Ex, (ViSession vi, ViUInt16 space, ViBusAddress64 offset, ViBusSize length, ViAUInt64 buf64), (vi, space, offset, length, buf64), Number, Number, Hex, Number, Skip) \
    FUNCTION(ViStatus, viMove, (ViSession vi, ViUInt16 srcSpace, ViBusAddress srcOffset, ViUInt16 srcWidth, ViUInt16 destSpace, ViBusAddress destOffset, ViUInt16 destWidth, ViBusSize srcLength), (vi, srcSpace, srcOffset, srcWidth, destSpace, destOffset, destWidth, srcLength), Number, Number, Hex, Number, Number, Hex, Number, Number) \
    FUNCTION(ViStatus, viMoveAsync, (ViSession vi, ViUInt16 srcSpace, ViBusAddress srcOffset, ViUInt16 srcWidth, ViUInt16 destSpace, ViBusAddress destOffset, ViUInt16 destWidth, ViBusSize srcLength, ViPJobId jobId), (vi, srcSpace, srcOffset, srcWidth, destSpace, destOffset, destWidth, srcLength, jobId), Number, Number, Hex, Number, Number, Hex, Number, Number, Stored32) \
    FUNCTION(ViStatus, viMoveEx, (ViSession vi, ViUInt16 srcSpace, ViBusAddress64 srcOffset, ViUInt16 srcWidth, ViUInt16 destSpace, ViBusAddress64 destOffset, ViUInt16 destWidth, ViBusSize srcLength), (vi, srcSpace, srcOffset, srcWidth, destSpace, destOffset, destWidth, srcLength), Number, Number, Hex, Number, Number, Hex, Number, Number) \
    FUNCTION(ViStatus, viMoveAsyncEx, (ViSession vi, ViUInt16 srcSpace, ViBusAddress64 srcOffset, ViUInt16 srcWidth, ViUInt16 destSpace, ViBusAddress64 destOffset, ViUInt16 destWidth, ViBusSize srcLength, ViPJobId jobId), (vi, srcSpace, srcOffset, srcWidth, destSpace, destOffset, destWidth, srcLength, jobId), Number, Number, Hex, Number, Number, Hex, Number, Number, Stored32) \
    FUNCTION(ViStatus, viMapAddress, (ViSession vi, ViUInt16 mapSpace, ViBusAddress mapOffset, ViBusSize mapSize, ViBoolean access, ViAddr suggested, ViPAddr address), (vi, mapSpace, mapOffset, mapSize, access, suggested, address), Number, Number, Hex, Number, Number, Hex, StoredPointer) \
    FUNCTION(ViStatus, viUnmapAddress, (ViSession vi), (vi), Number) \
    FUNCTION(ViStatus, viMapAddressEx, (ViSession vi, ViUInt16 mapSpace, ViBusAddress64 mapOffset, ViBusSize mapSize, ViBoolean access, ViAddr suggested, ViPAddr address), (vi, mapSpace, mapOffset, mapSize, access, suggested, address), Number, Number, Hex, Number, Number, Hex, StoredPointer) \
    FUNCTION(void, viPeek8, (ViSession vi, ViAddr address, ViPUInt8 val8), (vi, address, val8), Number, Hex, Stored8) \
    FUNCTION(void, viPoke8, (ViSession vi, ViAddr address, ViUInt8 val8), (vi, address, val8), Number, Hex, Number) \
    FUNCTION(void, viPeek16, (ViSession vi, ViAddr address, ViPUInt16 val16), (vi, address, val16), Number, Hex, Stored16) \
    FUNCTION(void, viPoke16, (ViSession vi, ViAddr address, ViUInt16 val16), (vi, address, val16), Number, Hex, Number) \
    FUNCTION(void, viPeek32, (ViSession vi, ViAddr address, ViPUInt32 val32), (vi, address, val32), Number, Hex, Stored32) \
    FUNCTION(void, viPoke32, (ViSession vi, ViAddr address, ViUInt32 val32), (vi, address, val32), Number, Hex, Number) \
    FUNCTION(void, viPeek64, (ViSession vi, ViAddr address, ViPUInt64 val64), (vi, address, val64), Number, Hex, Stored64) \
    FUNCTION(void, viPoke64, (ViSession vi, ViAddr address, ViUInt64 val64), (vi, address, val64), Number, Hex, Number) \
    FUNCTION(ViStatus, viMemAlloc, (ViSession vi, ViBusSize size, ViPBusAddress offset), (vi, size, offset), Number, Number, StoredBusAddress) \
    FUNCTION(ViStatus, viMemFree, (ViSession vi, ViBusAddress offset), (vi, offset), Number, Hex) \
    FUNCTION(ViStatus, viMemAllocEx, (ViSession vi, ViBusSize size, ViPBusAddress64 offset), (vi, size, offset), Number, Number, Stored64) \
    FUNCTION(ViStatus, viMemFreeEx, (ViSession vi, ViBusAddress64 offset), (vi, offset), Number, Hex) \
    FUNCTION(ViStatus, viGpibControlATN, (ViSession vi, ViUInt16 mode), (vi, mode), Number, Number) \
    FUNCTION(ViStatus, viGpibSendIFC, (ViSession vi), (vi), Number) \
    FUNCTION(ViStatus, viGpibCommand, (ViSession vi, ViConstBuf cmd, ViUInt32 cnt, ViPUInt32 retCnt), (vi, cmd, cnt, retCnt), Number, Bytes, Number, Stored32) \
    FUNCTION(ViStatus, viGpibPassControl, (ViSession vi, ViUInt16 primAddr, ViUInt16 secAddr), (vi, primAddr, secAddr), Number, Number, Number) \
    FUNCTION(ViStatus, viVxiCommandQuery, (ViSession vi, ViUInt16 mode, ViUInt32 cmd, ViPUInt32 response), (vi, mode, cmd, response), Number, Number, Number, Stored32) \
    FUNCTION(ViStatus, viAssertUtilSignal, (ViSession vi, ViUInt16 line), (vi, line), Number, Number) \
    FUNCTION(ViStatus, viAssertIntrSignal, (ViSession vi, ViInt16 mode, ViUInt32 statusID), (vi, mode, statusID), Number, Signed, Number) \
    FUNCTION(ViStatus, viMapTrigger, (ViSession vi, ViInt16 trigSrc, ViInt16 trigDest, ViUInt16 mode), (vi, trigSrc, trigDest, mode), Number, Signed, Signed, Number) \
    FUNCTION(ViStatus, viUnmapTrigger, (ViSession vi, ViInt16 trigSrc, ViInt16 trigDest), (vi, trigSrc, trigDest), Number, Signed, Signed) \
    FUNCTION(ViStatus, viUsbControlOut, (ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue, ViUInt16 wIndex, ViUInt16 wLength, ViConstBuf buf), (vi, bmRequestType, bRequest, wValue, wIndex, wLength, buf), Number, Signed, Signed, Number, Number, Number, BytesCountedBefore) \
    FUNCTION(ViStatus, viUsbControlIn, (ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue, ViUInt16 wIndex, ViUInt16 wLength, ViPBuf buf, ViPUInt16 retCnt), (vi, bmRequestType, bRequest, wValue, wIndex, wLength, buf, retCnt), Number, Signed, Signed, Number, Number, Number, StoredBytesCountedBefore, Stored16) \
    FUNCTION(ViStatus, viPxiReserveTriggers, (ViSession vi, ViInt16 cnt, ViAInt16 trigBuses, ViAInt16 trigLines, ViPInt16 failureIndex), (vi, cnt, trigBuses, trigLines, failureIndex), Number, Signed, Skip, Skip, StoredSigned16)

/// The same of those that take further arguments as a list.
#define KVX_VISATRACE_LIST_FUNCTIONS(FUNCTION) \
    FUNCTION(ViStatus, viVPrintf, (ViSession vi, ViConstString writeFmt, ViVAList params), (vi, writeFmt, params), Number, Text, Skip) \
    FUNCTION(ViStatus, viVSPrintf, (ViSession vi, ViPBuf buf, ViConstString writeFmt, ViVAList parms), (vi, buf, writeFmt, parms), Number, StoredText, Text, Skip) \
    FUNCTION(ViStatus, viVScanf, (ViSession vi, ViConstString readFmt, ViVAList params), (vi, readFmt, params), Number, Text, Skip) \
    FUNCTION(ViStatus, viVSScanf, (ViSession vi, ViConstBuf buf, ViConstString readFmt, ViVAList parms), (vi, buf, readFmt, parms), Number, Text, Text, Skip) \
    FUNCTION(ViStatus, viVQueryf, (ViSession vi, ViConstString writeFmt, ViConstString readFmt, ViVAList params), (vi, writeFmt, readFmt, params), Number, Text, Text, Skip)

/// Those with any number of arguments: FUNCTION(name, the function that takes a list, (parameters), the last that is named,
/// (what that function takes, with the list as params), how each of these is shown).
#define KVX_VISATRACE_VARIADIC_FUNCTIONS(FUNCTION) \
    FUNCTION(viPrintf, viVPrintf, (ViSession vi, ViConstString writeFmt, ...), writeFmt, (vi, writeFmt, params), Number, Text, Skip) \
    FUNCTION(viSPrintf, viVSPrintf, (ViSession vi, ViPBuf buf, ViConstString writeFmt, ...), writeFmt, (vi, buf, writeFmt, params), Number, StoredText, Text, Skip) \
    FUNCTION(viScanf, viVScanf, (ViSession vi, ViConstString readFmt, ...), readFmt, (vi, readFmt, params), Number, Text, Skip) \
    FUNCTION(viSScanf, viVSScanf, (ViSession vi, ViConstBuf buf, ViConstString readFmt, ...), readFmt, (vi, buf, readFmt, params), Number, Text, Text, Skip) \
    FUNCTION(viQueryf, viVQueryf, (ViSession vi, ViConstString writeFmt, ViConstString readFmt, ...), readFmt, (vi, writeFmt, readFmt, params), Number, Text, Text, Skip)
// clang-format on
