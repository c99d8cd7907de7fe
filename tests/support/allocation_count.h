#pragma once

#include <cstddef>

namespace kvxtest
{

/// How often the program, its libraries included, has called operator new so far.
std::size_t allocationCount();

/// How many of these allocations have not been given back.
std::size_t liveAllocations();

/// How many bytes these hold, as they were asked for.
std::size_t liveBytes();

} // namespace kvxtest
