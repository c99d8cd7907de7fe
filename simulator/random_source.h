#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace TSRO
{

/// The bytes that processors pass to each other at once.
inline constexpr std::size_t kCacheLine = 64;

/// What std::generate_canonical<double, 53> makes of a generator's two next 32-bit draws, the first of which is `low`.
/// At the very top, where rounding leads to 1, the largest number below it.
constexpr double canonicalReal(std::uint32_t low, std::uint32_t high)
{
    constexpr double kWord = 4294967296.0; // 2^32
    constexpr double kLargestBelowOne = 1.0 - std::numeric_limits<double>::epsilon() / 2.0;
    // Only the sum rounds.
    return std::min((low + high * kWord) / (kWord * kWord), kLargestBelowOne);
}

/// Draws from the one generator of the process, a 32-bit Mersenne Twister that is seeded once from the system's random
/// device. No two sources get the same draw. A source is used by one thread at a time; those of several threads do not
/// wait for each other but when they fetch draws, many at once, and share no cache line.
class alignas(kCacheLine) RandomSource
{
public:
    RandomSource() = default;
    RandomSource(const RandomSource&) = delete;
    RandomSource& operator=(const RandomSource&) = delete;
    ~RandomSource() = default;

    /// Starts the generator over with a seed instead of the system's, for values that can be foretold. Draws that a
    /// source has fetched stay.
    static void seedGenerator(std::uint32_t seed);

    /// Uniform in [0, 1): canonicalReal() of the next two draws.
    double uniformReal();

    /// Uniform between `minimum` and `maximum`; one real draw.
    double uniformReal(double minimum, double maximum);

    /// Uniform in 0 to `count` - 1; `count` is not 0. For a power of two these are the top bits of one 32-bit draw.
    std::uint32_t uniformInteger(std::uint32_t count);

    /// True and false alike often; one real draw.
    bool boolean();

    /// A draw that nobody gets.
    void discard();

    /// How many 32-bit draws have been used; a real draw takes two.
    std::uint64_t drawCount() const { return used_; }

private:
    static constexpr std::size_t kFetched = 1024;

    std::uint32_t draw();

    std::array<std::uint32_t, kFetched> draws_{};
    std::uint64_t used_ = 0;
};

} // namespace TSRO
