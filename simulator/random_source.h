#pragma once

#include <cstdint>

namespace TSRO::random
{

/// Draws from the one generator of the process, a 32-bit Mersenne Twister that is seeded once from the system's random
/// device. Any thread may draw at any time.

/// Uniform in [0, 1), with 53 bits.
double uniformReal();

/// Uniform in 0 to `count` - 1; `count` is not 0.
std::uint32_t uniformInteger(std::uint32_t count);

/// True and false alike often; one real draw.
bool boolean();

} // namespace TSRO::random
