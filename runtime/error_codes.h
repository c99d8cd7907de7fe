#pragma once

#include "base/status_codes.h"

/// The codes that the session runtime reports, named as IVI-3.2 section 11 names them. Their messages are in
/// error_messages.cpp.
namespace drivekit
{

inline constexpr ViStatus kErrorCannotRecover = TSRO::statusCode(0xBFFA0000U);
inline constexpr ViStatus kErrorInstrumentStatus = TSRO::statusCode(0xBFFA0001U);
inline constexpr ViStatus kErrorInvalidAttribute = TSRO::statusCode(0xBFFA000CU);
inline constexpr ViStatus kErrorAttributeNotWritable = TSRO::statusCode(0xBFFA000DU);
inline constexpr ViStatus kErrorAttributeNotReadable = TSRO::statusCode(0xBFFA000EU);
inline constexpr ViStatus kErrorInvalidValue = TSRO::statusCode(0xBFFA0010U);
inline constexpr ViStatus kErrorTypesDoNotMatch = TSRO::statusCode(0xBFFA0015U);
inline constexpr ViStatus kErrorChannelNameRequired = TSRO::statusCode(0xBFFA0044U);
inline constexpr ViStatus kErrorBadOptionName = TSRO::statusCode(0xBFFA004BU);
inline constexpr ViStatus kErrorBadOptionValue = TSRO::statusCode(0xBFFA004CU);
inline constexpr ViStatus kErrorNullPointer = TSRO::statusCode(0xBFFA0058U);
inline constexpr ViStatus kErrorIdQueryFailed = TSRO::statusCode(0xBFFA005EU);
inline constexpr ViStatus kErrorCannotChangeSimulationState = TSRO::statusCode(0xBFFA0062U);
inline constexpr ViStatus kErrorInvalidNumberOfLevels = TSRO::statusCode(0xBFFA0063U);
inline constexpr ViStatus kErrorInvalidRange = TSRO::statusCode(0xBFFA0064U);
inline constexpr ViStatus kErrorBadlyFormedSelector = TSRO::statusCode(0xBFFA0066U);
inline constexpr ViStatus kErrorUnknownPhysicalIdentifier = TSRO::statusCode(0xBFFA0067U);
inline constexpr ViStatus kErrorInvalidSession = TSRO::statusCode(0xBFFA1190U);
inline constexpr ViStatus kWarnSelfTestNotSupported = TSRO::statusCode(0x3FFA0067U);

} // namespace drivekit
