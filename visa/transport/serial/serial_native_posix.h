#pragma once

#include "visa/host/wait_posix.h"

#include <cstddef>
#include <span>
#include <string>

namespace visa
{

/// What Asio's serial port does not offer: transfers that never wait, and the state of the line.

enum class TransferState
{
    Done,
    WouldBlock,
    ConnectionLost,
    Failed
};

/// How far a transfer has come.
struct TransferResult
{
    TransferState state;
    std::size_t count;
};

/// The device of "ASRL<board>": the environment variable VISA_ASRL<board> when it is set, otherwise the host's own name
/// of that port; empty when there is none.
std::string serialDevicePath(ViUInt16 board);

TransferResult readNow(NativeHandle handle, std::span<ViByte> buffer) noexcept;
TransferResult writeNow(NativeHandle handle, std::span<const ViByte> bytes) noexcept;

/// Bytes received and not read yet.
ViUInt32 bytesWaiting(NativeHandle handle) noexcept;

/// Bytes written that have not left yet.
ViUInt32 bytesUnsent(NativeHandle handle) noexcept;

/// The state of VI_ATTR_ASRL_CTS_STATE's line and its kin: VI_STATE_UNKNOWN where the host cannot tell.
ViUInt32 modemLine(NativeHandle handle, ViAttr line) noexcept;

// They tell Done, or why the host refused.

TransferState discardReceived(NativeHandle handle) noexcept;
TransferState discardUnsent(NativeHandle handle) noexcept;
TransferState setModemLine(NativeHandle handle, ViAttr line, bool isAsserted) noexcept;
TransferState sendLineBreak(NativeHandle handle) noexcept;

} // namespace visa
