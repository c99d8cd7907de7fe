#include "held_allocations.h"

#include "instrument/allocation_count.h"

std::size_t kvxtest::heldAllocations()
{
    return liveAllocations();
}
