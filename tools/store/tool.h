#pragma once

#include <iosfwd>

namespace store_tool
{

/// Exit codes of the program.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1; ///< something could not be done, or check has found something
inline constexpr int kUsageError = 2;

/// The program: does what the command line asks for. @return the exit code
int runTool(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& errors);

} // namespace store_tool
