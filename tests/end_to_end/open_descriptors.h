#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace kvxtest
{

/// How many files and sockets this process has open.
inline std::size_t openDescriptors()
{
    using Entries = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Entries("/proc/self/fd"), Entries()));
}

} // namespace kvxtest
