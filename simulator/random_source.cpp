#include "simulator/random_source.h"

#include <mutex>
#include <random>

namespace TSRO::random
{
namespace
{

/// The generator of the process; sessions of several threads share it.
class SharedGenerator
{
public:
    std::uint32_t draw()
    {
        const std::lock_guard lock(mutex_);
        return next();
    }

    std::uint64_t drawTwo()
    {
        const std::lock_guard lock(mutex_);
        const std::uint64_t low = next();
        const std::uint64_t high = next();
        return high << 32U | low;
    }

    std::uint64_t count()
    {
        const std::lock_guard lock(mutex_);
        return count_;
    }

private:
    std::uint32_t next()
    {
        ++count_;
        return static_cast<std::uint32_t>(generator_());
    }

    std::mutex mutex_;
    std::mt19937 generator_{std::random_device{}()};
    std::uint64_t count_ = 0;
};

SharedGenerator& generator()
{
    static SharedGenerator instance;
    return instance;
}

} // namespace

double uniformReal()
{
    constexpr double kScale = 1.0 / 9007199254740992.0; // 2^-53: never rounds up to 1
    return static_cast<double>(generator().drawTwo() >> 11U) * kScale;
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
        product = std::uint64_t{generator().draw()} * count;
    while (static_cast<std::uint32_t>(product) < rejected);
    return static_cast<std::uint32_t>(product >> 32U);
}

bool boolean()
{
    return uniformReal() < 0.5;
}

void discard()
{
    generator().draw();
}

std::uint64_t drawCount()
{
    return generator().count();
}

} // namespace TSRO::random
