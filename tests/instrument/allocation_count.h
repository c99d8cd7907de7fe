#pragma once

#include <cstddef>

namespace kvxtest
{

/// How often the program, its libraries included, has called operator new so far.
std::size_t allocationCount();

} // namespace kvxtest
