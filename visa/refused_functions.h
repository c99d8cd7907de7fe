#pragma once

#include <visa.h>

/// The functions that every session refuses: ROW(name, calling convention, status, types of the parameters behind the
/// session). Those of VISA's memory that return nothing do nothing and have a list of their own.
// clang-format off
#define KVX_VISA_REFUSED_FUNCTIONS(ROW) \
    ROW(viEnableEvent, _VI_FUNC, VI_ERROR_INV_EVENT, ViEventType, ViUInt16, ViEventFilter) \
    ROW(viWaitOnEvent, _VI_FUNC, VI_ERROR_NSUP_OPER, ViEventType, ViUInt32, ViPEventType, ViPEvent) \
    ROW(viInstallHandler, _VI_FUNC, VI_ERROR_NSUP_OPER, ViEventType, ViHndlr, ViAddr) \
    ROW(viUninstallHandler, _VI_FUNC, VI_ERROR_NSUP_OPER, ViEventType, ViHndlr, ViAddr) \
    ROW(viReadAsync, _VI_FUNC, VI_ERROR_NSUP_OPER, ViPBuf, ViUInt32, ViPJobId) \
    ROW(viReadToFile, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstString, ViUInt32, ViPUInt32) \
    ROW(viWriteAsync, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstBuf, ViUInt32, ViPJobId) \
    ROW(viWriteFromFile, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstString, ViUInt32, ViPUInt32) \
    ROW(viBufWrite, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstBuf, ViUInt32, ViPUInt32) \
    ROW(viBufRead, _VI_FUNC, VI_ERROR_NSUP_OPER, ViPBuf, ViUInt32, ViPUInt32) \
    ROW(viPrintf, _VI_FUNCC, VI_ERROR_NSUP_OPER, ViConstString, ...) \
    ROW(viVPrintf, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstString, ViVAList) \
    ROW(viSPrintf, _VI_FUNCC, VI_ERROR_NSUP_OPER, ViPBuf, ViConstString, ...) \
    ROW(viVSPrintf, _VI_FUNC, VI_ERROR_NSUP_OPER, ViPBuf, ViConstString, ViVAList) \
    ROW(viScanf, _VI_FUNCC, VI_ERROR_NSUP_OPER, ViConstString, ...) \
    ROW(viVScanf, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstString, ViVAList) \
    ROW(viSScanf, _VI_FUNCC, VI_ERROR_NSUP_OPER, ViConstBuf, ViConstString, ...) \
    ROW(viVSScanf, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstBuf, ViConstString, ViVAList) \
    ROW(viQueryf, _VI_FUNCC, VI_ERROR_NSUP_OPER, ViConstString, ViConstString, ...) \
    ROW(viVQueryf, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstString, ViConstString, ViVAList) \
    ROW(viIn8, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViPUInt8) \
    ROW(viOut8, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt8) \
    ROW(viIn16, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViPUInt16) \
    ROW(viOut16, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt16) \
    ROW(viIn32, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViPUInt32) \
    ROW(viOut32, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt32) \
    ROW(viIn64, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViPUInt64) \
    ROW(viOut64, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt64) \
    ROW(viIn8Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViPUInt8) \
    ROW(viOut8Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt8) \
    ROW(viIn16Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViPUInt16) \
    ROW(viOut16Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt16) \
    ROW(viIn32Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViPUInt32) \
    ROW(viOut32Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt32) \
    ROW(viIn64Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViPUInt64) \
    ROW(viOut64Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt64) \
    ROW(viMoveIn8, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt8) \
    ROW(viMoveOut8, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt8) \
    ROW(viMoveIn16, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt16) \
    ROW(viMoveOut16, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt16) \
    ROW(viMoveIn32, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt32) \
    ROW(viMoveOut32, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt32) \
    ROW(viMoveIn64, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt64) \
    ROW(viMoveOut64, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViAUInt64) \
    ROW(viMoveIn8Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt8) \
    ROW(viMoveOut8Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt8) \
    ROW(viMoveIn16Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt16) \
    ROW(viMoveOut16Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt16) \
    ROW(viMoveIn32Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt32) \
    ROW(viMoveOut32Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt32) \
    ROW(viMoveIn64Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt64) \
    ROW(viMoveOut64Ex, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViAUInt64) \
    ROW(viMove, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress, ViUInt16, ViBusSize) \
    ROW(viMoveAsync, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress, ViUInt16, ViBusSize, ViPJobId) \
    ROW(viMoveEx, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16, ViBusAddress64, ViUInt16, ViBusSize) \
    ROW(viMoveAsyncEx, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16, ViBusAddress64, ViUInt16, ViBusSize, ViPJobId) \
    ROW(viMapAddress, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress, ViBusSize, ViBoolean, ViAddr, ViPAddr) \
    ROW(viUnmapAddress, _VI_FUNC, VI_ERROR_NSUP_OPER) \
    ROW(viMapAddressEx, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViBusAddress64, ViBusSize, ViBoolean, ViAddr, ViPAddr) \
    ROW(viMemAlloc, _VI_FUNC, VI_ERROR_NSUP_OPER, ViBusSize, ViPBusAddress) \
    ROW(viMemFree, _VI_FUNC, VI_ERROR_NSUP_OPER, ViBusAddress) \
    ROW(viMemAllocEx, _VI_FUNC, VI_ERROR_NSUP_OPER, ViBusSize, ViPBusAddress64) \
    ROW(viMemFreeEx, _VI_FUNC, VI_ERROR_NSUP_OPER, ViBusAddress64) \
    ROW(viGpibControlATN, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16) \
    ROW(viGpibSendIFC, _VI_FUNC, VI_ERROR_NSUP_OPER) \
    ROW(viGpibCommand, _VI_FUNC, VI_ERROR_NSUP_OPER, ViConstBuf, ViUInt32, ViPUInt32) \
    ROW(viGpibPassControl, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViUInt16) \
    ROW(viVxiCommandQuery, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16, ViUInt32, ViPUInt32) \
    ROW(viAssertUtilSignal, _VI_FUNC, VI_ERROR_NSUP_OPER, ViUInt16) \
    ROW(viAssertIntrSignal, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViUInt32) \
    ROW(viMapTrigger, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViInt16, ViUInt16) \
    ROW(viUnmapTrigger, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViInt16) \
    ROW(viUsbControlOut, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16, ViConstBuf) \
    ROW(viUsbControlIn, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16, ViPBuf, ViPUInt16) \
    ROW(viPxiReserveTriggers, _VI_FUNC, VI_ERROR_NSUP_OPER, ViInt16, ViAInt16, ViAInt16, ViPInt16)

#define KVX_VISA_VOID_FUNCTIONS(ROW) \
    ROW(viPeek8, ViAddr, ViPUInt8) \
    ROW(viPoke8, ViAddr, ViUInt8) \
    ROW(viPeek16, ViAddr, ViPUInt16) \
    ROW(viPoke16, ViAddr, ViUInt16) \
    ROW(viPeek32, ViAddr, ViPUInt32) \
    ROW(viPoke32, ViAddr, ViUInt32) \
    ROW(viPeek64, ViAddr, ViPUInt64) \
    ROW(viPoke64, ViAddr, ViUInt64)
// clang-format on
