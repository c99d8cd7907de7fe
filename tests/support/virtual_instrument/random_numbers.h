#pragma once

#include <cstddef>
#include <random>

namespace kvxtest
{

/// The same sequence on every host: a distribution of the standard library would not be.
class RandomNumbers
{
public:
    explicit RandomNumbers(unsigned int seed) : engine_(seed) {}

    std::size_t below(std::size_t limit) { return engine_() % limit; }
    int between(int least, int most)
    {
        return least + static_cast<int>(below(static_cast<std::size_t>(most - least) + 1));
    }

private:
    std::mt19937 engine_;
};

} // namespace kvxtest
