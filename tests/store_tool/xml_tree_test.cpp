#include "store_tool_fixture.h"
#include "xml_tree.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::HasSubstr;
using testing::StartsWith;

std::string complaintAbout(const std::string& text)
{
    return complaint([&text] { parseXml(text); });
}

std::string bytesOf(const std::string& text, const XmlElement& element)
{
    return text.substr(element.begin, element.end - element.begin);
}

TEST(XmlTree, TellsTheBytesOfEachElement)
{
    const std::string inner = R"(<B  x = '</B>' y="a>b" ><!-- </B> --><C/><?p </B> ?><![CDATA[</B>]]>t</B >)";
    const std::string text = "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- <A> --><IviConfigStore>\n " + inner +
                             "\n <D />\n</IviConfigStore>\n<!-- end -->";
    const XmlElement root = parseXml(text);
    ASSERT_EQ(root.children.size(), 2U);
    EXPECT_EQ(bytesOf(text, root.children[0]), inner);
    EXPECT_EQ(bytesOf(text, root.children[0].children.at(0)), "<C/>");
    EXPECT_EQ(bytesOf(text, root.children[1]), "<D />");
    EXPECT_EQ(root.children[0].text, "</B>t");
    EXPECT_EQ(text.substr(root.children[0].contentEnd), "</B >\n <D />\n</IviConfigStore>\n<!-- end -->");
    EXPECT_EQ(text.substr(root.children[1].contentBegin, 2), "/>");
    EXPECT_EQ(text.substr(root.contentBegin, 3), "\n <");
    EXPECT_EQ(text.substr(root.end), "\n<!-- end -->");
}

TEST(XmlTree, TellsTheBytesOfElementsBehindReferencesThatShortenTheText)
{
    const std::string text = storeWith("<N id='a&amp;b'>&lt;&#65;&#x20AC;&gt;</N><M idref=\"&quot;\"/>");
    const XmlElement root = parseXml(text);
    EXPECT_EQ(bytesOf(text, root.children.at(0)), "<N id='a&amp;b'>&lt;&#65;&#x20AC;&gt;</N>");
    EXPECT_EQ(bytesOf(text, root.children.at(1)), "<M idref=\"&quot;\"/>");
    EXPECT_EQ(root.children[0].text, "<A\xE2\x82\xAC>");
    EXPECT_EQ(root.children[0].id, "a&b");
    EXPECT_EQ(root.children[1].idref, "\"");
    EXPECT_EQ(root.children[0].idref, std::nullopt);
}

TEST(XmlTree, RefusesWhatIsNotWellFormed)
{
    for (const std::string& text : std::vector<std::string>{
             "", " ", "store", "<", "<IviConfigStore>", "<IviConfigStore", "</IviConfigStore>",
             "<IviConfigStore></Other>", "<IviConfigStore/><IviConfigStore/>", "<IviConfigStore/>text",
             storeWith("<Name>"), storeWith("<Name a=b/>"), storeWith("<![CDATA["), storeWith("<!--"),
             storeWith("<Name>&#x110000;</Name>"), storeWith("<a/><!DOCTYPE b>"), storeWith("<a/><!x >")})
        EXPECT_THAT(complaintAbout(text), StartsWith("not well-formed XML")) << text;
    EXPECT_EQ(complaintAbout(std::string("<IviConfigStore>\0</IviConfigStore>", 34)),
              "not well-formed XML: it has a zero byte");
    EXPECT_EQ(complaintAbout("\n<IviConfigStore>\n<a>&amp;\n</b></IviConfigStore>"),
              "not well-formed XML: line 4: invalid closing tag name");
}

TEST(XmlTree, RefusesEveryTruncation)
{
    const std::string text = exampleStore();
    const std::size_t end = text.rfind('>');
    for (std::size_t length = 0; length <= end; length += length < end - 40 ? 13 : 1)
        EXPECT_NE(complaintAbout(text.substr(0, length)), "") << length;
}

TEST(XmlTree, RefusesWhatIsNoStore)
{
    EXPECT_EQ(complaintAbout("<Other/>"), "not a configuration store: the root element is <Other>");
    EXPECT_EQ(complaintAbout("<O\x01\xFF/>"), "not a configuration store: the root element is <O\\x01\\xFF>");
}

TEST(XmlTree, RefusesWhatIsBeyondTheLimits)
{
    EXPECT_EQ(complaintAbout(storeWith(repeated("<a>", 63) + repeated("</a>", 63))), "");
    EXPECT_THAT(complaintAbout(storeWith(repeated("<a>", 64) + repeated("</a>", 64))), HasSubstr("64 levels"));
    EXPECT_THAT(complaintAbout(storeWith(repeated("<a>", 1'000'000))), HasSubstr("64 levels"));
    EXPECT_EQ(complaintAbout(storeWith(repeated("<a/>", 99'999))), "");
    EXPECT_THAT(complaintAbout(storeWith(repeated("<a/>", 100'000))), HasSubstr("100000 elements"));
    EXPECT_EQ(complaintAbout(storeWith(std::string(16'777'216, ' '))), "larger than 16777216 bytes");
}

TEST(XmlTree, RefusesOtherEncodings)
{
    const auto declared = [](const std::string& encoding) {
        return complaintAbout("<?xml version='1.0' encoding=" + encoding + "?><IviConfigStore/>");
    };
    EXPECT_EQ(declared("'utf-8'"), "");
    EXPECT_EQ(declared("\"US-ASCII\""), "");
    EXPECT_EQ(declared("\"ISO-8859-1\""), "the encoding 'ISO-8859-1' is not UTF-8");
    EXPECT_EQ(complaintAbout("<?xml version='1.0'?><IviConfigStore encoding='x'/>"), "");
}

} // namespace
