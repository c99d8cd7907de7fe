#include "tests/support/held_allocations.h"

#include "tests/support/allocation_count.h"

std::size_t kvxtest::heldAllocations()
{
    return liveAllocations();
}
