#include "tests/support/driver/selector_fixture.h"

#include <limits>

// What virtual names and the built-in aliases make of selectors.

namespace
{

using namespace kvxtest;

constexpr auto kLeast = std::numeric_limits<ViInt32>::min();
constexpr auto kMost = std::numeric_limits<ViInt32>::max();

const std::vector<std::string> kAllChannels = {"OutputChannel1", "OutputChannel2", "OutputChannel3",
                                               "OutputChannel4", "OutputChannel5", "OutputChannel6"};

class ChannelAliases : public SelectorTest
{
};

TEST_F(ChannelAliases, StandForThePhysicalNames)
{
    for (std::size_t i = 0; i < kAllChannels.size(); ++i)
        expectNames("CH" + std::to_string(i + 1), {kAllChannels[i]});
    expectNames("CH6,CH1", {"OutputChannel6", "OutputChannel1"});
    expectNames(" [ CH2 , OutputChannel3 ]", {"OutputChannel2", "OutputChannel3"});
}

TEST_F(ChannelAliases, AreExactWholeTokens)
{
    for (const char* name :
         {"ch1", "Ch1", "cH1", "CH0", "CH7", "CH9", "CH01", "CH11", "CH", "XCH1", "CH1x", "_CH1", "!CH1", "CHA", "CH_"})
        expectUnknown(name, name);
}

TEST_F(ChannelAliases, MayBeginAndEndRanges)
{
    expectNames("CH1-CH3", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectNames("CH1-3", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectNames("CH5-OutputChannel6", {"OutputChannel5", "OutputChannel6"});
    expectNames("OutputChannel1-CH2", {"OutputChannel1", "OutputChannel2"});
    expectNames("CH1-6", kAllChannels);
    expectError("CH3-CH1", code(0xBFFA0064), kStartIndex);
    expectError("CH2-2", code(0xBFFA0064), kStartIndex);
    expectError("ch1-CH3", code(0xBFFA0064), kBaseNames);
    expectUnknown("CH1-7", "OutputChannel7");
    // An alias that is none leaves two bases: "OutputChannel" and "CH".
    expectError("CH1-CH7", code(0xBFFA0064), kBaseNames);
}

TEST_F(ChannelAliases, AreDuplicatesOfTheirNames)
{
    expectError("CH1,CH1", code(0xBFFA0066), kBadlyFormed);
    expectError("CH1,OutputChannel1", code(0xBFFA0066), kBadlyFormed);
    expectError("CH1-2,OutputChannel2", code(0xBFFA0064), kOverlap);
}

TEST_F(ChannelAliases, DoNotMendWhatIsWrong)
{
    expectError("CH1:CH2", code(0xBFFA0063), kLevels);
    expectError("CH1;CH2", code(0xBFFA0066), kBadlyFormed);
    expectError("CH1 CH2", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(ChannelAliases, NameASingleChannel)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    EXPECT_EQ(resolveSingleSelector(session, "CH4", name), VI_SUCCESS);
    EXPECT_EQ(name.text(), "OutputChannel4");
}

class VirtualSelectors : public SelectorTest
{
};

TEST_F(VirtualSelectors, StandForTheirText)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}, {"Pair", "OutputChannel3,OutputChannel2", {}}});
    expectNames("Core", {"OutputChannel1"});
    expectNames("Pair", {"OutputChannel3", "OutputChannel2"});
    expectNames("Pair,Core", {"OutputChannel3", "OutputChannel2", "OutputChannel1"});
    expectNames(" [ Core , OutputChannel6 ]", {"OutputChannel1", "OutputChannel6"});
    expectNames("OutputChannel1", {"OutputChannel1"});
}

TEST_F(VirtualSelectors, AreWholeTokensInTheirExactCase)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}});
    for (const char* name : {"core", "CORE", "MyCore", "Core1", "Core_", "!Core", "Cor"})
        expectUnknown(name, name);
}

TEST_F(VirtualSelectors, AreReplacedInOnePass)
{
    setVirtualNames({{"A", "B", {}}, {"B", "OutputChannel1", {}}});
    expectUnknown("A", "B");
    expectNames("B", {"OutputChannel1"});
}

TEST_F(VirtualSelectors, MayMapToAliases)
{
    setVirtualNames({{"Aux", "CH4", {}},
                     {"Pair", "[ CH6 , CH1 ]", {}},
                     {"Run", "CH2-3", {}},
                     {"All", "CH1-CH6", {}},
                     {"Rail", "CH", {{1, 3, 4}}},
                     {"Long", "OutputChannel2,CH", {{7, 7, 3}}}});
    expectNames("Aux", {"OutputChannel4"});
    expectNames("Pair", {"OutputChannel6", "OutputChannel1"});
    expectNames("Run,CH5", {"OutputChannel2", "OutputChannel3", "OutputChannel5"});
    expectNames("All", kAllChannels);
    expectNames("Rail3,Rail1", {"OutputChannel6", "OutputChannel4"});
    expectNames("Long7", {"OutputChannel2", "OutputChannel3"});
    expectError("Aux,CH4", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(VirtualSelectors, MapToAliasesThatAreWholeTokensOnly)
{
    for (const char* text : {"ch4", "CH7", "CH04", "xCH4", "CH4x", "!CH4", "CH"}) {
        setVirtualNames({{"Aux", text, {}}});
        expectUnknown("Aux", text);
    }
}

TEST_F(VirtualSelectors, InTheTextOfAnotherAreNotLookedUp)
{
    setVirtualNames({{"Aux", "CH4", {}}, {"CH4", "OutputChannel1", {}}, {"OutputChannel4", "OutputChannel2", {}}});
    expectNames("Aux", {"OutputChannel4"});
    expectNames("CH4", {"OutputChannel1"});
    setVirtualNames({{"CH1", "CH2", {}}, {"CH2", "CH1", {}}});
    expectNames("CH1,CH2", {"OutputChannel2", "OutputChannel1"});
}

TEST_F(VirtualSelectors, MayBePhysicalNames)
{
    setVirtualNames({{"OutputChannel1", "OutputChannel2", {}}, {"OutputChannel2", "OutputChannel1", {}}});
    expectNames("OutputChannel1", {"OutputChannel2"});
    expectNames("OutputChannel1,OutputChannel2", {"OutputChannel2", "OutputChannel1"});
    expectError("OutputChannel1-OutputChannel2", code(0xBFFA0064), kStartIndex);
    // What an alias stands for is not looked up again.
    expectNames("CH1", {"OutputChannel1"});
}

TEST_F(VirtualSelectors, ComeBeforeTheAliases)
{
    setVirtualNames({{"CH1", "OutputChannel4", {}}, {"CH", "OutputChannel", {{2, 2, 5}}}});
    expectNames("CH1", {"OutputChannel4"});
    expectNames("CH2", {"OutputChannel5"});
    expectNames("CH3", {"OutputChannel3"});
}

TEST_F(VirtualSelectors, OfTheSameNameTheLaterHolds)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}, {"Core", "OutputChannel2", {}}});
    expectNames("Core", {"OutputChannel2"});
}

TEST_F(VirtualSelectors, OfANamedEntryComeBeforeThoseOfTheDriversOwn)
{
    configurationStore().driverSession.emplace().virtualNames = {{"Core", "OutputChannel1", {}},
                                                                 {"Own", "OutputChannel5", {}}};
    StoredDriverSession& bench = configurationStore().furtherSessions.emplace_back();
    bench.name = "BenchSupply";
    bench.virtualNames = {{"Core", "OutputChannel2", {}}};
    ASSERT_EQ(session.ResolveConfiguration("BenchSupply", ""), VI_SUCCESS);
    expectNames("Core", {"OutputChannel2"});
    expectNames("Own", {"OutputChannel5"});
}

TEST_F(VirtualSelectors, MayStandForRanges)
{
    setVirtualNames({{"All", "OutputChannel1-6", {}}, {"Two", "OutputChannel1-OutputChannel2", {}}});
    expectNames("All", kAllChannels);
    expectNames("OutputChannel3,Two", {"OutputChannel3", "OutputChannel1", "OutputChannel2"});
    expectError("All,OutputChannel1", code(0xBFFA0064), kOverlap);
    expectError("OutputChannel2,Two", code(0xBFFA0064), kOverlap);
    expectError("Two,Two", code(0xBFFA0064), kOverlap);
}

TEST_F(VirtualSelectors, ThatRepeatANameAreBadlyFormed)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}, {"Pair", "OutputChannel1,OutputChannel2", {}}});
    expectError("Pair,Core", code(0xBFFA0066), kBadlyFormed);
    expectError("OutputChannel1,Core", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(VirtualSelectors, MayBeginAndEndRanges)
{
    setVirtualNames({{"First1", "OutputChannel2", {}}, {"Last9", "OutputChannel4", {}}, {"6", "5", {}}});
    expectNames("First1-Last9", {"OutputChannel2", "OutputChannel3", "OutputChannel4"});
    expectNames("First1-4", {"OutputChannel2", "OutputChannel3", "OutputChannel4"});
    // A number is a token, too.
    expectNames("OutputChannel4-6", {"OutputChannel4", "OutputChannel5"});
    expectError("Last9-First1", code(0xBFFA0064), kStartIndex);
}

TEST_F(VirtualSelectors, MakeNoWellFormedSelectorOfABadlyFormedOne)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}});
    for (const char* selector : {"Core-3", "Core-OutputChannel3", "OutputChannel1-Core", "Core;", "Core Core"})
        expectError(selector, code(0xBFFA0066), kBadlyFormed);
}

TEST_F(VirtualSelectors, WhoseTextBreaksTheSelectorAreBadlyFormed)
{
    for (const char* text :
         {"", " ", ";", "OutputChannel1,", ",", "-", "OutputChannel1-", "OutputChannel1 OutputChannel2",
          "[[OutputChannel1]]", "OutputChannel1:", "OutputChannel1] "})
    {
        setVirtualNames({{"Core", text, {}}});
        expectError("Core", code(0xBFFA0066), kBadlyFormed);
        expectError("OutputChannel6,Core", code(0xBFFA0066), kBadlyFormed);
    }
}

TEST_F(VirtualSelectors, InsertTheirTextAsItStands)
{
    setVirtualNames({{"Box", "[OutputChannel1,OutputChannel2]", {}}, {"Spaced", "\tOutputChannel3 ", {}}});
    expectNames("Box", {"OutputChannel1", "OutputChannel2"});
    expectError("Box,OutputChannel3", code(0xBFFA0066), kBadlyFormed);
    expectError("[Box]", code(0xBFFA0066), kBadlyFormed);
    expectNames("Spaced,OutputChannel1", {"OutputChannel3", "OutputChannel1"});
}

TEST_F(VirtualSelectors, MayNotAddALevel)
{
    setVirtualNames({{"Path", "OutputChannel1:OutputChannel2", {}}});
    expectError("Path", code(0xBFFA0063), kLevels);
}

TEST_F(VirtualSelectors, ThatLeadNowhereAreNamedByTheirText)
{
    setVirtualNames({{"Core", "Nowhere", {}}, {"Far", "OutputChannel5-2000000000", {}}});
    expectUnknown("Core", "Nowhere");
    expectUnknown("Far", "OutputChannel7");
}

TEST_F(VirtualSelectors, MayHoldNumbersBeyond32Bits)
{
    setVirtualNames({{"Far", "OutputChannel1-2147483648", {}}});
    EXPECT_EQ(resolve(session, "Far"), exceptionIs("stoi argument out of range"));
}

TEST_F(VirtualSelectors, NameASingleChannelOrTooMany)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}, {"Pair", "OutputChannel1,OutputChannel2", {}}});
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    EXPECT_EQ(resolveSingleSelector(session, "Core", name), VI_SUCCESS);
    EXPECT_EQ(name.text(), "OutputChannel1");
    EXPECT_EQ(resolveSingleSelector(session, "Pair", name), code(0xBFFA0066));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0066), kSingle}));
}

TEST_F(VirtualSelectors, CannotMakeABlankSelectorNameAChannel)
{
    setVirtualNames({{"", "OutputChannel1", {}}});
    expectError("", code(0xBFFA0044), kNone);
    expectError(nullptr, code(0xBFFA0044), kNone);
    expectError(" ", code(0xBFFA0044), kNone);
}

TEST_F(VirtualSelectors, WithARangeTakeAnIndex)
{
    setVirtualNames({{"Rail", "OutputChannel", {{1, 3, 2}}}});
    expectNames("Rail1", {"OutputChannel2"});
    expectNames("Rail3,Rail2", {"OutputChannel4", "OutputChannel3"});
    for (const char* name : {"Rail", "Rail0", "Rail4", "Rail01", "Rail001", "Rail10", "rail1", "MyRail1"})
        expectUnknown(name, name);
}

TEST_F(VirtualSelectors, WithARangeMayBeginAndEndRanges)
{
    setVirtualNames({{"Rail", "OutputChannel", {{1, 3, 2}}}});
    expectNames("Rail1-Rail3", {"OutputChannel2", "OutputChannel3", "OutputChannel4"});
    // The number alone is no virtual name: it counts as it stands.
    expectNames("Rail1-3", {"OutputChannel2", "OutputChannel3"});
    expectError("Rail3-1", code(0xBFFA0064), kStartIndex);
    expectError("Rail1-Rail4", code(0xBFFA0064), kBaseNames);
}

TEST_F(VirtualSelectors, MayHaveTheBoundsOfARangeInEitherOrder)
{
    setVirtualNames({{"Rail", "OutputChannel", {{3, 1, 2}}}});
    expectNames("Rail1,Rail3", {"OutputChannel2", "OutputChannel4"});
}

TEST_F(VirtualSelectors, MayHaveSeveralRanges)
{
    setVirtualNames({{"Rail", "OutputChannel", {{1, 2, 5}, {11, 12, 1}, {2, 2, 4}}}});
    expectNames("Rail1", {"OutputChannel5"});
    expectNames("Rail12", {"OutputChannel2"});
    // Where ranges overlap, the later holds.
    expectNames("Rail2", {"OutputChannel4"});
    expectUnknown("Rail3", "Rail3");
}

TEST_F(VirtualSelectors, MayHaveDigitsInFrontOfTheIndex)
{
    setVirtualNames({{"Rail1", "OutputChannel", {{2, 3, 5}}}});
    expectNames("Rail12,Rail13", {"OutputChannel5", "OutputChannel6"});
    expectUnknown("Rail1", "Rail1");
    expectUnknown("Rail2", "Rail2");
}

TEST_F(VirtualSelectors, WithARangeMayHaveAnEmptyName)
{
    setVirtualNames({{"", "OutputChannel", {{1, 6, 1}}}});
    expectNames("2", {"OutputChannel2"});
    expectNames("1-3", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectUnknown("7", "7");
}

TEST_F(VirtualSelectors, WithARangeMayHaveAnEmptyText)
{
    setVirtualNames({{"Last", "", {{1, 2, 3}}}});
    expectNames("OutputChannel1-Last1", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectUnknown("Last2", "4");
}

TEST_F(VirtualSelectors, WithANegativeIndexAreBadlyFormedText)
{
    setVirtualNames({{"Rail", "OutputChannel", {{0, 5, -1}}}});
    expectError("Rail0", code(0xBFFA0066), kBadlyFormed);
    expectUnknown("Rail1", "OutputChannel0");
    expectNames("Rail2", {"OutputChannel1"});
}

TEST_F(VirtualSelectors, MayHaveTheGreatestRange)
{
    setVirtualNames({{"Rail", "OutputChannel", {{kLeast, kMost, kMost}}}, {"Low", "x", {{0, kMost, 0}}}});
    expectUnknown("Rail2147483647", "OutputChannel6442450942");
    expectUnknown("Rail0", "OutputChannel4294967295");
    expectUnknown("Rail2147483648", "Rail2147483648");
    expectUnknown("Low2147483647", "x2147483647");
    expectError("Low1-Low2147483647,x7", code(0xBFFA0064), kOverlap);
}

TEST_F(VirtualSelectors, ComeInTheOrderOfTheStoreWhateverTheirKind)
{
    setVirtualNames({{"Rail1", "OutputChannel1", {}}, {"Rail", "OutputChannel", {{1, 2, 5}}}});
    expectNames("Rail1", {"OutputChannel5"});
    setVirtualNames({{"Rail", "OutputChannel", {{1, 2, 5}}}, {"Rail1", "OutputChannel1", {}}});
    expectNames("Rail1", {"OutputChannel1"});
    expectNames("Rail2", {"OutputChannel6"});
}

TEST_F(VirtualSelectors, AppendTheirTextAndNothingElse)
{
    setVirtualNames({{"Core", "OutputChannel1", {}}, {"Rail", "OutputChannel", {{1, 3, 2}}}, {"Aux", " CH4,CH9 ", {}}});
    std::string text = "before,";
    for (const char* token : {"", "core", "Rail", "Rail4", "OutputChannel1", "CH7"}) {
        EXPECT_FALSE(session.mappedText(token, text)) << token;
        EXPECT_EQ(text, "before,");
    }
    EXPECT_TRUE(session.mappedText("Core", text));
    EXPECT_EQ(text, "before,OutputChannel1");
    EXPECT_TRUE(session.mappedText("Rail3", text));
    EXPECT_EQ(text, "before,OutputChannel1OutputChannel4");
    EXPECT_TRUE(session.mappedText("CH6", text));
    EXPECT_EQ(text, "before,OutputChannel1OutputChannel4OutputChannel6");
    EXPECT_TRUE(session.mappedText("Aux", text));
    EXPECT_EQ(text, "before,OutputChannel1OutputChannel4OutputChannel6 OutputChannel4,CH9 ");
}

TEST_F(VirtualSelectors, WhoseTextWouldFillTheMemoryEndInAStatus)
{
    setVirtualNames({{"x", std::string(1023, 'y'), {}}});
    std::string selector;
    for (int i = 0; i < 5'000'000; ++i)
        selector += "x,";
    expectError(selector + "x", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(VirtualSelectors, MayAddSixtyFourMebibytesToASelector)
{
    setVirtualNames({{"x", std::string(1023, 'y'), {}}});
    constexpr std::size_t kTokens = (std::size_t{64} << 20U) / 1022;
    std::string selector = "x";
    while (selector.size() < 2 * kTokens - 1)
        selector += ":x";
    expectError(selector, code(0xBFFA0063), kLevels);
    expectError(selector + ":x", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(VirtualSelectors, OfTenThousandEachStandForTheirText)
{
    std::vector<StoredVirtualName> names;
    for (int i = 0; i < 10000; ++i)
        names.push_back({"n" + std::to_string(i) + "_", "OutputChannel" + std::to_string(i), {}});
    setVirtualNames(std::move(names));
    expectNames("n3_", {"OutputChannel3"});
    expectUnknown("n9999_", "OutputChannel9999");
}

TEST_F(VirtualSelectors, AreLookedUpInTokensOfAnyLength)
{
    setVirtualNames({{"", "OutputChannel", {{1, kMost, 1}}}, {"a", "OutputChannel", {{1, kMost, 1}}}});
    for (const char c : {'1', 'a', '0'}) {
        const std::string token(10U << 20U, c);
        EXPECT_EQ(resolve(session, token.c_str()),
                  refusal(code(0xBFFA0067), ("The identifier '" + token).substr(0, 1023)));
    }
}

} // namespace
