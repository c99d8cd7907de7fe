#include "tools/visatrace/line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using visatrace::Line;

std::string quoted(const std::string& bytes)
{
    Line line;
    line.quoted({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    return std::string(line.finish());
}

TEST(TraceLine, EscapesWhatIsNotPrintable)
{
    EXPECT_EQ(quoted(""), "\"\"\n");
    EXPECT_EQ(quoted("*IDN? ~"), "\"*IDN? ~\"\n");
    EXPECT_EQ(quoted("a\n\r\tb"), "\"a\\n\\r\\tb\"\n");
    EXPECT_EQ(quoted("\"\\"), "\"\\\"\\\\\"\n");
    EXPECT_EQ(quoted(std::string("\0\x01\x1F\x7F\x80\xFF", 6)), "\"\\x00\\x01\\x1F\\x7F\\x80\\xFF\"\n");
}

TEST(TraceLine, ShowsTheFirstOfManyBytesAndHowManyThereAre)
{
    EXPECT_EQ(quoted(std::string(192, 'x')), '"' + std::string(192, 'x') + "\"\n");
    EXPECT_EQ(quoted(std::string(193, 'x')), '"' + std::string(192, 'x') + "\"... (193 bytes)\n");
    EXPECT_EQ(quoted(std::string(5000, '\n')).substr(384), "n\"... (5000 bytes)\n");
}

TEST(TraceLine, WritesNumbers)
{
    Line line;
    line.number(0);
    line.text(" ");
    line.number(18446744073709551615U);
    line.text(" ");
    line.signedNumber(-1);
    line.text(" ");
    line.signedNumber(INT64_MIN);
    line.text(" ");
    line.signedNumber(7);
    EXPECT_EQ(line.finish(), "0 18446744073709551615 -1 -9223372036854775808 7\n");
}

TEST(TraceLine, WritesHexadecimalNumbersWithAsManyDigitsAsAskedForOrNeeded)
{
    Line line;
    line.hex(0, 1);
    line.text(" ");
    line.hex(0xBFFF0015, 8);
    line.text(" ");
    line.hex(0x1F, 8);
    line.text(" ");
    line.hex(0xFEDCBA9876543210, 1);
    EXPECT_EQ(line.finish(), "0x0 0xBFFF0015 0x0000001F 0xFEDCBA9876543210\n");
}

TEST(TraceLine, WritesSecondsWithSixDecimals)
{
    Line line;
    line.seconds(0);
    line.text(" ");
    line.seconds(1);
    line.text(" ");
    line.seconds(12'345'678);
    EXPECT_EQ(line.finish(), "0.000000 0.000001 12.345678\n");
}

TEST(TraceLine, LeavesOutWhatIsBeyondItsRoomButNeverItsEnd)
{
    Line line;
    line.text(std::string(4000, 'a'));
    line.text(std::string(4000, 'b'));
    line.text("c");
    EXPECT_EQ(line.finish(), std::string(4000, 'a') + std::string(95, 'b') + '\n');
}

} // namespace
