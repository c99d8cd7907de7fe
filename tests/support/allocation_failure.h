#pragma once

#include <cstddef>

namespace kvxtest
{

/// While it lives, every allocation of this thread with operator new of at least this many bytes fails, those of the
/// libraries included.
class AllocationFailure
{
public:
    explicit AllocationFailure(std::size_t smallestFailing);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
};

} // namespace kvxtest
