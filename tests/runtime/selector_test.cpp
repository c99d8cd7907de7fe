#include "runtime/selector.h"

#include "tests/support/driver/selector_fixture.h"

namespace
{

using namespace kvxtest;

constexpr std::size_t kVeryLong = 10U << 20U;

std::string repeated(std::string_view text, std::size_t length)
{
    std::string result;
    result.reserve(length + text.size());
    while (result.size() < length)
        result += text;
    return result;
}

TEST_F(SelectorTest, EachPhysicalNameNamesItself)
{
    for (const char* name :
         {"OutputChannel1", "OutputChannel2", "OutputChannel3", "OutputChannel4", "OutputChannel5", "OutputChannel6"})
        expectNames(name, {name});
}

TEST_F(SelectorTest, AListKeepsItsOrder)
{
    expectNames("OutputChannel3,OutputChannel1", {"OutputChannel3", "OutputChannel1"});
    expectNames(
        "OutputChannel6,OutputChannel5,OutputChannel4,OutputChannel3,OutputChannel2,OutputChannel1",
        {"OutputChannel6", "OutputChannel5", "OutputChannel4", "OutputChannel3", "OutputChannel2", "OutputChannel1"});
}

TEST_F(SelectorTest, ARangeCountsUp)
{
    expectNames("OutputChannel1-3", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectNames("OutputChannel1-OutputChannel3", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
    expectNames("OutputChannel5-6", {"OutputChannel5", "OutputChannel6"});
}

TEST_F(SelectorTest, RangesAndNamesMayBeMixed)
{
    expectNames("OutputChannel5-6,OutputChannel1,OutputChannel2-3",
                {"OutputChannel5", "OutputChannel6", "OutputChannel1", "OutputChannel2", "OutputChannel3"});
}

TEST_F(SelectorTest, BlanksMayStandAroundItems)
{
    expectNames(" \tOutputChannel1 ,\n OutputChannel2 - 3 ", {"OutputChannel1", "OutputChannel2", "OutputChannel3"});
}

TEST_F(SelectorTest, ALevelMayBeInBrackets)
{
    expectNames("[OutputChannel1, OutputChannel2]", {"OutputChannel1", "OutputChannel2"});
    expectNames(" [ OutputChannel1 - 2 ]", {"OutputChannel1", "OutputChannel2"});
    expectNames("[OutputChannel1", {"OutputChannel1"});
    expectNames("OutputChannel1]", {"OutputChannel1"});
    expectError("[OutputChannel1] ", code(0xBFFA0066), kBadlyFormed);
    expectError("[[OutputChannel1]]", code(0xBFFA0066), kBadlyFormed);
    expectError("[]", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(SelectorTest, TheBaseOfTheSecondNameIgnoresLetterCase)
{
    expectNames("OutputChannel1-OUTPUTCHANNEL2", {"OutputChannel1", "OutputChannel2"});
    expectUnknown("outputchannel1-OutputChannel2", "outputchannel1");
}

TEST_F(SelectorTest, LeadingZerosOfARangeDoNotCount)
{
    expectNames("OutputChannel01-002", {"OutputChannel1", "OutputChannel2"});
}

TEST_F(SelectorTest, AnEmptySelectorNamesNoneOfSix)
{
    expectError(nullptr, code(0xBFFA0044), kNone);
    expectError("", code(0xBFFA0044), kNone);
    expectError(" \t\r\n", code(0xBFFA0044), kNone);
}

TEST_F(SelectorTest, ATextOutsideTheGrammarIsBadlyFormed)
{
    for (const char* selector : {"OutputChannel1;2", ",", "OutputChannel1,", ",OutputChannel1", "OutputChannel1,,",
                                 "OutputChannel1 OutputChannel2", "-", "OutputChannel1-", "-1", "OutputChannel-1",
                                 "OutputChannel1-OutputChannel", "OutputChannel1-2-3", ":",
                                 "OutputChannel1:", "Output.Channel1", "OutputChannel1\x01", "\xE9"})
        expectError(selector, code(0xBFFA0066), kBadlyFormed);
}

TEST_F(SelectorTest, MoreThanOneLevelIsTooMany)
{
    expectError("OutputChannel1:OutputChannel2", code(0xBFFA0063), kLevels);
    expectError("[a]:[b]:c1-2", code(0xBFFA0063), kLevels);
    for (const char* levels : {"[a] : [b]", " [ a ] : [ b ]", "[a]\t:\n[b]", "a : b ", "[a : b]", "a] : [b1 - 2]"})
        expectError(levels, code(0xBFFA0063), kLevels);
    // Blanks end a selector, but not behind a bracket.
    for (const char* levels : {"[a] : [b] ", "[a] :", "[a] : ", ": [b]", "[a] : : [b]", "[a] [b]", "[a] : [] "})
        expectError(levels, code(0xBFFA0066), kBadlyFormed);
}

TEST_F(SelectorTest, ARangeThatDoesNotCountUpIsRefused)
{
    expectError("OutputChannel3-1", code(0xBFFA0064), kStartIndex);
    expectError("OutputChannel2-2", code(0xBFFA0064), kStartIndex);
    expectError("OutputChannel2-OutputChannel02", code(0xBFFA0064), kStartIndex);
}

TEST_F(SelectorTest, ARangeOfTwoBasesIsRefused)
{
    expectError("OutputChannel1-Channel3", code(0xBFFA0064), kBaseNames);
    expectError("1-OutputChannel3", code(0xBFFA0064), kBaseNames);
    expectError("OutputChannel1-XOutputChannel3", code(0xBFFA0064), kBaseNames);
}

TEST_F(SelectorTest, ANameTwiceIsBadlyFormed)
{
    expectError("OutputChannel1,OutputChannel1", code(0xBFFA0066), kBadlyFormed);
    expectError("x,OutputChannel1,x", code(0xBFFA0066), kBadlyFormed);
}

TEST_F(SelectorTest, ANameInARangeAndAgainIsAnOverlap)
{
    expectError("OutputChannel1-2,OutputChannel2", code(0xBFFA0064), kOverlap);
    expectError("OutputChannel2,OutputChannel1-2", code(0xBFFA0064), kOverlap);
    expectError("OutputChannel1-3,OutputChannel2-4", code(0xBFFA0064), kOverlap);
    expectError("OutputChannel2-3,OutputChannel1-4", code(0xBFFA0064), kOverlap);
}

TEST_F(SelectorTest, NamesThatOnlyLookAlikeAreNoDuplicates)
{
    expectUnknown("OutputChannel1,outputchannel1", "outputchannel1");
    expectUnknown("OutputChannel1-2,OutputChannel02", "OutputChannel02");
    expectUnknown("x,x0", "x");
    expectUnknown("x0,x", "x0");
    expectUnknown("x1-2,x", "x1");
}

TEST_F(SelectorTest, AnUnknownNameIsNamed)
{
    expectUnknown("OutputChannel7", "OutputChannel7");
    expectUnknown("b,a", "b");
    expectUnknown("OutputChannel5-8", "OutputChannel7");
    expectUnknown("OutputChannel0-2", "OutputChannel0");
    expectUnknown("[ !x_1 ]", "!x_1");
}

TEST_F(SelectorTest, WhatIsWrongWithItemsComesBeforeUnknownNames)
{
    expectError("OutputChannel7,OutputChannel1,OutputChannel1", code(0xBFFA0066), kBadlyFormed);
    expectError("OutputChannel7,OutputChannel2-1", code(0xBFFA0064), kStartIndex);
    expectError("OutputChannel7,OutputChannel7", code(0xBFFA0066), kBadlyFormed);
    expectError("OutputChannel7-9,OutputChannel8", code(0xBFFA0064), kOverlap);
}

TEST_F(SelectorTest, TheFirstItemThatIsWrongDecides)
{
    expectError("a1-b2,c3-1", code(0xBFFA0064), kBaseNames);
    expectError("c3-1,a1-b2", code(0xBFFA0064), kStartIndex);
}

TEST_F(SelectorTest, ANumberBeyond32BitsLeavesAsAnException)
{
    for (const char* selector : {"OutputChannel1-2147483648", "OutputChannel2147483648-1", "1-99999999999999999999"}) {
        EXPECT_EQ(resolve(session, selector), exceptionIs("stoi argument out of range")) << selector;
        EXPECT_EQ(timesRecorded(), 0U);
    }
}

TEST_F(SelectorTest, ANumberBeyond32BitsIsNoProblemOutsideARange)
{
    expectUnknown("OutputChannel2147483648", "OutputChannel2147483648");
}

TEST_F(SelectorTest, ARangeOfTwoThousandMillionNamesEndsInAStatus)
{
    expectUnknown("OutputChannel1-2000000000", "OutputChannel7");
    expectUnknown("OutputChannel0-2147483647", "OutputChannel0");
    expectError("OutputChannel1-2147483647,OutputChannel2147483647", code(0xBFFA0064), kOverlap);
    expectError("x1-2147483646,x2147483647,x2147483646", code(0xBFFA0064), kOverlap);
}

TEST_F(SelectorTest, ASingleSelectorNamesExactlyOneChannel)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    EXPECT_EQ(resolveSingleSelector(session, "[ OutputChannel4 ]", name), VI_SUCCESS);
    EXPECT_EQ(name.text(), "OutputChannel4");
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(SelectorTest, ASingleSelectorOfSeveralChannelsIsRefused)
{
    for (const char* selector : {"OutputChannel1-2", "OutputChannel1,OutputChannel2"}) {
        drivekit::PhysicalName<drivekit::OutputChannel> name("before");
        EXPECT_EQ(resolveSingleSelector(session, selector, name), code(0xBFFA0066));
        EXPECT_EQ(name.text(), "before");
        EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0066), kSingle}));
        IviSession_ClearError(vi);
    }
}

TEST_F(SelectorTest, ASingleSelectorFailsLikeAnyOther)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    EXPECT_EQ(resolveSingleSelector(session, nullptr, name), code(0xBFFA0044));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0044), kNone}));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(SelectorTest, AFailureToRecordIsReturned)
{
    failCall("IviSession_SetError", code(0xBFFA0056));
    drivekit::OutputSelection selection;
    EXPECT_EQ(resolveSelector(session, "?", selection), code(0xBFFA0056));
}

TEST_F(SelectorTest, VeryManyDifferentNamesEndInAStatus)
{
    std::string selector;
    while (selector.size() < kVeryLong / 10)
        selector += "n" + std::to_string(selector.size()) + ",";
    expectUnknown(selector + "last", "n0");
    expectError(selector + "n0", code(0xBFFA0066), kBadlyFormed);
}

/// A selector of ten million characters, and what comes of it.
struct LongSelector
{
    const char* name;
    std::string (*make)();
    SelectorResult result;
};

void PrintTo(const LongSelector& selector, std::ostream* stream)
{
    *stream << selector.name;
}

SelectorResult unknownName(char c)
{
    return refusal(code(0xBFFA0067), "The identifier '" + std::string(1023 - 16, c));
}

std::vector<LongSelector> longSelectors()
{
    const SelectorResult badlyFormed = refusal(code(0xBFFA0066), kBadlyFormed);
    return {
        {"blanks", [] { return std::string(kVeryLong, ' '); }, refusal(code(0xBFFA0044), kNone)},
        {"commas", [] { return std::string(kVeryLong, ','); }, badlyFormed},
        {"brackets", [] { return std::string(kVeryLong, '['); }, badlyFormed},
        {"dashes", [] { return std::string(kVeryLong, '-'); }, badlyFormed},
        {"colons", [] { return std::string(kVeryLong, ':'); }, badlyFormed},
        {"rangesOfRanges", [] { return repeated("1-", kVeryLong); }, badlyFormed},
        {"levels", [] { return repeated("a:", kVeryLong) + "a"; }, refusal(code(0xBFFA0063), kLevels)},
        {"oneNameAgainAndAgain", [] { return repeated("OutputChannel1,", kVeryLong) + "x"; }, badlyFormed},
        {"letters", [] { return std::string(kVeryLong, 'a'); }, unknownName('a')},
        {"digits", [] { return std::string(kVeryLong, '9'); }, unknownName('9')},
        {"base", [] { return std::string(kVeryLong, 'a') + "1-b2"; }, refusal(code(0xBFFA0064), kBaseNames)},
        {"rangeEnd", [] { return "OutputChannel1-" + std::string(kVeryLong, '9'); },
         exceptionIs("stoi argument out of range")},
        {"zeros", [] { return "OutputChannel1-" + std::string(kVeryLong, '0') + "2"; },
         namesAre({"OutputChannel1", "OutputChannel2"})},
        {"aliases", [] { return repeated("CH1,", kVeryLong) + "x"; }, badlyFormed},
        {"levelsOfAliases", [] { return repeated("CH1:", kVeryLong) + "x"; }, refusal(code(0xBFFA0063), kLevels)},
        {"rangesOfAliases", [] { return repeated("CH1-CH2,", kVeryLong) + "x"; }, refusal(code(0xBFFA0064), kOverlap)},
        {"bracketedLevels", [] { return repeated("[a,b]:", kVeryLong) + "a"; }, refusal(code(0xBFFA0063), kLevels)},
        {"blanksInARange",
         [] { return "CH1" + std::string(kVeryLong, '\n') + "-" + std::string(kVeryLong, ' ') + "2"; },
         namesAre({"OutputChannel1", "OutputChannel2"})},
        {"blanksAroundAName",
         [] { return std::string(kVeryLong, ' ') + "OutputChannel1" + std::string(kVeryLong, '\t'); },
         namesAre({"OutputChannel1"})},
    };
}

class VeryLongSelector : public RuntimeTest, public testing::WithParamInterface<LongSelector>
{
};

TEST_P(VeryLongSelector, EndsInAStatus)
{
    TestSession session(vi);
    EXPECT_EQ(resolve(session, GetParam().make().c_str()), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Kinds, VeryLongSelector, testing::ValuesIn(longSelectors()),
                         [](const auto& selector) { return std::string(selector.param.name); });

TEST(ChannelNumbers, ThePhysicalNamesAreTheChannelsOneToSix)
{
    using Outputs = drivekit::RepCapBase<drivekit::OutputChannel>;
    EXPECT_EQ(Outputs::name(), "OutputChannel");
    ASSERT_EQ(Outputs::kCount, 6U);
    for (std::size_t position = 0; position < 6; ++position) {
        const auto name = Outputs::physicalName(position);
        EXPECT_EQ(name.text(), "OutputChannel" + std::to_string(position + 1));
        EXPECT_EQ(drivekit::channelNumber(name), static_cast<ViInt32>(position) + 1);
        EXPECT_EQ(drivekit::channelOf(name), static_cast<ViInt32>(position) + 1);
        EXPECT_EQ(Outputs::position(name.text()), position);
    }
    EXPECT_EQ(Outputs::position("OutputChannel7"), std::nullopt);
    EXPECT_EQ(Outputs::position("outputchannel1"), std::nullopt);
}

TEST(ChannelNumbers, OnlyTheLastDigitCounts)
{
    EXPECT_EQ(drivekit::channelNumber(drivekit::PhysicalName<drivekit::OutputChannel>("Output12")), 2);
    EXPECT_LT(drivekit::channelNumber(drivekit::PhysicalName<drivekit::OutputChannel>("Output")), 0);
}

TEST(ChannelNumbers, ANumberThatIsNoChannelHasNoKey)
{
    for (const char* name : {"OutputChannel7", "OutputChannel0", "Output"}) {
        try {
            drivekit::channelOf(drivekit::PhysicalName<drivekit::OutputChannel>(name));
            ADD_FAILURE() << name;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid map<K, T> key");
        }
    }
}

} // namespace
