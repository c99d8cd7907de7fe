#pragma once

#include <visa.h>

/// The statuses of VISA that tests have their connections return.
namespace kvxtest
{

inline constexpr ViStatus kTermChar = 0x3FFF0005;
inline constexpr ViStatus kWarning = 0x3FFF0084;
inline constexpr auto kNoConnection = static_cast<ViStatus>(0xBFFF000E);
inline constexpr auto kNotFound = static_cast<ViStatus>(0xBFFF0011);
inline constexpr auto kTimedOut = static_cast<ViStatus>(0xBFFF0015);
inline constexpr auto kClosingFailed = static_cast<ViStatus>(0xBFFF0016);

} // namespace kvxtest
