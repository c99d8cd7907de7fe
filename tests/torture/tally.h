#pragma once

#include <cstddef>
#include <string>

namespace kvxtest
{

/// What an attack has brought about. At its end it expects every number but the first to be zero and prints its row of
/// the table that ./test.sh shows.
class Tally
{
public:
    explicit Tally(std::string attack);
    ~Tally();
    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;

    /// Counts a result that is not what it should be, and says which.
    void expect(bool isRight, const std::string& what);

    std::size_t injections = 0;
    /// Programs that a signal ends, exceptions that nobody has been told to expect. A crash of the test itself ends it,
    /// and its row is missing.
    std::size_t crashes = 0;
    /// Sessions, handles, locks, memory or descriptors that stay behind.
    std::size_t leaks = 0;
    /// Calls that take longer than the time-out and a second.
    std::size_t hangs = 0;
    /// Replies used for another query, statuses without a record and records without a status, damaged files.
    std::size_t wrongResults = 0;

private:
    std::string attack_;
};

/// Whether this run is the long one, in which nothing is left out: KVX_TORTURE is "whole".
bool isWholeTorture();

} // namespace kvxtest
