#include "instrument/fixed_point.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace TSRO
{
namespace
{

constexpr std::uint64_t kMillion = 1'000'000;
static_assert(kDecimals == 6); // an even number: they are spelled in pairs

/// A number in millionths.
struct FixedPoint
{
    std::uint64_t whole;
    std::uint32_t millionths;
};

FixedPoint rounded(double number)
{
    constexpr std::uint64_t kLowHalf = 0xFFFF'FFFFU;
    constexpr std::uint64_t kHalfMillionth = std::uint64_t{1} << 63U;
    const auto whole = static_cast<std::uint32_t>(number);
    // Both exact: nothing is left of 2^-64.
    const auto fraction = static_cast<std::uint64_t>((number - whole) * 0x1p64);
    // The product with a million has 84 bits: 20 of the result, 64 that tell how it is rounded.
    const std::uint64_t low = (fraction & kLowHalf) * kMillion;
    const std::uint64_t high = (fraction >> 32U) * kMillion + (low >> 32U);
    const std::uint64_t rest = (high << 32U) | (low & kLowHalf);
    auto millionths = static_cast<std::uint32_t>(high >> 32U);
    if (rest > kHalfMillionth || (rest == kHalfMillionth && millionths % 2 != 0))
        ++millionths;
    if (millionths == kMillion)
        return {std::uint64_t{whole} + 1, 0};
    return {whole, millionths};
}

/// The digits of the numbers below 100.
constexpr auto kPairs = [] {
    std::array<std::array<char, 2>, 100> pairs{};
    for (std::size_t number = 0; number < pairs.size(); ++number)
        pairs[number] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
    return pairs;
}();

} // namespace

void appendFixedPoint(std::string& line, double number)
{
    // Written from the last digit to the first: ten in front of the point at most.
    constexpr std::size_t kLongest = 10 + 1 + kDecimals;
    std::array<char, kLongest> text; // NOLINT(cppcoreguidelines-pro-type-member-init): only what is written is read
    char* first = text.data() + text.size();
    FixedPoint parts = rounded(number);
    for (int i = 0; i < kDecimals; i += 2) {
        first = std::copy_n(kPairs[parts.millionths % 100].begin(), 2, first - 2) - 2;
        parts.millionths /= 100;
    }
    *--first = '.';
    do {
        *--first = static_cast<char>('0' + parts.whole % 10);
        parts.whole /= 10;
    } while (parts.whole != 0);
    line.append(first, text.data() + text.size());
}

} // namespace TSRO
