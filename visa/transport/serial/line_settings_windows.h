#pragma once

#include <visa.h>

#include <winsock2.h>

#include <windows.h>

namespace visa
{

/// Readies the line of an open port: every byte passes unchanged, transfers end only when they are complete, and the
/// settings are those that a session has at first.
/// @return false when it is no serial port
bool makeRaw(HANDLE port) noexcept;

/// Brings an attribute of the line into force.
/// @return VI_ERROR_NSUP_ATTR_STATE when the port cannot have this value, which leaves the old one in force
ViStatus applyLineSetting(HANDLE port, ViAttr attribute, ViUInt32 value) noexcept;

/// The state of VI_ATTR_ASRL_CTS_STATE's line and its kin: VI_STATE_UNKNOWN where the port cannot tell.
ViUInt32 lineState(HANDLE port, ViAttr attribute) noexcept;

/// The time that this many characters take on the line, in milliseconds, rounded up.
DWORD durationMs(HANDLE port, DWORD characters) noexcept;

} // namespace visa
