#include "base/ascii.h"

#include <cctype>
#include <string>

#include <gtest/gtest.h>

namespace
{

using namespace base::ascii;

/// What the C library says of a character in the locale "C"; bytes from 128 on are no characters there.
template <class Classify>
int inC(Classify classify, int c)
{
    return c < 128 ? classify(c) : 0;
}

TEST(Ascii, ClassesAreThoseOfTheCLocale)
{
    for (int c = 0; c < 256; ++c) {
        SCOPED_TRACE(c);
        const char byte = static_cast<char>(c);
        EXPECT_EQ(isDigit(byte), inC(&::isdigit, c) != 0);
        EXPECT_EQ(isBlank(byte), inC(&::isspace, c) != 0);
        EXPECT_EQ(isWord(byte), inC(&::isalnum, c) != 0 || c == '_');
    }
}

TEST(Ascii, LetterCaseIsThatOfTheCLocale)
{
    for (int c = 0; c < 256; ++c) {
        SCOPED_TRACE(c);
        const bool isUpper = inC(&::isupper, c) != 0;
        EXPECT_EQ(toLower(static_cast<char>(c)), static_cast<char>(isUpper ? ::tolower(c) : c));
    }
}

TEST(Ascii, TextsAreEqualWhateverTheirLetterCase)
{
    EXPECT_TRUE(equalIgnoringCase("", ""));
    EXPECT_TRUE(equalIgnoringCase("Model", "mODEL"));
    EXPECT_FALSE(equalIgnoringCase("Model", "Models"));
    EXPECT_FALSE(equalIgnoringCase("Models", "Model"));
    EXPECT_FALSE(equalIgnoringCase("Model", "Mode1"));
    EXPECT_FALSE(equalIgnoringCase("\xC4", "\xE4"));
}

TEST(Ascii, BlanksAreSkippedAtTheFrontOnly)
{
    EXPECT_EQ(skipBlanks(" \t\n\v\f\ra b "), "a b ");
    EXPECT_EQ(skipBlanks("a "), "a ");
    EXPECT_EQ(skipBlanks(" \r\n"), "");
    EXPECT_EQ(skipBlanks(""), "");
}

TEST(Ascii, BlanksAreTrimmedAtBothEndsOnly)
{
    EXPECT_EQ(trimmed(" \t\n\v\f\ra b \r\n"), "a b");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed(" \r\n"), "");
    EXPECT_EQ(trimmed(""), "");
}

} // namespace
