// The bounds of the counts are eight standard deviations and more away from what is expected: a uniform source misses
// one of them less than once in 10^14 runs.

#include "simulator/random_source.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using TSRO::canonicalReal;

constexpr int kValues = 10000;

TEST(UniformReal, LiesBetweenZeroAndOneWithoutOne)
{
    TSRO::RandomSource source;
    for (int i = 0; i < kValues; ++i) {
        const double value = source.uniformReal();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
    }
}

TEST(CanonicalReal, RoundsToTheNearestOfItsFiftyThreeBits)
{
    EXPECT_EQ(canonicalReal(0, 0), 0.0);
    EXPECT_EQ(canonicalReal(1, 0), 0x1p-64);
    EXPECT_EQ(canonicalReal(0, 1), 0x1p-32);
    EXPECT_EQ(canonicalReal(0, 0x80000000), 0.5);
    // The last bit of [0.5, 1) is 2^-53, 2^11 of the low word; halves go to the even neighbour.
    EXPECT_EQ(canonicalReal(0x3FF, 0x80000000), 0.5);
    EXPECT_EQ(canonicalReal(0x400, 0x80000000), 0.5);
    EXPECT_EQ(canonicalReal(0x401, 0x80000000), 0.5 + 0x1p-53);
    EXPECT_EQ(canonicalReal(0xC00, 0x80000000), 0.5 + 0x1p-52);
}

TEST(CanonicalReal, NeverReachesOne)
{
    const double largest = std::nextafter(1.0, 0.0);
    EXPECT_EQ(canonicalReal(0xFFFFFFFF, 0xFFFFFFFF), largest);
    EXPECT_EQ(canonicalReal(0xFFFFFC00, 0xFFFFFFFF), largest);
    EXPECT_EQ(canonicalReal(0xFFFFFBFF, 0xFFFFFFFF), largest);
    EXPECT_EQ(canonicalReal(0xFFFFF3FF, 0xFFFFFFFF), std::nextafter(largest, 0.0));
}

TEST(UniformReal, IsTheStandardsCanonicalValueOfTheDraws)
{
    for (const std::uint32_t seed : {1U, 5489U, 4294967295U}) {
        TSRO::RandomSource::seedGenerator(seed);
        TSRO::RandomSource source;
        std::mt19937 generator(seed);
        for (int i = 0; i < kValues; ++i) {
            const double expected = std::generate_canonical<double, 53>(generator);
            ASSERT_EQ(source.uniformReal(), expected) << "draw " << i << " of seed " << seed;
        }
    }
}

TEST(UniformReal, FillsEveryTenthAlike)
{
    TSRO::RandomSource source;
    std::array<int, 10> counts{};
    for (int i = 0; i < kValues; ++i)
        ++counts[static_cast<std::size_t>(source.uniformReal() * 10.0)];
    for (const int count : counts) {
        EXPECT_GT(count, 700);
        EXPECT_LT(count, 1300);
    }
}

TEST(UniformReal, HasMoreThanThirtyTwoBits)
{
    TSRO::RandomSource source;
    // A multiple of 2^-32 in every one of the draws would be a source of 32 bits.
    int finer = 0;
    for (int i = 0; i < kValues; ++i) {
        const double scaled = source.uniformReal() * 4294967296.0;
        finer += scaled != static_cast<double>(static_cast<std::uint64_t>(scaled)) ? 1 : 0;
    }
    EXPECT_GT(finer, kValues / 2);
}

TEST(UniformRealBetween, LiesBetweenItsEndsAndReachesBothOuterTenths)
{
    TSRO::RandomSource source;
    std::array<int, 10> counts{};
    for (int i = 0; i < kValues; ++i) {
        const double value = source.uniformReal(-2.0, 3.0);
        ASSERT_GE(value, -2.0);
        ASSERT_LE(value, 3.0);
        ++counts[std::min<std::size_t>(9, static_cast<std::size_t>((value + 2.0) * 2.0))];
    }
    for (const int count : counts) {
        EXPECT_GT(count, 700);
        EXPECT_LT(count, 1300);
    }
}

TEST(UniformRealBetween, IsTheEndWhenBothEndsAreEqual)
{
    TSRO::RandomSource source;
    EXPECT_EQ(source.uniformReal(5.0, 5.0), 5.0);
}

class UniformInteger : public testing::TestWithParam<std::uint32_t>
{
};

TEST_P(UniformInteger, ReachesEveryNumberBelowTheCountAlikeOften)
{
    TSRO::RandomSource source;
    const std::uint32_t count = GetParam();
    std::vector<int> counts(count);
    for (int i = 0; i < kValues; ++i) {
        const std::uint32_t value = source.uniformInteger(count);
        ASSERT_LT(value, count);
        ++counts[value];
    }
    const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
    EXPECT_GT(*least, static_cast<int>(kValues / count * 6 / 10));
    EXPECT_LT(*most, static_cast<int>(kValues / count * 14 / 10 + 1));
}

INSTANTIATE_TEST_SUITE_P(Counts, UniformInteger, testing::Values(1U, 2U, 3U, 4U, 6U, 8U, 11U),
                         [](const testing::TestParamInfo<std::uint32_t>& count) {
                             return "Below" + std::to_string(count.param);
                         });

TEST(LargeUniformInteger, IsRejectedWhereItWouldBeMoreLikelyThanOthers)
{
    TSRO::RandomSource source;
    // With 3 * 2^30 numbers a plain high word of the product would favour every third one by two to one.
    constexpr std::uint32_t kCount = 3U << 30U;
    std::array<int, 3> counts{};
    for (int i = 0; i < kValues; ++i) {
        const std::uint32_t value = source.uniformInteger(kCount);
        ASSERT_LT(value, kCount);
        ++counts[value % 3];
    }
    for (const int count : counts) {
        EXPECT_GT(count, 2900);
        EXPECT_LT(count, 3800);
    }
}

/// The high word of a draw's product with the count; a draw whose low word is below 2^32 modulo the count is rejected.
std::uint32_t integerBelow(std::uint32_t count, std::mt19937& generator)
{
    const std::uint64_t rejected = (std::uint64_t{1} << 32U) % count;
    for (;;) {
        const std::uint64_t product = std::uint64_t{generator()} * count;
        if ((product & 0xFFFFFFFFU) >= rejected)
            return static_cast<std::uint32_t>(product >> 32U);
    }
}

TEST(SeededSource, MakesIntegersOfTheHighWordOfADrawsProduct)
{
    for (const std::uint32_t count : {1U, 2U, 3U, 7U, 8U, 256U, 511U, 0x80000000U, 0xC0000000U, 0xFFFFFFFFU}) {
        TSRO::RandomSource::seedGenerator(20240611);
        TSRO::RandomSource source;
        std::mt19937 generator(20240611);
        for (int i = 0; i < 3000; ++i)
            ASSERT_EQ(source.uniformInteger(count), integerBelow(count, generator))
                << "draw " << i << " below " << count;
    }
}

TEST(SeededSource, MakesEveryKindOfValueOfTheNextDraws)
{
    TSRO::RandomSource::seedGenerator(20240612);
    TSRO::RandomSource source;
    std::mt19937 generator(20240612);
    const auto real = [&generator] { return std::generate_canonical<double, 53>(generator); };
    std::uint64_t used = 0;
    for (int i = 0; i < 3000; ++i) {
        ASSERT_EQ(source.uniformReal(), real());
        ASSERT_EQ(source.boolean(), real() < 0.5);
        source.discard();
        generator.discard(1);
        ASSERT_EQ(source.uniformReal(0.001, 3600.0), 0.001 + real() * (3600.0 - 0.001));
        ASSERT_EQ(source.uniformInteger(8), generator() >> 29U);
        used += 2 + 2 + 1 + 2 + 1;
        ASSERT_EQ(source.drawCount(), used);
    }
}

// ---- One generator

/// The next draws of 32 bits.
std::vector<std::uint32_t> drawsOf(TSRO::RandomSource& source, std::uint64_t count)
{
    std::vector<std::uint32_t> draws;
    const std::uint64_t before = source.drawCount();
    while (draws.size() < count) {
        // Of the largest count, integers are one less than the draws; the draw 0 is passed over.
        const std::uint32_t draw = source.uniformInteger(0xFFFFFFFFU) + 1;
        draws.resize(static_cast<std::size_t>(source.drawCount() - before));
        draws.back() = draw;
    }
    return draws;
}

TEST(SeededSource, DrawsFromTheStandardsMersenneTwister)
{
    TSRO::RandomSource::seedGenerator(5489);
    TSRO::RandomSource source;
    const std::vector<std::uint32_t> draws = drawsOf(source, 10000);
    EXPECT_EQ(draws.front(), 3499211612U);
    // What the C++ standard requires of the default seed.
    EXPECT_EQ(draws.back(), 4123659995U);
}

/// A word of the generator's state, from the draw that was made of it.
std::uint32_t stateOf(std::uint32_t draw)
{
    draw ^= draw >> 18U;
    draw ^= (draw << 15U) & 0xEFC60000U;
    std::uint32_t word = draw;
    for (int i = 0; i < 4; ++i)
        word = draw ^ ((word << 7U) & 0x9D2C5680U);
    draw = word;
    for (int i = 0; i < 2; ++i)
        word = draw ^ (word >> 11U);
    return word;
}

TEST(RandomSource, IsFedByOneGeneratorThatIsSeededOnce)
{
    // As many draws at a time as a source fetches: they follow each other, whatever the generator was seeded with.
    TSRO::RandomSource first;
    TSRO::RandomSource second;
    std::vector<std::uint32_t> words;
    for (TSRO::RandomSource* source : {&first, &second, &first, &second})
        for (const std::uint32_t draw : drawsOf(*source, 1024))
            words.push_back(stateOf(draw));
    for (std::size_t i = 0; i + 624 < words.size(); ++i) {
        const std::uint32_t joined = (words[i] & 0x80000000U) | (words[i + 1] & 0x7FFFFFFFU);
        const std::uint32_t twisted = (joined >> 1U) ^ (joined % 2 != 0 ? 0x9908B0DFU : 0U);
        ASSERT_EQ(words[i + 624], words[i + 397] ^ twisted) << "draw " << i + 624;
    }
}

TEST(Boolean, IsTrueAndFalseAlikeOften)
{
    TSRO::RandomSource source;
    int trues = 0;
    for (int i = 0; i < kValues; ++i)
        trues += source.boolean() ? 1 : 0;
    EXPECT_GT(trues, 4500);
    EXPECT_LT(trues, 5500);
}

TEST(RandomSource, GivesThreadsDifferentDraws)
{
    constexpr std::size_t kThreads = 8;
    constexpr std::size_t kDrawsOfAThread = 2000;
    std::array<std::vector<double>, kThreads> draws;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (auto& own : draws)
        threads.emplace_back([&own] {
            TSRO::RandomSource source;
            for (std::size_t i = 0; i < kDrawsOfAThread; ++i) {
                own.push_back(source.uniformReal());
                static_cast<void>(source.uniformInteger(6));
                static_cast<void>(source.boolean());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    std::set<double> all;
    for (const auto& own : draws)
        all.insert(own.begin(), own.end());
    // Two draws of 53 bits may be equal by chance; more than two pairs never are.
    EXPECT_GE(all.size() + 2, kThreads * kDrawsOfAThread);
}

} // namespace
