#include "tests/support/open_descriptors.h"

#include <windows.h>

namespace kvxtest
{

std::size_t openDescriptors()
{
    return descriptorInheritance().size();
}

std::map<std::intptr_t, bool> descriptorInheritance()
{
    // Handles are multiples of four, and small ones are used first. Wine has no list of them.
    constexpr std::intptr_t kStep = 4;
    constexpr std::intptr_t kEnd = kStep * 4096;
    std::map<std::intptr_t, bool> inheritance;
    for (std::intptr_t value = kStep; value < kEnd; value += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0)
            inheritance[value] = (flags & HANDLE_FLAG_INHERIT) != 0;
    }
    return inheritance;
}

} // namespace kvxtest
