#include "allocation_failure.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace
{

constexpr std::size_t kNoneFails = std::numeric_limits<std::size_t>::max();
thread_local std::size_t smallestFailingSize = kNoneFails;

} // namespace

namespace kvxtest
{

AllocationFailure::AllocationFailure(std::size_t smallestFailing)
{
    smallestFailingSize = smallestFailing;
}

AllocationFailure::~AllocationFailure()
{
    smallestFailingSize = kNoneFails;
}

} // namespace kvxtest

// The program's operator new takes the place of the libraries' as well.
void* operator new(std::size_t size)
{
    void* const memory = size >= smallestFailingSize ? nullptr : std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
