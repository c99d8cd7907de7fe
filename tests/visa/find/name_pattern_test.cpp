#include "visa/find/name_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using visa::NamePattern;

bool fitsPattern(const std::string& expression, const std::string& name)
{
    const auto pattern = NamePattern::parse(expression);
    EXPECT_TRUE(pattern.has_value()) << expression;
    return pattern && pattern->fits(name);
}

struct Example
{
    std::string expression;
    std::vector<std::string> fitting;
    std::vector<std::string> others;
};

void check(const std::vector<Example>& examples)
{
    for (const auto& [expression, fitting, others] : examples) {
        for (const std::string& name : fitting)
            EXPECT_TRUE(fitsPattern(expression, name)) << expression << " and " << name;
        for (const std::string& name : others)
            EXPECT_FALSE(fitsPattern(expression, name)) << expression << " and " << name;
    }
}

TEST(VisaNamePattern, FitsTheExamplesOfTheStandard)
{
    check({
        {"GPIB?*INSTR", {"GPIB0::2::INSTR", "GPIB1::1::1::INSTR", "GPIB-VXI1::8::INSTR"}, {"VXI0::1::INSTR"}},
        {"GPIB[0-9]*::?*INSTR", {"GPIB0::2::INSTR", "GPIB1::1::1::INSTR"}, {"GPIB-VXI1::8::INSTR"}},
        {"GPIB[0-9]::?*INSTR", {"GPIB0::2::INSTR", "GPIB1::1::1::INSTR"}, {"GPIB12::8::INSTR"}},
        {"GPIB[^0]::?*INSTR", {"GPIB1::1::1::INSTR"}, {"GPIB0::2::INSTR", "GPIB12::8::INSTR"}},
        {"VXI?*INSTR", {"VXI0::1::INSTR"}, {"GPIB-VXI0::1::INSTR"}},
        {"GPIB-VXI?*INSTR", {"GPIB-VXI0::1::INSTR"}, {"VXI0::1::INSTR"}},
        {"?*VXI[0-9]*::?*INSTR", {"VXI0::1::INSTR", "GPIB-VXI0::1::INSTR"}, {"GPIB0::1::INSTR"}},
        {"ASRL[0-9]*::?*INSTR", {"ASRL1::INSTR"}, {"VXI0::5::INSTR"}},
        {"ASRL1+::INSTR", {"ASRL1::INSTR", "ASRL11::INSTR"}, {"ASRL2::INSTR", "ASRL::INSTR"}},
        {"(GPIB|VXI)?*INSTR", {"GPIB1::5::INSTR", "VXI0::3::INSTR"}, {"ASRL2::INSTR"}},
        {"(GPIB0|VXI0)::1::INSTR", {"GPIB0::1::INSTR", "VXI0::1::INSTR"}, {"GPIB0::2::INSTR"}},
        {"?*INSTR", {"ASRL1::INSTR", "INSTR"}, {"TCPIP0::h::5025::SOCKET"}},
        {"?*VXI[0-9]*::?*MEMACC", {"VXI0::MEMACC", "GPIB-VXI1::MEMACC"}, {"VXI0::1::INSTR"}},
        {"VXI0::?*", {"VXI0::1::INSTR", "VXI0::2::INSTR", "VXI0::MEMACC"}, {"VXI1::1::INSTR"}},
        {"?*", {"ASRL1::INSTR", "TCPIP0::h::5025::SOCKET", ""}, {}},
    });
}

TEST(VisaNamePattern, IgnoresTheCaseOfLetters)
{
    check({
        {"asrl?*instr", {"ASRL1::INSTR", "asrl1::instr"}, {}},
        {"[a-c]", {"a", "B", "C"}, {"d", "D"}},
        {"[^A]", {"b", "B", "0"}, {"a", "A"}},
        {"[Z-a]", {"z", "A", "_"}, {"b", "y"}},
        {"\\X", {"x", "X"}, {"\\X"}},
    });
}

TEST(VisaNamePattern, OperatorsRepeatTheCharacterOrGroupInFrontOfThem)
{
    check({
        {"ab*", {"a", "ab", "abbb"}, {"", "abab", "b"}},
        {"ab+", {"ab", "abb"}, {"a", "abab"}},
        {"(ab)*", {"", "ab", "abab"}, {"a", "aba"}},
        {"(ab)+c", {"abc", "ababc"}, {"c", "abac"}},
        {"(a|b*)+c", {"c", "aabbac", "ac"}, {"ab", "d"}},
        {"a**", {"", "aa"}, {"b"}},
        {"a+*b", {"b", "aab"}, {"a"}},
        {"(a*)*b", {"b", "aab"}, {"a"}},
    });
}

TEST(VisaNamePattern, AlternativesTakeAllThatIsInFrontAndBehind)
{
    check({
        {"VXI|GPIB", {"VXI", "GPIB"}, {"VXIPIB", "VXGPIB", "VXIGPIB"}},
        {"a(b|c)d|e", {"abd", "acd", "e"}, {"abe", "ad", "d"}},
        {"a|b|c", {"a", "b", "c"}, {"ab", ""}},
        {"((a))", {"a"}, {"aa"}},
    });
}

TEST(VisaNamePattern, BackslashesAndListsMakeCharactersOrdinary)
{
    check({
        {R"(\?\*\\\[\()", {"?*\\[("}, {"a*\\[("}},
        {"TCPIP0::\\[fe80::1]::?*", {"TCPIP0::[fe80::1]::inst0::INSTR"}, {"TCPIP0::fe80::1::inst0::INSTR"}},
        {"[?*+|()]", {"?", "*", "|", ")"}, {"a", ""}},
        {"[a-]", {"a", "-"}, {"b"}},
        {"[-a]", {"a", "-"}, {"b"}},
        {R"([\]\-\\])", {"]", "-", "\\"}, {"a"}},
        {"[a^]", {"a", "^"}, {"b"}},
        {"[0-24-6]+", {"012", "456"}, {"3", "7"}},
    });
}

TEST(VisaNamePattern, RefusesWhatIsNotWellFormed)
{
    for (const char* expression :
         {"",     "*", "+a", "(*a)", "a|", "|a", "a||b", "()",    "(a|)", "(",   ")",    "(a",   "a)",
          "a)(b", "[", "[]", "[^]",  "[a", "[^", "[a-",  "[b-a]", "[a\\", "a\\", "(a))", "((a)", "a|*"})
        EXPECT_FALSE(NamePattern::parse(expression).has_value()) << expression;
}

TEST(VisaNamePattern, KnowsWhichBeginningsMayFit)
{
    const auto mayBegin = [](const std::string& expression, const std::string& beginning) {
        return NamePattern::parse(expression)->fitsBeginning(beginning);
    };
    EXPECT_TRUE(mayBegin("?*", "ASRL"));
    EXPECT_TRUE(mayBegin("asrl?*", "ASRL"));
    EXPECT_TRUE(mayBegin("A[^B]*", "ASRL"));
    EXPECT_TRUE(mayBegin("USB?*|TCPIP?*", "TCPIP"));
    EXPECT_FALSE(mayBegin("ASRL?*", "TCPIP"));
    EXPECT_FALSE(mayBegin("USB?*|GPIB?*", "TCPIP"));
    EXPECT_FALSE(mayBegin("ASR", "ASRL"));
}

TEST(VisaNamePattern, LongExpressionsTakeNoExcessiveTime)
{
    std::string nested;
    for (int i = 0; i < 200; ++i)
        nested.insert(0, 1, '(').append("a*)*");
    EXPECT_TRUE(fitsPattern(nested, std::string(240, 'a')));
    EXPECT_FALSE(fitsPattern(nested, std::string(239, 'a') + 'b'));
    std::string sequence;
    for (int i = 0; i < 60; ++i)
        sequence += "(a|a)*?*";
    EXPECT_FALSE(fitsPattern(sequence + 'b', std::string(240, 'a')));
}

} // namespace
