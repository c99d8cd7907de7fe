#include "tools/store/argument_texts.h"
#include "tools/store/plain_text.h"

#include <gmock/gmock.h>

namespace
{

using namespace store_tool;
using testing::StartsWith;

TEST(ArgumentTexts, RefusesWhatAStoreCannotHold)
{
    EXPECT_EQ(complaintAboutText(""), "");
    EXPECT_EQ(complaintAboutText("line 4 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), "");
    EXPECT_EQ(complaintAboutText(std::string(1023, 'x')), "");
    EXPECT_THAT(complaintAboutText(std::string(1024, 'x')), StartsWith("longer than 1023 bytes: 'xxx"));
    EXPECT_EQ(complaintAboutText("a\x1B[31m"), "control characters or not UTF-8: 'a\\x1B[31m'");
    EXPECT_EQ(complaintAboutText(" a"), "white space at an end: ' a'");
    EXPECT_EQ(complaintAboutText("a "), "white space at an end: 'a '");
    EXPECT_EQ(complaintAboutName(""), "is empty");
    EXPECT_EQ(complaintAboutName("a"), "");
}

TEST(ArgumentTexts, KnowsPlainText)
{
    for (const std::string text :
         {"\t", "\n", "\x7F", "\x80", "\xC0\x80", "\xC1\xBF", "\xC2\x80", "\xC2\x9F", "\xC3", "\xE0\x80\x80",
          "\xED\xA0\x80", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "a\xFF"})
        EXPECT_FALSE(isPlainText(text)) << printable(text);
    EXPECT_FALSE(isPlainText(std::string(1, '\0')));
    for (const std::string text : {"", " ", "~", "\xC2\xA0", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBD"})
        EXPECT_TRUE(isPlainText(text)) << printable(text);
}

TEST(ArgumentTexts, ReadsVirtualNames)
{
    const auto name = parseVirtualName("Core!_1=OutputChannel1,OutputChannel2");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->name, "Core!_1");
    EXPECT_EQ(name->mapTo, "OutputChannel1,OutputChannel2");
    EXPECT_TRUE(name->ranges.empty());
    for (const auto* const text :
         {"", "Core", "Core=", "=x", "Co re=x", "Core:1=x", "C-1=x", "A= OutputChannel1", "A=OutputChannel1 ", "A= "})
        EXPECT_FALSE(parseVirtualName(text)) << text;
}

TEST(ArgumentTexts, ReadsVirtualRanges)
{
    const auto name = parseVirtualRange("Rail=a:OutputChannel:1-3@2");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->name, "Rail");
    EXPECT_EQ(name->mapTo, "a:OutputChannel");
    ASSERT_EQ(name->ranges.size(), 1U);
    EXPECT_EQ(name->ranges[0].min, 1);
    EXPECT_EQ(name->ranges[0].max, 3);
    EXPECT_EQ(name->ranges[0].start, 2);
    EXPECT_TRUE(parseVirtualRange("=:0-0@0"));
    EXPECT_TRUE(parseVirtualRange("R=C:1-2@2147483646"));
    for (const auto* const text : {"Rail=OutputChannel", "Rail:1-3@2", "R=C:3-1@2", "R=C:1-3", "R=C:1@2", "R=C:-1-3@2",
                                   "R=C:1--3@2", "R=C:1-3@-2", "R=C:1-3@2 ", "R=C:1-3@2x", "R=C:1-2@2147483647",
                                   "R=C:0-2147483648@0", "R=C:1-3@", "R =C:1-3@2", "R= C:1-3@2", "R=C :1-3@2"})
        EXPECT_FALSE(parseVirtualRange(text)) << text;
}

TEST(ArgumentTexts, PutsRangesOfOneVirtualNameTogether)
{
    const auto names =
        merged({*parseVirtualRange("R=C:1-2@1"), *parseVirtualName("R=C"), *parseVirtualRange("S=C:1-2@1"),
                *parseVirtualRange("R=C:4-5@1"), *parseVirtualRange("R=D:7-8@1")});
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names[0].ranges.size(), 2U);
    EXPECT_EQ(names[0].ranges.at(1).min, 4);
    EXPECT_TRUE(names[1].ranges.empty());
    EXPECT_EQ(names[2].name, "S");
    EXPECT_EQ(names[3].mapTo, "D");
}

TEST(ArgumentTexts, ReadsSettings)
{
    const auto setting = parseSetting("real:Settling Time=2.5e-1");
    ASSERT_TRUE(setting);
    EXPECT_EQ(setting->type->element, "IviReal");
    EXPECT_EQ(setting->name, "Settling Time");
    EXPECT_EQ(setting->value, "2.5e-1");
    EXPECT_EQ(parseSetting("boolean:a=true")->value, "1");
    EXPECT_EQ(parseSetting("boolean:a=0")->value, "0");
    EXPECT_EQ(parseSetting("integer:a=-2147483648")->value, "-2147483648");
    EXPECT_EQ(parseSetting("integer:a=007")->value, "7");
    EXPECT_EQ(parseSetting("string:a= b=c ")->value, " b=c ");
    EXPECT_EQ(parseSetting("string:a=")->value, "");
    for (const auto* const text : {"", "a=1", "string:a", "text:a=1", "String:a=1", "string:=1", "string: a=1",
                                   "boolean:a=2", "boolean:a=", "integer:a=1.0", "integer:a=2147483648", "integer:a=+1",
                                   "real:a=1,5", "real:a=inf", "real:a=nan", "real:a=1e999", "real:a=0x1"})
        EXPECT_FALSE(parseSetting(text)) << text;
}

} // namespace
