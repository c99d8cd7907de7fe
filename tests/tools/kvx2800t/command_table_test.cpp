#include "tools/kvx2800t/command_line/parser.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace command_line
{
namespace
{

struct Parsed
{
    ParsedCommandLine commandLine;
    std::string out;
    std::string errors;
};

Parsed parse(std::vector<const char*> words)
{
    std::ostringstream out;
    std::ostringstream errors;
    words.insert(words.begin(), "kvx2800t");
    auto commandLine = parseCommandLine(static_cast<int>(words.size()), words.data(), out, errors);
    return {std::move(commandLine), out.str(), errors.str()};
}

TEST(CommandTable, HasEachNameOnceWithASummaryAndSomethingToDo)
{
    std::set<std::string_view> names;
    for (const Command& command : commandTable()) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name;
        EXPECT_TRUE(command.summary.ends_with('.')) << command.name;
        EXPECT_NE(command.run, nullptr) << command.name;
    }
}

TEST(CommandTable, EveryCommandPrintsJson)
{
    for (const Command& command : commandTable()) {
        bool hasJson = false;
        for (const auto options : command.options)
            for (const Option& option : options)
                hasJson = hasJson || option.name == "--json";
        EXPECT_TRUE(hasJson) << command.name;
    }
}

TEST(CommandTable, EveryCommandHasHelpThatNamesItsArguments)
{
    for (const Command& command : commandTable()) {
        const std::string name(command.name);
        const std::size_t blank = name.find(' ');
        const std::string group = name.substr(0, blank);
        const std::string member = blank == std::string::npos ? "--help" : name.substr(blank + 1);
        const Parsed parsed = parse({group.c_str(), member.c_str(), "--help"});
        EXPECT_EQ(parsed.commandLine.command, nullptr) << name;
        EXPECT_FALSE(parsed.commandLine.isComplaint) << name;
        for (const Positional& positional : command.positionals)
            EXPECT_NE(parsed.out.find(positional.meaning), std::string::npos) << name;
        for (const auto options : command.options)
            for (const Option& option : options)
                EXPECT_NE(parsed.out.find(option.meaning), std::string::npos) << name << ' ' << option.name;
    }
}

TEST(Parser, GivesTheCommandItsArguments)
{
    const Parsed parsed = parse({"set", "CH1,CH3", "5V", "on", "-r", "Bench", "--json"});
    ASSERT_NE(parsed.commandLine.command, nullptr);
    EXPECT_EQ(parsed.commandLine.command->name, "set");
    const Arguments& arguments = parsed.commandLine.arguments;
    EXPECT_EQ(arguments.one("CHANNELS"), "CH1,CH3");
    EXPECT_EQ(arguments.all("VALUES"), (std::vector<std::string>{"5V", "on"}));
    EXPECT_EQ(arguments.one("--resource"), "Bench");
    EXPECT_TRUE(arguments.has("--json"));
    EXPECT_FALSE(arguments.has("--simulate"));
}

TEST(Parser, ComplainsOfWhatItDoesNotKnow)
{
    const Parsed parsed = parse({"fly"});
    EXPECT_TRUE(parsed.commandLine.isComplaint);
    EXPECT_EQ(parsed.commandLine.command, nullptr);
    EXPECT_NE(parsed.errors, "");
    EXPECT_EQ(parsed.out, "");
}

TEST(Parser, HelpEndsWithTheExitCodes)
{
    const Parsed parsed = parse({"--help"});
    EXPECT_FALSE(parsed.commandLine.isComplaint);
    EXPECT_NE(parsed.out.find("   3  the instrument cannot be reached\n"), std::string::npos);
}

} // namespace
} // namespace command_line
