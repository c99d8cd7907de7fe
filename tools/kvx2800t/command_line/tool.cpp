#include "tools/kvx2800t/command_line/tool.h"

#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/parser.h"
#include "tools/kvx2800t/command_line/status_names.h"

#include <kvx2800t.hpp>

#include <ostream>

namespace command_line
{
namespace
{

int numberOf(ExitCode code)
{
    return static_cast<int>(code);
}

Document documentOf(const Failure& failure)
{
    Document::Object members = {{"exitCode", numberOf(failure.code())}, {"text", failure.what()}};
    if (failure.status()) {
        members.emplace_back("status", statusNumber(*failure.status()));
        members.emplace_back("name", std::string(statusName(*failure.status())));
    }
    return Document::Object{{"error", std::move(members)}};
}

int complain(Console& console, const Failure& failure)
{
    if (console.json)
        console.errors << jsonText(documentOf(failure), Layout::Lines) << '\n';
    else if (failure.status())
        console.errors << "kvx2800t: " << statusText(*failure.status()) << ": " << failure.what() << '\n';
    else
        console.errors << "kvx2800t: " << failure.what() << '\n';
    return numberOf(failure.code());
}

void requireWritten(Console& console)
{
    if (!console.out.flush())
        throw Failure(ExitCode::File, "cannot write the output");
}

/// Whether --json is given where it is a switch: a log has it to name its file.
bool isAskedForJson(const ParsedCommandLine& commandLine)
{
    if (commandLine.command == nullptr || !commandLine.arguments.has("--json"))
        return false;
    for (const std::span<const Option> options : commandLine.command->options)
        for (const Option& option : options)
            if (option.name == "--json")
                return option.value.empty();
    return false;
}

void run(const ParsedCommandLine& commandLine, Console& console)
{
    if (commandLine.command != nullptr)
        commandLine.command->run(commandLine.arguments, console);
    requireWritten(console);
}

} // namespace

int runTool(int argumentCount, const char* const* arguments, Console& console)
{
    try {
        const auto commandLine = parseCommandLine(argumentCount, arguments, console.out, console.errors);
        if (commandLine.isComplaint)
            return numberOf(ExitCode::Usage);
        console.json = isAskedForJson(commandLine);
        run(commandLine, console);
        return numberOf(ExitCode::Success);
    } catch (const Failure& failure) {
        return complain(console, failure);
    } catch (const kvx2800t::Error& error) {
        return complain(console, Failure(exitCodeOf(error.code(), Phase::Working), error.code(), error.text()));
    } catch (const std::exception& error) {
        return complain(console, Failure(ExitCode::Internal, error.what()));
    }
}

} // namespace command_line
