#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace
{

std::atomic<std::size_t> count = 0;
std::atomic<std::size_t> releases = 0;
std::atomic<std::size_t> bytes = 0;

// In front of every block stands its size, in as much room as keeps the block aligned.
constexpr std::size_t kSizeRoom = alignof(std::max_align_t);
static_assert(kSizeRoom >= sizeof(std::size_t));

void* allocate(std::size_t size)
{
    void* const room = size > SIZE_MAX - kSizeRoom ? nullptr : std::malloc(kSizeRoom + size);
    if (room == nullptr)
        throw std::bad_alloc();
    std::memcpy(room, &size, sizeof size);
    ++count;
    bytes += size;
    return static_cast<char*>(room) + kSizeRoom;
}

void release(void* memory)
{
    if (memory == nullptr)
        return;
    void* const room = static_cast<char*>(memory) - kSizeRoom;
    std::size_t size = 0;
    std::memcpy(&size, room, sizeof size);
    ++releases;
    bytes -= size;
    std::free(room);
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

std::size_t kvxtest::liveBytes()
{
    return bytes;
}

void* operator new(std::size_t size)
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}
