#include "tools/kvx2800t/command_line/console.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace command_line
{
namespace
{

TEST(Document, KeepsTheOrderOfItsMembers)
{
    const Document document = Document::Object{{"zero", 0}, {"all", Document::Array{true, 1.5, "x", Document()}}};
    EXPECT_EQ(jsonText(document, Layout::OneLine), R"({"zero":0,"all":[true,1.5,"x",null]})");
}

TEST(Document, IsAlwaysJson)
{
    EXPECT_EQ(jsonText(Document(std::nan("")), Layout::OneLine), "null");
    EXPECT_EQ(jsonText(Document("a\"\n\xFF"), Layout::OneLine), "\"a\\\"\\n\xEF\xBF\xBD\"");
    EXPECT_EQ(jsonText(Document(Document::Object{}), Layout::OneLine), "{}");
}

TEST(Columns, AreAsWideAsTheirWidestCell)
{
    EXPECT_EQ(columns({{"a", "b", "c"}, {"long", "", "x"}}), "a     b  c\nlong     x\n");
    EXPECT_EQ(columns({}), "");
}

TEST(Counted, HasTheWordInItsNumber)
{
    EXPECT_EQ(counted(0, "gap"), "0 gaps");
    EXPECT_EQ(counted(1, "gap"), "1 gap");
    EXPECT_EQ(counted(2, "gap"), "2 gaps");
}

struct Outputs
{
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream errors;
};

TEST(Progress, ReplacesItsLineAndWipesItOut)
{
    Outputs outputs;
    Console console{outputs.in, outputs.out, outputs.errors, false, true};
    {
        Progress progress(console);
        progress.show("100 of 200");
        progress.show("9 of 9");
    }
    EXPECT_EQ(outputs.out.str(), "\r100 of 200\r9 of 9    \b\b\b\b\r      \r");
}

TEST(Progress, IsNotForFilesAndPrograms)
{
    Outputs outputs;
    Console toFile{outputs.in, outputs.out, outputs.errors};
    Progress(toFile).show("half");
    Console asJson{outputs.in, outputs.out, outputs.errors, true, true, true};
    Progress(asJson).show("half");
    EXPECT_EQ(outputs.out.str(), "");
}

} // namespace
} // namespace command_line
