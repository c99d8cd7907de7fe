#include "allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> count = 0;
std::atomic<std::size_t> releases = 0;

void release(void* memory)
{
    if (memory != nullptr)
        ++releases;
    std::free(memory);
}

} // namespace

std::size_t kvxtest::allocationCount()
{
    return count;
}

std::size_t kvxtest::liveAllocations()
{
    return count - releases;
}

void* operator new(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++count;
    return memory;
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}
