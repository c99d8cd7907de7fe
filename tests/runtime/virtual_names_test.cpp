#include "runtime/virtual_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace
{

using drivekit::VirtualNames;

constexpr auto kLeast = std::numeric_limits<ViInt32>::min();
constexpr auto kMost = std::numeric_limits<ViInt32>::max();

/// What a token stands for; nothing when it is no virtual name.
std::optional<std::string> meaning(const VirtualNames& names, std::string_view token)
{
    std::string text;
    return names.append(token, text) ? std::optional(text) : std::nullopt;
}

TEST(VirtualNames, AreNoneAtFirst)
{
    const VirtualNames names;
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(meaning(names, ""), std::nullopt);
    EXPECT_EQ(meaning(names, "Core"), std::nullopt);
}

TEST(VirtualNames, AppendWhatTheyStandFor)
{
    VirtualNames names;
    names.add("Core", "OutputChannel1");
    EXPECT_FALSE(names.empty());
    std::string text = "before,";
    EXPECT_TRUE(names.append("Core", text));
    EXPECT_EQ(text, "before,OutputChannel1");
}

TEST(VirtualNames, LeaveTheTextOfATokenThatIsNone)
{
    VirtualNames names;
    names.add("Core", "OutputChannel1");
    names.addRange("Rail", "OutputChannel", 1, 3, 2);
    std::string text = "before";
    for (const char* token : {"", "core", "Core1", "Rail", "Rail0", "Rail4", "Rail01", "Rail1x", "1"}) {
        EXPECT_FALSE(names.append(token, text)) << token;
        EXPECT_EQ(text, "before");
    }
}

TEST(VirtualNames, WithARangeCountFromItsStart)
{
    VirtualNames names;
    names.addRange("Rail", "C", 1, 3, 2);
    EXPECT_FALSE(names.empty());
    EXPECT_EQ(meaning(names, "Rail1"), "C2");
    EXPECT_EQ(meaning(names, "Rail2"), "C3");
    EXPECT_EQ(meaning(names, "Rail3"), "C4");
}

TEST(VirtualNames, TakeBoundsInEitherOrder)
{
    VirtualNames names;
    names.addRange("Rail", "C", 3, 1, 2);
    EXPECT_EQ(meaning(names, "Rail1"), "C2");
    EXPECT_EQ(meaning(names, "Rail3"), "C4");
}

TEST(VirtualNames, MayHaveARangeOfOne)
{
    VirtualNames names;
    names.addRange("Rail", "C", 0, 0, 7);
    EXPECT_EQ(meaning(names, "Rail0"), "C7");
    EXPECT_EQ(meaning(names, "Rail1"), std::nullopt);
    EXPECT_EQ(meaning(names, "Rail00"), std::nullopt);
}

TEST(VirtualNames, MayBeEmptyOrStandForNothing)
{
    VirtualNames names;
    names.add("Gone", "");
    names.addRange("", "", 1, 9, 1);
    EXPECT_EQ(meaning(names, "Gone"), "");
    EXPECT_EQ(meaning(names, "5"), "5");
    EXPECT_EQ(meaning(names, ""), std::nullopt);
}

TEST(VirtualNames, CountBeyond32Bits)
{
    VirtualNames names;
    names.addRange("Up", "C", kLeast, kMost, kMost);
    names.addRange("Down", "C", kLeast, kMost, kLeast);
    EXPECT_EQ(meaning(names, "Up2147483647"), "C6442450942");
    EXPECT_EQ(meaning(names, "Up0"), "C4294967295");
    EXPECT_EQ(meaning(names, "Down0"), "C0");
    EXPECT_EQ(meaning(names, "Down2147483647"), "C2147483647");
}

TEST(VirtualNames, HaveNoIndexBeyond32Bits)
{
    VirtualNames names;
    names.addRange("Rail", "C", 0, kMost, 0);
    for (const char* token : {"Rail2147483648", "Rail4294967296", "Rail99999999999999999999", "Rail-1"})
        EXPECT_EQ(meaning(names, token), std::nullopt) << token;
}

TEST(VirtualNames, MayGiveNegativeNumbers)
{
    VirtualNames names;
    names.addRange("Rail", "C", 0, 5, -2);
    EXPECT_EQ(meaning(names, "Rail0"), "C-2");
    EXPECT_EQ(meaning(names, "Rail2"), "C0");
}

TEST(VirtualNames, OfTwoMeaningsHaveTheOneAddedLast)
{
    VirtualNames names;
    names.add("Core", "first");
    names.add("Core", "second");
    EXPECT_EQ(meaning(names, "Core"), "second");
    names.add("Rail1", "name");
    names.addRange("Rail", "range", 1, 3, 1);
    EXPECT_EQ(meaning(names, "Rail1"), "range1");
    names.add("Rail1", "name");
    EXPECT_EQ(meaning(names, "Rail1"), "name");
    names.addRange("Rail", "later", 2, 2, 9);
    EXPECT_EQ(meaning(names, "Rail2"), "later9");
    EXPECT_EQ(meaning(names, "Rail3"), "range3");
}

TEST(VirtualNames, SplitATokenWhereARangeFits)
{
    VirtualNames names;
    names.addRange("Rail", "A", 12, 12, 1);
    names.addRange("Rail1", "B", 2, 3, 1);
    EXPECT_EQ(meaning(names, "Rail12"), "B1");
    EXPECT_EQ(meaning(names, "Rail13"), "B2");
    names.addRange("Rail", "C", 13, 13, 5);
    EXPECT_EQ(meaning(names, "Rail13"), "C5");
}

TEST(VirtualNames, KeepTheNameAloneFreeOfItsRanges)
{
    VirtualNames names;
    names.add("Rail", "alone");
    names.addRange("Rail", "C", 1, 3, 1);
    EXPECT_EQ(meaning(names, "Rail1"), "C1");
}

TEST(VirtualNames, ALaterRangeTakesOnlyItsOwnIndexesFromAnEarlierOne)
{
    VirtualNames names;
    names.addRange("R", "A", 1, 9, 11);
    names.addRange("R", "B", 4, 6, 1);
    EXPECT_EQ(meaning(names, "R1"), "A11");
    EXPECT_EQ(meaning(names, "R3"), "A13");
    EXPECT_EQ(meaning(names, "R4"), "B1");
    EXPECT_EQ(meaning(names, "R6"), "B3");
    EXPECT_EQ(meaning(names, "R7"), "A17");
    EXPECT_EQ(meaning(names, "R9"), "A19");
    names.addRange("R", "C", 0, 20, 0);
    EXPECT_EQ(meaning(names, "R5"), "C5");
    names.addRange("R", "D", 20, 30, 0);
    EXPECT_EQ(meaning(names, "R19"), "C19");
    EXPECT_EQ(meaning(names, "R20"), "D0");
    names.addRange("R", "E", 0, kMost, 0);
    EXPECT_EQ(meaning(names, "R2147483647"), "E2147483647");
    EXPECT_EQ(meaning(names, "R20"), "E20");
}

TEST(VirtualNames, OfRangesAtRandomHaveWhatWasAddedLast)
{
    std::mt19937 engine(20241121);
    std::uniform_int_distribution<ViInt32> bound(0, 60);
    for (int round = 0; round < 200; ++round) {
        VirtualNames names;
        std::vector<std::string> expected(61);
        for (int range = 0; range < 8; ++range) {
            const ViInt32 one = bound(engine);
            const ViInt32 other = bound(engine);
            const std::string mapTo(1, static_cast<char>('a' + range));
            names.addRange("N", mapTo, one, other, 100);
            for (ViInt32 index = std::min(one, other); index <= std::max(one, other); ++index)
                expected[static_cast<std::size_t>(index)] = mapTo + std::to_string(100 + index - std::min(one, other));
        }
        for (std::size_t index = 0; index < expected.size(); ++index)
            ASSERT_EQ(meaning(names, "N" + std::to_string(index)).value_or(""), expected[index]) << index;
    }
}

} // namespace
