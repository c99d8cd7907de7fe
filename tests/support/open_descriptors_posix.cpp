#include "tests/support/open_descriptors.h"

#include <fcntl.h>

#include <filesystem>
#include <iterator>

namespace kvxtest
{

std::size_t openDescriptors()
{
    using Entries = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Entries("/proc/self/fd"), Entries()));
}

std::map<std::intptr_t, bool> descriptorInheritance()
{
    constexpr int kEnd = 1024;
    std::map<std::intptr_t, bool> inheritance;
    for (int descriptor = 0; descriptor < kEnd; ++descriptor) {
        if (const int flags = ::fcntl(descriptor, F_GETFD); flags >= 0)
            inheritance[descriptor] = (flags & FD_CLOEXEC) == 0;
    }
    return inheritance;
}

} // namespace kvxtest
