#pragma once

#include <cstdint>

namespace TSRO::random
{

/// Draws from the one generator of the process, a 32-bit Mersenne Twister that is seeded once from the system's random
/// device. Any thread may draw at any time; no two get the same draw.

/// Uniform in [0, 1), with 53 bits.
double uniformReal();

/// Uniform between `minimum` and `maximum`; one real draw.
double uniformReal(double minimum, double maximum);

/// Uniform in 0 to `count` - 1; `count` is not 0. For a power of two these are the top bits of one 32-bit draw.
std::uint32_t uniformInteger(std::uint32_t count);

/// True and false alike often; one real draw.
bool boolean();

/// A draw that nobody gets.
void discard();

/// How many 32-bit draws the calling thread has used; a real draw takes two.
std::uint64_t drawCount();

} // namespace TSRO::random
