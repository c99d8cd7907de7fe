#pragma once

#include <cstddef>

namespace kvxtest
{

/// How many allocations of this process are alive; on POSIX those of C++.
std::size_t heldAllocations();

} // namespace kvxtest
