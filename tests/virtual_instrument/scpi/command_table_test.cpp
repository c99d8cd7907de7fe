#include "virtual_instrument/scpi/command_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace
{

using namespace kvxvirtual;

TEST(CommandList, NamesNoCommandTwice)
{
    std::set<std::string_view> patterns;
    for (const auto part : commandTable())
        for (const Command& command : part)
            EXPECT_TRUE(patterns.insert(command.pattern).second) << command.pattern;
}

TEST(CommandList, ReadmeHoldsTheTableThatTheProgramPrints)
{
    std::ifstream file(KVX_README);
    std::stringstream readme;
    readme << file.rdbuf();
    EXPECT_NE(readme.str().find("\n\n" + commandTableAsMarkdown() + '\n'), std::string::npos)
        << "update the command table of " KVX_README " with what kvx2800t-virtual --commands prints";
}

} // namespace
