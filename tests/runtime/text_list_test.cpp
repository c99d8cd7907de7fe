#include "runtime/text_list.h"

#include <gtest/gtest.h>

namespace
{

using drivekit::listEntry;

TEST(TextList, EntriesAreCountedFromZero)
{
    EXPECT_EQ(listEntry("ErrorCode, ErrorMessage", 0), "ErrorCode");
    EXPECT_EQ(listEntry("ErrorCode, ErrorMessage", 1), "ErrorMessage");
}

TEST(TextList, AnEntryPastTheEndIsNothing)
{
    EXPECT_EQ(listEntry("ErrorCode, ErrorMessage", 2), std::nullopt);
    EXPECT_EQ(listEntry("ErrorCode", 100), std::nullopt);
}

TEST(TextList, BlanksTabsAndLineEndsAroundAnEntryAreTrimmed)
{
    EXPECT_EQ(listEntry(" \t\r\na b \t\r\n, \t,c", 0), "a b");
    EXPECT_EQ(listEntry(" \t\r\na b \t\r\n, \t,c", 1), "");
    EXPECT_EQ(listEntry(" \t\r\na b \t\r\n, \t,c", 2), "c");
}

TEST(TextList, OtherWhiteSpaceIsPartOfAnEntry)
{
    EXPECT_EQ(listEntry("\va\f", 0), "\va\f");
}

TEST(TextList, ATrailingCommaBeginsAnEmptyEntry)
{
    EXPECT_EQ(listEntry("a,", 1), "");
    EXPECT_EQ(listEntry("a,", 2), std::nullopt);
}

} // namespace
