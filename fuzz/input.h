#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace kvxfuzz
{

/// What has to hold; where it does not, the fuzzer has found something.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// What is left of an input that says what to do; zeros behind its end.
class Input
{
public:
    explicit Input(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool isOver() const { return bytes_.empty(); }

    std::uint8_t number()
    {
        if (isOver())
            return 0;
        const std::uint8_t first = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return first;
    }

    /// As many bytes, or those that are left.
    template <class Bytes>
    Bytes take(std::size_t count)
    {
        const auto taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return Bytes(taken.begin(), taken.end());
    }

private:
    std::span<const std::uint8_t> bytes_;
};

} // namespace kvxfuzz
