#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

namespace kvxtest
{

/// How many files, sockets and other objects of the system this process has open.
std::size_t openDescriptors();

/// Those, and whether the programs that this process starts inherit them.
std::map<std::intptr_t, bool> descriptorInheritance();

} // namespace kvxtest
