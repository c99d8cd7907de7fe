#pragma once

namespace store_tool
{

/// Exit codes of the program.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1; ///< something could not be done, or check has found something
inline constexpr int kUsageError = 2;

} // namespace store_tool
