#include "base/printable.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string printable(int byte)
{
    return std::string(base::PrintableByte(static_cast<char>(byte)).text());
}

TEST(PrintableByte, IsItselfFromABlankToATildeButForABackslash)
{
    for (int byte = ' '; byte <= '~'; ++byte) {
        if (byte == '\\')
            continue;
        EXPECT_EQ(printable(byte), std::string(1, static_cast<char>(byte)));
    }
    EXPECT_EQ(printable('\\'), "\\x5C");
}

TEST(PrintableByte, IsItsNumberWhereItDoesNotPrint)
{
    EXPECT_EQ(printable(0x00), "\\x00");
    EXPECT_EQ(printable('\n'), "\\x0A");
    EXPECT_EQ(printable(0x1F), "\\x1F");
    EXPECT_EQ(printable(0x7F), "\\x7F");
    EXPECT_EQ(printable(0x80), "\\x80");
    EXPECT_EQ(printable(0xB5), "\\xB5");
    EXPECT_EQ(printable(0xFF), "\\xFF");
}

} // namespace
