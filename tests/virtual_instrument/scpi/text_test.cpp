#include "virtual_instrument/scpi/text.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace kvxvirtual;

TEST(FixedText, HasExactlyTheAskedPlacesAndNoExponent)
{
    EXPECT_EQ("5.000000", fixedText(5.0, 6));
    EXPECT_EQ("0.333", fixedText(1.0 / 3.0, 3));
    EXPECT_EQ(309U + 1U + 6U, fixedText(std::numeric_limits<double>::max(), 6).size());
}

TEST(FixedText, NeverShowsANegativeZero)
{
    EXPECT_EQ("0.000", fixedText(-0.0, 3));
    EXPECT_EQ("0.000", fixedText(-0.0001, 3));
    EXPECT_EQ("-0.001", fixedText(-0.001, 3));
}

TEST(FiniteNumber, IsZeroWhenItIsTooSmallForADouble)
{
    for (const auto* const text : {"1e-400", "+1E-400", "-123.4e-999", "0.001e-99999999999999999999"})
        EXPECT_EQ(0.0, finiteNumberIn(text)) << text;
    EXPECT_EQ(0.0, finiteNumberIn("0." + std::string(400, '0') + '1'));
    EXPECT_EQ(1.0, finiteNumberIn("0." + std::string(400, '0') + "1e401"));
}

TEST(FiniteNumber, IsNoneWhenItIsTooLargeForADouble)
{
    for (const auto* const text : {"1e400", "+1E+400", "-0.001e999", "1e99999999999999999999"})
        EXPECT_EQ(std::nullopt, finiteNumberIn(text)) << text;
    EXPECT_EQ(std::nullopt, finiteNumberIn('1' + std::string(400, '0')));
    EXPECT_EQ(1.0, finiteNumberIn('1' + std::string(400, '0') + "e-400"));
}

TEST(Escaping, GivesEveryByteBack)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(bytes, unescaped(escaped(bytes)));
    EXPECT_EQ("\\\\ \\r\\n\\x00\\xFF~", escaped(std::string("\\ \r\n\0\xFF~", 7)));
}

TEST(Escaping, RefusesWhatItDoesNotWrite)
{
    for (const auto* const text : {"\\", "\\t", "\\x", "\\x4", "\\xG0", "\\x-1"})
        EXPECT_EQ(std::nullopt, unescaped(text)) << text;
}

} // namespace
