#include "platform/config_server/values.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace
{

using config_server::parseFlag;
using config_server::parseInteger;
using config_server::parseReal;

TEST(StoreFlag, IsOneOfFourWordsOrNothing)
{
    EXPECT_EQ(parseFlag("0"), VI_FALSE);
    EXPECT_EQ(parseFlag("1"), VI_TRUE);
    EXPECT_EQ(parseFlag("false"), VI_FALSE);
    EXPECT_EQ(parseFlag("true"), VI_TRUE);
    EXPECT_EQ(parseFlag(""), VI_FALSE);
    for (const char* const text : {"2", "-1", "01", "True", "yes", " 1", "1 "})
        EXPECT_EQ(parseFlag(text), std::nullopt) << text;
}

TEST(StoreInteger, IsDecimalWithThirtyTwoBits)
{
    EXPECT_EQ(parseInteger("0"), 0);
    EXPECT_EQ(parseInteger(""), 0);
    EXPECT_EQ(parseInteger("-0"), 0);
    EXPECT_EQ(parseInteger("+12"), 12);
    EXPECT_EQ(parseInteger("007"), 7);
    EXPECT_EQ(parseInteger("2147483647"), std::numeric_limits<ViInt32>::max());
    EXPECT_EQ(parseInteger("-2147483648"), std::numeric_limits<ViInt32>::min());
    for (const char* const text : {"2147483648", "-2147483649", "99999999999999999999", "1.0", "1e3", "0x10", "+", "-",
                                   "+-1", "++1", "1 2", " 1", "1 ", "one"})
        EXPECT_EQ(parseInteger(text), std::nullopt) << text;
}

TEST(StoreReal, IsFiniteAndDecimal)
{
    EXPECT_EQ(parseReal(""), 0.0);
    EXPECT_EQ(parseReal("0.25"), 0.25);
    EXPECT_EQ(parseReal("-2.5e-3"), -2.5e-3);
    EXPECT_EQ(parseReal("+1E+3"), 1000.0);
    EXPECT_EQ(parseReal(".5"), 0.5);
    EXPECT_EQ(parseReal("5."), 5.0);
    EXPECT_EQ(parseReal("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(parseReal(std::string(100000, '0') + "1.5"), 1.5);
    for (const char* const text : {"1e309", "-1e309", "inf", "-inf", "nan", "0,5", "1.5V", "e5", ".", "+-1", "1 .5"})
        EXPECT_EQ(parseReal(text), std::nullopt) << text;
}

TEST(StoreReal, HasAPointInEveryLocale)
{
    const kvxtest::CommaLocale locale;
    if (!locale.problem().empty())
        GTEST_SKIP() << locale.problem();
    EXPECT_EQ(parseReal("0.25"), 0.25);
    EXPECT_EQ(parseReal("0,25"), std::nullopt);
}

} // namespace
