#pragma once

#include <IviVisaType.h>

/// Bits of a channel's questionable condition.
namespace api
{

inline constexpr ViInt32 kConstantCurrentBit = 0x1;
inline constexpr ViInt32 kConstantVoltageBit = 0x2;
inline constexpr ViInt32 kOverVoltageBit = 0x4;
inline constexpr ViInt32 kOverCurrentBit = 0x8;

} // namespace api
