#include "tests/support/held_allocations.h"

#include <windows.h>

#include <vector>

namespace
{

std::size_t busyBlocks(HANDLE heap)
{
    std::size_t count = 0;
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry) != 0)
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            ++count;
    HeapUnlock(heap);
    return count;
}

} // namespace

std::size_t kvxtest::heldAllocations()
{
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    std::size_t count = 0;
    for (const HANDLE heap : heaps)
        count += busyBlocks(heap);
    return count;
}
