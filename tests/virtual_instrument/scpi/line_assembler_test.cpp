#include "virtual_instrument/scpi/line_assembler.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using kvxvirtual::LineAssembler;
using testing::ElementsAre;

const std::string kOverrun = "<overrun>";

std::vector<std::string> linesOf(LineAssembler& assembler, std::string_view bytes)
{
    assembler.append(bytes);
    std::vector<std::string> lines;
    while (const auto line = assembler.next())
        lines.push_back(line->overrun ? kOverrun : line->bytes);
    return lines;
}

TEST(LineAssembler, GivesCompleteLinesOnly)
{
    LineAssembler assembler;
    EXPECT_THAT(linesOf(assembler, "*ID"), ElementsAre());
    EXPECT_THAT(linesOf(assembler, "N?\r\n\nab"), ElementsAre("*IDN?\r", ""));
    EXPECT_THAT(linesOf(assembler, "\n"), ElementsAre("ab"));
}

TEST(LineAssembler, TakesALineAsLongAsTheBuffer)
{
    LineAssembler assembler;
    const std::string longest(LineAssembler::kLongestLine, 'x');
    EXPECT_THAT(linesOf(assembler, longest + '\n'), ElementsAre(longest));
    EXPECT_THAT(linesOf(assembler, longest), ElementsAre());
    EXPECT_THAT(linesOf(assembler, "\n"), ElementsAre(longest));
}

TEST(LineAssembler, ReportsOneByteMoreOnceAndDropsTheRestOfTheLine)
{
    LineAssembler assembler;
    const std::string tooLong(LineAssembler::kLongestLine + 1, 'x');
    EXPECT_THAT(linesOf(assembler, tooLong), ElementsAre(kOverrun));
    EXPECT_THAT(linesOf(assembler, tooLong + tooLong), ElementsAre());
    EXPECT_THAT(linesOf(assembler, "end\nnext\n"), ElementsAre("next"));
    EXPECT_THAT(linesOf(assembler, tooLong + "\nnext\n"), ElementsAre(kOverrun, "next"));
}

} // namespace
