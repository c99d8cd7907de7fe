#include "tools/kvx2800t/command_line/program_files.h"

#include "tools/kvx2800t/command_line/csv.h"
#include "tools/kvx2800t/command_line/failure.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace command_line
{
namespace
{

using Cells = std::vector<std::string>;

/// The text of the failure that reading ends with.
template <class Read>
std::string failureOf(Read read)
{
    try {
        read();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::File);
        return failure.what();
    }
    return "no failure";
}

TEST(Csv, HasNoBlanksQuotesCommentsOrEmptyLines)
{
    const auto rows = parseCsv("\xEF\xBB\xBF a , \"b\" ,\r\n\r\n# c,d\n;e;\n\"\nlast");
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0].line, 1U);
    EXPECT_EQ(rows[0].cells, (Cells{"a", "b", ""}));
    EXPECT_EQ(rows[1].line, 4U);
    EXPECT_EQ(rows[1].cells, (Cells{"", "e", ""}));
    EXPECT_EQ(rows[2].cells, (Cells{"\""}));
    EXPECT_EQ(rows[3].line, 6U);
    EXPECT_EQ(rows[3].cells, (Cells{"last"}));
}

TEST(Csv, OfNothingHasNoRows)
{
    EXPECT_TRUE(parseCsv("").empty());
    EXPECT_TRUE(parseCsv("\n \n#\n").empty());
}

TEST(ListFile, HasUnitsOrNone)
{
    const auto groups = parseList("voltage,current,duration\n5V, 500 mA, 100ms\n2.5;1;3 min\n", "a.csv");
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(csvText(groups[0]), "5.000,0.500,0.100");
    EXPECT_EQ(csvText(groups[1]), "2.500,1.000,180.000");
}

TEST(ListFile, IsReadAsItIsWritten)
{
    std::mt19937 generator(1);
    std::uniform_int_distribution<int> thousandths(0, 33000);
    std::string text = std::string(kListColumns) + '\n';
    std::string again = text;
    for (int i = 0; i < 500; ++i)
        text += csvText(kvx2800t::ListGroup{thousandths(generator) / 1000.0, thousandths(generator) / 1000.0,
                                            thousandths(generator) / 1000.0}) +
                '\n';
    for (const auto& group : parseList(text, "a.csv"))
        again += csvText(group) + '\n';
    EXPECT_EQ(again, text);
}

TEST(ListFile, SaysInWhichLineItIsWrong)
{
    EXPECT_EQ(failureOf([] { parseList("1,1,1\n\n1V,1,1V\n", "a.csv"); }),
              "a.csv:3: not a time, such as 100ms or 2s: 1V");
    EXPECT_EQ(failureOf([] { parseList("1,1\n", "a.csv"); }), "a.csv:1: not 3 cells (voltage,current,duration): 1,1");
    EXPECT_EQ(failureOf([] { parseList("1;2,5;1\n", "a.csv"); }), "a.csv:1: not a current, such as 1.5A or 500mA: 2,5");
    EXPECT_EQ(failureOf([] { parseList("voltage,current,duration\n", "a.csv"); }),
              "a.csv: has no groups (voltage,current,duration)");
    EXPECT_EQ(failureOf([] { parseList("1,1,1\nvoltage,current,duration\n", "a.csv"); }),
              "a.csv:2: not a voltage, such as 5V or 500mV: voltage");
}

TEST(DelayFile, HasSwitchesAndTimes)
{
    const auto groups = parseDelay("output,duration\non,2s\noff,0.25\n", "b.csv");
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(csvText(groups[0]), "on,2.000");
    EXPECT_EQ(csvText(groups[1]), "off,0.250");
    EXPECT_EQ(failureOf([] { parseDelay("1,2s\n", "b.csv"); }), "b.csv:1: neither on nor off: 1");
}

TEST(ProgramFile, MayBeTheStandardInput)
{
    std::istringstream input("on,1\n");
    EXPECT_EQ(readFile("-", input), "on,1\n");
}

TEST(ProgramFile, ThatIsNoneIsTold)
{
    std::istringstream input;
    EXPECT_EQ(failureOf([&input] { readFile("no-such-file.csv", input); }), "no-such-file.csv: cannot be read");
    EXPECT_EQ(failureOf([&input] { readFile(".", input); }), ".: cannot be read");
}

} // namespace
} // namespace command_line
