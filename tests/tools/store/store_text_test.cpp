#include "platform/config_server/store_file.h"
#include "tests/support/store/store_tool_fixture.h"
#include "tools/store/store_text.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using namespace kvxtest;
using namespace store_tool;

void addItem(StoreText& store)
{
    store.append("Sessions", [](ElementWriter& writer) { writer.open("New").leaf("Name", "n").close(); });
}

std::string afterAdding(const std::string& text)
{
    StoreText store(text);
    addItem(store);
    return store.text();
}

std::size_t removeNew(StoreText& store)
{
    return store.remove("Sessions", [](const XmlElement& item) { return item.name == "New"; });
}

TEST(StoreText, PutsAnItemOnALineOfItsOwnWhereItsNeighboursHaveOne)
{
    EXPECT_EQ(afterAdding("<IviConfigStore>\n\t<Sessions>\n\t\t<A/> <!-- a -->\n\t</Sessions>\n</IviConfigStore>\n"),
              "<IviConfigStore>\n\t<Sessions>\n\t\t<A/> <!-- a -->\n\t\t<New>\n\t\t  <Name>n</Name>\n\t\t</New>\n"
              "\t</Sessions>\n</IviConfigStore>\n");
}

TEST(StoreText, PutsAnItemIntoTheLineWhereItsNeighboursShareOne)
{
    EXPECT_EQ(afterAdding("<IviConfigStore>\n  <Sessions><A/></Sessions>\n</IviConfigStore>"),
              "<IviConfigStore>\n  <Sessions><A/><New><Name>n</Name></New></Sessions>\n</IviConfigStore>");
}

TEST(StoreText, UsesTheLineBreaksOfTheFile)
{
    EXPECT_EQ(afterAdding("<IviConfigStore>\r\n  <Sessions/>\r\n</IviConfigStore>"),
              "<IviConfigStore>\r\n  <Sessions>\r\n    <New>\r\n      <Name>n</Name>\r\n    </New>\r\n"
              "  </Sessions>\r\n</IviConfigStore>");
}

TEST(StoreText, MakesAMissingCollectionAtItsPlace)
{
    EXPECT_EQ(
        afterAdding("<IviConfigStore>\n <Name/>\n <DriverSessions/>\n <Own/>\n <LogicalNames/>\n</IviConfigStore>"),
        "<IviConfigStore>\n <Name/>\n <DriverSessions/>\n <Sessions>\n   <New>\n     <Name>n</Name>\n   </New>\n"
        " </Sessions>\n <Own/>\n <LogicalNames/>\n</IviConfigStore>");
    EXPECT_EQ(afterAdding("<IviConfigStore>\n <LogicalNames/>\n</IviConfigStore>"),
              "<IviConfigStore>\n <Sessions>\n   <New>\n     <Name>n</Name>\n   </New>\n </Sessions>\n"
              " <LogicalNames/>\n</IviConfigStore>");
    EXPECT_EQ(afterAdding("<IviConfigStore/>"), "<IviConfigStore>\n  <Sessions>\n    <New>\n      <Name>n</Name>\n"
                                                "    </New>\n  </Sessions>\n</IviConfigStore>");
}

TEST(StoreText, TakingOutWhatWasPutInGivesTheSameBytes)
{
    for (const std::string& content : std::vector<std::string>{
             "<Sessions/>", "<Sessions />", "<Sessions></Sessions>", "<Sessions a='1' > </Sessions >",
             "\n  <Sessions/>\n", "\n  <Sessions>\n  </Sessions>\n", "\r\n\t<Sessions>\r\n\r\n</Sessions>",
             "<Sessions><A/></Sessions>", "<Sessions> <A/> </Sessions>", "\n<Sessions>\n  <A/>\n  <B></B>\n</Sessions>",
             "\n <Sessions><A/>\n</Sessions>", "\n<Sessions>\n <!-- none -->\n</Sessions>",
             "<Sessions><!-- none --></Sessions>", "\n<Sessions>\n <A/> <!-- a -->\n <?own x?>\n</Sessions>",
             "<Sessions>text</Sessions>", "<Sessions><![CDATA[ ]]></Sessions>"})
    {
        const std::string text = storeWith(content);
        StoreText store(text);
        addItem(store);
        EXPECT_NE(store.text(), text) << content;
        EXPECT_EQ(removeNew(store), 1U) << content;
        EXPECT_EQ(store.text(), text) << content;
    }
}

TEST(StoreText, TakesSeveralItemsOutAndLeavesTheRest)
{
    StoreText store(storeWith("\n<Sessions>\n  <New/>\n  <A/> <!-- a --> <New/>\n  <New>x</New>\n  <B/>\n</Sessions>"));
    EXPECT_EQ(removeNew(store), 3U);
    EXPECT_EQ(store.text(), storeWith("\n<Sessions>\n  <A/> <!-- a -->\n  <B/>\n</Sessions>"));
    EXPECT_EQ(removeNew(store), 0U);
    EXPECT_EQ(store.remove("DriverSessions", [](const XmlElement&) { return true; }), 0U);
}

TEST(StoreText, IsUnchangedWhenThereIsNoRoom)
{
    const std::string content = "<Sessions/>";
    const std::string text = storeWith(content + blanks(config_server::kLargestFile - storeWith(content).size()));
    StoreText store(text);
    EXPECT_EQ(complaint([&store] { addItem(store); }), "the store has no room: it would be larger than " +
                                                           std::to_string(config_server::kLargestFile) + " bytes");
    EXPECT_TRUE(store.text() == text);
    EXPECT_EQ(store.root().children.size(), 1U);
}

TEST(StoreText, EscapesWhatItWrites)
{
    StoreText store("<IviConfigStore/>");
    const std::string name = " <a> & \"b\" 'c' ]]> ";
    store.append("Sessions", [&name](ElementWriter& writer) { writer.leaf("Value", name).reference("R", name); });
    const auto& items = store.root().itemsOf("Sessions");
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].text, name);
    EXPECT_EQ(items[1].idref, name);
}

} // namespace
