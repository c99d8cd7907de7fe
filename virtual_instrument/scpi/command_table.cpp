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

std::string described(const std::vector<Parameter>& parameters)
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

} // namespace

const std::vector<Command>& commandTable()
{
    static const auto kTable = [] {
        auto table = instrumentCommands();
        for (auto&& command : programCommands())
            table.push_back(command);
        return table;
    }();
    return kTable;
}

std::string commandTableAsMarkdown()
{
    std::string text = "| command | parameters | meaning |\n|---|---|---|\n";
    for (const auto& command : commandTable()) {
        text += "| `" + cellText(command.pattern) + "` | " + described(command.parameters) + " | ";
        text += command.purpose;
        text += " |\n";
    }
    return text;
}

} // namespace kvxvirtual
