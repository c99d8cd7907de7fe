#include "simulator/random_source.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <random>
#include <span>

namespace TSRO::random
{
namespace
{

/// The generator of the process; sessions of several threads share it.
class SharedGenerator
{
public:
    void draw(std::span<std::uint32_t> draws)
    {
        const std::lock_guard lock(mutex_);
        std::generate(draws.begin(), draws.end(), [this] { return static_cast<std::uint32_t>(generator_()); });
    }

private:
    std::mutex mutex_;
    std::mt19937 generator_{std::random_device{}()};
};

SharedGenerator& generator()
{
    static SharedGenerator instance;
    return instance;
}

/// Draws that a thread has fetched from the generator and not used yet. Threads that meet at the generator for every
/// draw would spend more time waiting for each other than simulating.
class Supply
{
public:
    std::uint32_t draw()
    {
        if (used_ == draws_.size()) {
            generator().draw(draws_);
            used_ = 0;
        }
        ++count_;
        return draws_[used_++];
    }

    std::uint64_t drawTwo()
    {
        const std::uint64_t low = draw();
        const std::uint64_t high = draw();
        return high << 32U | low;
    }

    std::uint64_t count() const { return count_; }

private:
    static constexpr std::size_t kFetched = 512;

    std::array<std::uint32_t, kFetched> draws_{};
    std::size_t used_ = kFetched;
    std::uint64_t count_ = 0;
};

// Nothing to construct or to destroy, so that any thread may end, and the library be unloaded, at any time.
constinit thread_local Supply supply;

} // namespace

double uniformReal()
{
    constexpr double kScale = 1.0 / 9007199254740992.0; // 2^-53: never rounds up to 1
    return static_cast<double>(supply.drawTwo() >> 11U) * kScale;
}

double uniformReal(double minimum, double maximum)
{
    return minimum + uniformReal() * (maximum - minimum);
}

std::uint32_t uniformInteger(std::uint32_t count)
{
    // Lemire's method: the high word of a product is uniform once the products below 2^32 mod count are rejected.
    const std::uint32_t rejected = (0U - count) % count;
    std::uint64_t product = 0;
    do
        product = std::uint64_t{supply.draw()} * count;
    while (static_cast<std::uint32_t>(product) < rejected);
    return static_cast<std::uint32_t>(product >> 32U);
}

bool boolean()
{
    return uniformReal() < 0.5;
}

void discard()
{
    supply.draw();
}

std::uint64_t drawCount()
{
    return supply.count();
}

} // namespace TSRO::random
