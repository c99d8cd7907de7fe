#include "tests/support/open_descriptors.h"

#include <windows.h>

#include <cstdint>

std::size_t kvxtest::openDescriptors()
{
    // Handles are multiples of four, and small ones are used first. Wine has no count of them.
    constexpr std::uintptr_t kStep = 4;
    constexpr std::uintptr_t kEnd = kStep * 4096;
    std::size_t count = 0;
    for (std::uintptr_t value = kStep; value < kEnd; value += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0)
            ++count;
    }
    return count;
}
