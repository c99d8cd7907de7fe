#include "platform/config_server/store_file.h"
#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/xml_tree.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using namespace config_server;
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
    const auto nested = [](std::size_t levels) {
        return complaintAbout(storeWith(repeated("<a>", levels - 1) + repeated("</a>", levels - 1)));
    };
    EXPECT_EQ(nested(kDeepestNesting), "");
    EXPECT_THAT(nested(kDeepestNesting + 1), HasSubstr(" or " + std::to_string(kDeepestNesting) + " levels"));
    EXPECT_THAT(complaintAbout(storeWith(repeated("<a>", 1'000'000))), HasSubstr(" levels"));
    EXPECT_THAT(complaintAbout(storeWith(repeated("<a/>", kMostElements))),
                HasSubstr("more than " + std::to_string(kMostElements) + " elements"));
    EXPECT_EQ(complaintAbout(storeWith(blanks(kLargestFile))),
              "larger than " + std::to_string(kLargestFile) + " bytes");
}

TEST(XmlTree, FindsTheFirstChildOfANameAmongMany)
{
    const XmlElement root =
        parseXml(storeWith(repeated("<b/>", 70) + "<a>1</a><c/>" + repeated("<b/>", 70) + "<a>2</a>"));
    EXPECT_EQ(root.child("a"), &root.children[70]);
    EXPECT_EQ(root.child("b"), root.children.data());
    EXPECT_EQ(root.child("c"), &root.children[71]);
    for (const auto* const name : {"", "A", "bb", "d"})
        EXPECT_EQ(root.child(name), nullptr) << name;
}

TEST(XmlTree, KeepsWhiteSpaceOfValuesOnly)
{
    const XmlElement root = parseXml(storeWith("<Name> &#32;a \n</Name><Value> &#32;a </Value>"));
    EXPECT_EQ(root.children.at(0).text, "a");
    EXPECT_EQ(root.children.at(1).text, "  a ");
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
