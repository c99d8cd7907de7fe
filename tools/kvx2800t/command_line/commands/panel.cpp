#include "tools/kvx2800t/panel/panel.h"
#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"

#include <charconv>

namespace command_line::commands
{
namespace
{

unsigned short portOf(const Arguments& arguments)
{
    const std::string text = arguments.one("--port").value_or("0");
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
        throw UsageError("--port: not a number from 0 to 65535: " + text);
    return port;
}

/// Without any there is a simulated instrument.
std::string panelResource(const Arguments& arguments)
{
    if (arguments.has("--simulate"))
        return "";
    return arguments.one("RESOURCE").value_or(arguments.one("--resource").value_or(""));
}

} // namespace

void panel(const Arguments& arguments, Console& console)
{
    ::panel::Options options;
    options.resource = panelResource(arguments);
    options.port = portOf(arguments);
    options.bind = arguments.one("--bind").value_or(options.bind);
    options.openBrowser = !arguments.has("--no-browser");
    options.untilInputEnds = arguments.has("--until-input-ends");
    if (::panel::run(options, console.out, console.errors) != 0)
        throw Failure(ExitCode::Configuration, "no panel can be served at " + options.bind);
}

} // namespace command_line::commands
