#include "open_descriptors.h"

#include <windows.h>

std::size_t kvxtest::openDescriptors()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}
