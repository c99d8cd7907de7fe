#include "tools/kvx2800t/command_line/parser.h"

#include "tools/kvx2800t/command_line/exit_codes.h"

#include <CLI/CLI.hpp>

#include <deque>
#include <ostream>
#include <utility>

namespace command_line
{
namespace
{

/// A command with what its parser has found.
struct Parser
{
    CLI::App* app = nullptr;
    const Command* command = nullptr;
};

/// Where the parser stores the texts of arguments that may be given several times, although each option has its own.
using Lists = std::deque<std::vector<std::string>>;

std::string helpOfExitCodes()
{
    std::string text = "Exit codes:\n";
    for (const ExitCodeMeaning& row : exitCodeMeanings()) {
        const std::string number = std::to_string(static_cast<int>(row.code));
        text += std::string(4 - number.size(), ' ') + number + "  " + std::string(row.meaning) + '\n';
    }
    return text;
}

void addPositional(CLI::App& app, const Positional& positional, Lists& lists)
{
    const bool isRequired =
        positional.occurrence == Occurrence::Once || positional.occurrence == Occurrence::OnceOrMore;
    const bool isList =
        positional.occurrence == Occurrence::OnceOrMore || positional.occurrence == Occurrence::AnyTimes;
    const std::string name(positional.name);
    CLI::Option* const option = isList ? app.add_option(name, lists.emplace_back()) : app.add_option(name);
    option->description(std::string(positional.meaning))->required(isRequired)->type_name("");
}

void addOption(CLI::App& app, const Option& row)
{
    const std::string name(row.name);
    const std::string meaning(row.meaning);
    CLI::Option* const option =
        row.value.empty() ? app.add_flag(name, meaning) : app.add_option(name)->description(meaning);
    if (!row.value.empty())
        option->type_name(std::string(row.value));
    if (row.environment != nullptr)
        option->envname(row.environment);
}

/// The application that a command stands below: the program itself or one of its groups.
CLI::App& parentOf(CLI::App& app, std::string_view& name)
{
    const std::size_t blank = name.find(' ');
    if (blank == std::string_view::npos)
        return app;
    CLI::App* const group = app.get_subcommand(std::string(name.substr(0, blank)));
    name.remove_prefix(blank + 1);
    return *group;
}

Parser addCommand(CLI::App& app, const Command& command, Lists& lists)
{
    std::string_view name = command.name;
    CLI::App& parent = parentOf(app, name);
    CLI::App* const added = parent.add_subcommand(std::string(name), std::string(command.summary));
    for (const Positional& positional : command.positionals)
        addPositional(*added, positional, lists);
    for (const std::span<const Option> options : command.options)
        for (const Option& option : options)
            addOption(*added, option);
    return {added, &command};
}

/// By the long name of each option, and the name of each positional argument.
Arguments argumentsOf(const Parser& parser)
{
    Arguments arguments;
    for (const CLI::Option* const option : std::as_const(*parser.app).get_options())
        if (option->count() > 0)
            arguments.add(option->get_lnames().empty() ? option->get_name() : "--" + option->get_lnames().front(),
                          option->results());
    return arguments;
}

} // namespace

ParsedCommandLine parseCommandLine(int argumentCount, const char* const* arguments, std::ostream& out,
                                   std::ostream& errors)
{
    CLI::App app("Looks at KVX2800T power supplies and drives them.", "kvx2800t");
    app.set_version_flag("--version", "kvx2800t " KVX_TOOL_VERSION);
    app.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    // Texts may begin with a slash on every host.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.footer(helpOfExitCodes());
    for (const Group& group : groupTable())
        app.add_subcommand(std::string(group.name), std::string(group.summary))->require_subcommand(1);
    Lists lists;
    std::vector<Parser> parsers;
    for (const Command& command : commandTable())
        parsers.push_back(addCommand(app, command, lists));
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return {nullptr, {}, app.exit(error, out, errors) != 0};
    }
    const auto parsed =
        std::find_if(parsers.begin(), parsers.end(), [](const Parser& parser) { return parser.app->parsed(); });
    return {parsed->command, argumentsOf(*parsed), false};
}

} // namespace command_line
