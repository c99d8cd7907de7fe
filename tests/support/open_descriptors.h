#pragma once

#include <cstddef>

namespace kvxtest
{

/// How many files, sockets and other objects of the system this process has open.
std::size_t openDescriptors();

} // namespace kvxtest
