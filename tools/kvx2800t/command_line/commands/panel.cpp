#include "tools/kvx2800t/panel/panel.h"

#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"

#include <charconv>
#include <ostream>

namespace command_line::commands
{
namespace
{

unsigned short portOf(const std::string& text)
{
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
        throw UsageError("--port: not a number from 0 to 65535: " + text);
    return port;
}

::panel::Options panelOptions(const Arguments& arguments)
{
    ::panel::Options options;
    options.resource = arguments.one("RESOURCE").value_or(arguments.one("--resource").value_or(""));
    options.port = portOf(arguments.one("--port").value_or("0"));
    options.bind = arguments.one("--bind").value_or(options.bind);
    options.openBrowser = !arguments.has("--no-browser");
    options.untilInputEnds = arguments.has("--until-stdin-closes");
    return options;
}

void tellPlace(const ::panel::Options& options, const ::panel::Place& place, Console& console)
{
    const std::string whose = options.resource.empty() ? "a simulated instrument" : options.resource;
    showLine(console, Document::Object{{"resource", options.resource}, {"address", place.address}},
             "The panel of " + whose + " is at\n" + place.address);
    if (place.isOpen)
        console.errors << "warning: who has this address can operate the instrument, also from other machines, and who "
                          "listens on the network sees it"
                       << std::endl;
}

} // namespace

void panel(const Arguments& arguments, Console& console)
{
    const ::panel::Options options = panelOptions(arguments);
    try {
        ::panel::run(options, [&](const ::panel::Place& place) { tellPlace(options, place, console); });
    } catch (const std::exception& error) {
        throw UsageError(error.what());
    }
}

} // namespace command_line::commands
