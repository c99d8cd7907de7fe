#pragma once

#include <cstdint>
#include <string_view>

/// Where lines go: to the end of the file that KVX_VISATRACE_FILE named when the library was loaded, or to stderr.
namespace visatrace
{

/// Writes the line in one piece, so that lines of threads and processes do not mix. A line that cannot be written is
/// lost: the program that is traced notices nothing but errno, which the caller looks after.
void writeLine(std::string_view line);

/// Monotonic, since the library was loaded.
std::uint64_t microsecondsSinceLoading();

} // namespace visatrace
