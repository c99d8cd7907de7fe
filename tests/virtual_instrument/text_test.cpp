#include "text.h"

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
