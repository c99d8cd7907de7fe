#include "virtual_instrument/scpi/command_table.h"

#include "virtual_instrument/scpi/instrument_commands.h"
#include "virtual_instrument/scpi/program_commands.h"

namespace kvxvirtual
{
namespace
{

std::string described(const Parameter& parameter)
{
    std::string text(parameter.name);
    std::string_view separator = ": ";
    for (const auto& keyword : parameter.keywords) {
        text += separator;
        text += keyword.usual;
        separator = " ";
    }
    return text;
}

std::string described(const ParameterList& parameters)
{
    std::string text;
    for (const auto& parameter : parameters) {
        if (!text.empty())
            text += ", ";
        text += described(parameter);
    }
    return text;
}

/// A table cell may not hold a bare "|".
std::string cellText(std::string_view pattern)
{
    std::string text;
    for (const char c : pattern) {
        if (c == '|')
            text += '\\';
        text += c;
    }
    return text;
}

std::string rowOf(const Command& command)
{
    std::string text = "| `" + cellText(command.pattern) + "` | " + described(command.parameters) + " | ";
    text += command.purpose;
    return text += " |\n";
}

} // namespace

CommandTable commandTable()
{
    return {instrumentCommands(), listProgramCommands(), listTemplateCommands(), delayProgramCommands(),
            delayGeneratorCommands()};
}

std::string commandTableAsMarkdown()
{
    std::string text = "| command | parameters | meaning |\n|---|---|---|\n";
    for (const auto part : commandTable())
        for (const Command& command : part)
            text += rowOf(command);
    return text;
}

} // namespace kvxvirtual
