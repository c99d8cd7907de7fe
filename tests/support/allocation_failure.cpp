#include "tests/support/allocation_failure.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace
{

constexpr std::size_t kNoneFails = std::numeric_limits<std::size_t>::max();
thread_local std::size_t smallestFailingSize = kNoneFails;

/// The allocations from `first` to `last` fail, counted since an object began to count them.
struct FailingPlaces
{
    std::size_t first = kNoneFails;
    std::size_t last = kNoneFails;
    std::size_t count = 0;
};

thread_local FailingPlaces failingPlaces;

bool fails(std::size_t size)
{
    ++failingPlaces.count;
    return size >= smallestFailingSize ||
           (failingPlaces.count >= failingPlaces.first && failingPlaces.count <= failingPlaces.last);
}

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

NthAllocationFailure::NthAllocationFailure(std::size_t n, bool andAfter)
{
    failingPlaces = {n == 0 ? kNoneFails : n, andAfter ? kNoneFails : n, 0};
}

NthAllocationFailure::~NthAllocationFailure()
{
    failingPlaces = {};
}

std::size_t NthAllocationFailure::count()
{
    return failingPlaces.count;
}

} // namespace kvxtest

// The program's operators take the place of the libraries' as well; all of them, so that they match in a sanitizer.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return fails(size) ? nullptr : std::malloc(size);
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
