#include "virtual_instrument/scpi/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace kvxvirtual;

TEST(FixedText, HasExactlyTheAskedPlacesAndNoExponent)
{
    EXPECT_EQ(fixedText(5.0, 6), "5.000000");
    EXPECT_EQ(fixedText(1.0 / 3.0, 3), "0.333");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::max(), 6).size(), 309U + 1U + 6U);
}

TEST(FixedText, NeverShowsANegativeZero)
{
    EXPECT_EQ(fixedText(-0.0, 3), "0.000");
    EXPECT_EQ(fixedText(-0.0001, 3), "0.000");
    EXPECT_EQ(fixedText(-0.001, 3), "-0.001");
}

TEST(FiniteNumber, IsZeroWhenItIsTooSmallForADouble)
{
    for (const auto* const text : {"1e-400", "+1E-400", "-123.4e-999", "0.001e-99999999999999999999"})
        EXPECT_EQ(finiteNumberIn(text), 0.0) << text;
    EXPECT_EQ(finiteNumberIn("0." + std::string(400, '0') + '1'), 0.0);
    EXPECT_EQ(finiteNumberIn("0." + std::string(400, '0') + "1e401"), 1.0);
}

TEST(FiniteNumber, IsNoneWhenItIsTooLargeForADouble)
{
    for (const auto* const text : {"1e400", "+1E+400", "-0.001e999", "1e99999999999999999999"})
        EXPECT_EQ(finiteNumberIn(text), std::nullopt) << text;
    EXPECT_EQ(finiteNumberIn('1' + std::string(400, '0')), std::nullopt);
    EXPECT_EQ(finiteNumberIn('1' + std::string(400, '0') + "e-400"), 1.0);
}

TEST(Escaping, GivesEveryByteBack)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(unescaped(escaped(bytes)), bytes);
    EXPECT_EQ(escaped(std::string("\\ \r\n\0\xFF~", 7)), "\\\\ \\r\\n\\x00\\xFF~");
}

TEST(Escaping, RefusesWhatItDoesNotWrite)
{
    for (const auto* const text : {"\\", "\\t", "\\x", "\\x4", "\\xG0", "\\x-1"})
        EXPECT_EQ(unescaped(text), std::nullopt) << text;
}

} // namespace
