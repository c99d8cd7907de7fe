#include "simulator/random_source.h"

#include "base/spin_lock.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <random>
#include <span>

namespace TSRO
{
namespace
{

/// The generator of the process, seeded from the system when the first draws are fetched.
class SharedGenerator
{
public:
    void seed(std::uint32_t seed)
    {
        const std::lock_guard guard(lock_);
        generator_.emplace(seed);
    }

    void draw(std::span<std::uint32_t> draws)
    {
        const std::lock_guard guard(lock_);
        if (!generator_)
            generator_.emplace(std::random_device{}());
        std::generate(draws.begin(), draws.end(), [this] { return static_cast<std::uint32_t>((*generator_)()); });
    }

private:
    base::SpinLock lock_;
    std::optional<std::mt19937> generator_;
};

constinit SharedGenerator generator;

} // namespace

void RandomSource::seedGenerator(std::uint32_t seed)
{
    generator.seed(seed);
}

std::uint32_t RandomSource::draw()
{
    const std::size_t place = used_ % kFetched;
    if (place == 0)
        generator.draw(draws_);
    ++used_;
    return draws_[place];
}

double RandomSource::uniformReal()
{
    const std::uint32_t low = draw();
    const std::uint32_t high = draw();
    return canonicalReal(low, high);
}

double RandomSource::uniformReal(double minimum, double maximum)
{
    return minimum + uniformReal() * (maximum - minimum);
}

std::uint32_t RandomSource::uniformInteger(std::uint32_t count)
{
    // The high word of the product is uniform once the products below 2^32 mod count are rejected.
    const std::uint32_t rejected = (0U - count) % count;
    std::uint64_t product = 0;
    do
        product = std::uint64_t{draw()} * count;
    while (static_cast<std::uint32_t>(product) < rejected);
    return static_cast<std::uint32_t>(product >> 32U);
}

bool RandomSource::boolean()
{
    return uniformReal() < 0.5;
}

void RandomSource::discard()
{
    draw();
}

} // namespace TSRO
