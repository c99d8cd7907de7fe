#pragma once

#include <cstddef>
#include <string_view>

/// What attacks on the driver have done to it: every number but the first is to be zero. Each test of this folder adds
/// a row to the table that ./test.sh prints at its end.
namespace kvxtest
{

struct Tally
{
    std::size_t injections = 0;
    /// Exceptions that nobody has been told to expect; a crash proper ends the program, whose row is missing then.
    std::size_t crashes = 0;
    /// Sessions, handles, locks, memory or descriptors that stay behind.
    std::size_t leaks = 0;
    /// Calls that take longer than the time-out and a second.
    std::size_t hangs = 0;
    /// Replies used for another query, statuses without a record and records without a status, and other lies.
    std::size_t wrong = 0;
};

/// Expects zeros and prints the row.
void conclude(std::string_view attack, const Tally& tally);

/// Whether this run is the long one, in which nothing is left out: KVX_TORTURE is "whole".
bool isWholeTorture();

} // namespace kvxtest
