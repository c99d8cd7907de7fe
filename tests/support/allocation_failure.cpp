#include "tests/support/allocation_failure.h"

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

// The program's operators take the place of the libraries' as well; all of them, so that they match in a sanitizer.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return size >= smallestFailingSize ? nullptr : std::malloc(size);
}

void* operator new(std::size_t size)
{
    void* const memory = operator new(size, std::nothrow);
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
