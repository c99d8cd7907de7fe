#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace TSRO
{

/// The bytes that processors pass to each other at once.
inline constexpr std::size_t kCacheLine = 64;

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

    /// How many 32-bit draws have been used; a real draw takes two.
    std::uint64_t drawCount() const { return used_; }

private:
    static constexpr std::size_t kFetched = 1024;

    std::uint32_t draw();
    std::uint64_t drawTwo();

    std::array<std::uint32_t, kFetched> draws_{};
    std::uint64_t used_ = 0;
};

} // namespace TSRO
