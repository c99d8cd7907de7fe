#include "tests/support/open_descriptors.h"

#include <filesystem>
#include <iterator>

std::size_t kvxtest::openDescriptors()
{
    using Entries = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Entries("/proc/self/fd"), Entries()));
}
