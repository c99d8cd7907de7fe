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

/// While it lives, the n-th allocation of this thread with operator new from now on fails, the libraries' included.
class NthAllocationFailure
{
public:
    /// @param n         counted from 1; 0: none fails, they are only counted
    /// @param andAfter  whether all behind it fail as well
    explicit NthAllocationFailure(std::size_t n, bool andAfter = false);
    ~NthAllocationFailure();
    NthAllocationFailure(const NthAllocationFailure&) = delete;
    NthAllocationFailure& operator=(const NthAllocationFailure&) = delete;

    /// How many there have been.
    static std::size_t count();
};

} // namespace kvxtest
