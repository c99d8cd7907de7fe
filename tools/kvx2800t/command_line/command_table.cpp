#include "tools/kvx2800t/command_line/command.h"
#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/supply.h"

#include <array>
#include <vector>

namespace command_line
{
namespace
{

using OptionLists = std::array<std::span<const Option>, 3>;

constexpr auto kJson = std::to_array<Option>({{"--json", "", "Print the result as JSON"}});

constexpr auto kOffOptions = std::to_array<Option>({{"--all", "", "Switch all outputs off at once"}});

constexpr auto kProtectOptions = std::to_array<Option>({
    {"--ovp", "LEVEL|on|off", "The over-voltage protection: a level, which switches it on, or a switch"},
    {"--ocp", "LEVEL|on|off", "The over-current protection, likewise"},
    {"--ocp-delay", "TIME", "How long an over-current lasts before the output trips"},
});

constexpr auto kListLoadOptions = std::to_array<Option>({
    {"--cycles", "N", "How often it runs; 0 is without end"},
    {"--end", "off|last", "What the output does behind the last cycle"},
});

constexpr auto kDelayLoadOptions = std::to_array<Option>({
    {"--cycles", "N", "How often it runs; 0 is without end"},
    {"--end", "off|on|last", "What the output does behind the last cycle"},
});

constexpr auto kRunOptions = std::to_array<Option>({{"--watch", "", "Follow it until it has stopped"}});

constexpr auto kLogOptions = std::to_array<Option>({
    {"--every", "TIME", "The time between two readings [1s]"},
    {"--for", "TIME", "How long to log [until Ctrl-C]"},
    {"--count", "N", "How many readings to take [until Ctrl-C]"},
    {"--csv", "FILE", "Write a table with commas; - is the standard output [-]"},
    {"--json", "FILE", "Write a JSON object for each reading instead"},
    {"--force", "", "Replace the file if it is there"},
});

constexpr auto kPanelOptions = std::to_array<Option>({
    {"--port", "N", "The port of the page; 0 takes any free one [0]"},
    {"--bind", "ADDRESS",
     "The IP address of the page; another than a loopback address lets other machines in [127.0.0.1]"},
    {"--no-browser", "", "Open no browser"},
    {"--until-stdin-closes", "", "End when the standard input does, too"},
});

constexpr auto kResource = std::to_array<Positional>({{"RESOURCE", "As --resource", Occurrence::AtMostOnce}});
constexpr auto kChannel = std::to_array<Positional>({{"CHANNEL", "Such as CH1"}});
constexpr auto kChannels = std::to_array<Positional>({{"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"}});
constexpr auto kAnyChannels =
    std::to_array<Positional>({{"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3 [all there are]", Occurrence::AtMostOnce}});
constexpr auto kChannelsToSet = std::to_array<Positional>({
    {"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"},
    {"VALUES", "A voltage (5V), a current limit (500mA), on, off: any of them", Occurrence::OnceOrMore},
});
constexpr auto kListFile = std::to_array<Positional>({
    {"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"},
    {"FILE", "Rows of voltage, current and duration; - is the standard input"},
});
constexpr auto kDelayFile = std::to_array<Positional>({
    {"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"},
    {"FILE", "Rows of on or off and a duration; - is the standard input"},
});
constexpr auto kPanelResource = std::to_array<Positional>(
    {{"RESOURCE", "The instrument [a simulated one that remembers]", Occurrence::AtMostOnce}});
constexpr auto kMessages =
    std::to_array<Positional>({{"MESSAGES", "Messages to be sent [lines of the input]", Occurrence::AnyTimes}});

/// The options of a command that opens a session.
OptionLists withSession(std::span<const Option> own, std::span<const Option> json = kJson)
{
    return {own, sessionOptions(), json};
}

std::vector<Command> makeTable()
{
    // What the commands' rows refer to.
    static const OptionLists onlyJson = {kJson};
    static const OptionLists diagnosis = {connectionOptions(), kJson};
    static const OptionLists session = withSession({});
    static const OptionLists offOptions = withSession(kOffOptions);
    static const OptionLists protectOptions = withSession(kProtectOptions);
    static const OptionLists listLoadOptions = withSession(kListLoadOptions);
    static const OptionLists delayLoadOptions = withSession(kDelayLoadOptions);
    static const OptionLists runOptions = withSession(kRunOptions);
    static const OptionLists panelOptions = {kPanelOptions, connectionOptions().first(1), kJson};
    static const OptionLists logOptions = withSession(kLogOptions, {});
    return {
        {"find", "Show what VISA finds, and what the configuration store has.", {}, onlyJson, commands::find},
        {"identify", "Tell which instrument it is.", kResource, session, commands::identify},
        {"doctor", "Go the way of an opening step by step, and say what is wrong.", kResource, diagnosis,
         commands::doctor},
        {"get", "Show what channels are set to.", kAnyChannels, session, commands::get},
        {"set", "Set voltage, current limit and output of channels.", kChannelsToSet, session, commands::set},
        {"off", "Switch outputs off.", kAnyChannels, offOptions, commands::off},
        {"measure", "Read the meters of channels.", kAnyChannels, session, commands::measure},
        {"protect", "Show or set the protections of channels.", kChannels, protectOptions, commands::protect},
        {"list load", "Replace the list of channels by that of a file.", kListFile, listLoadOptions,
         commands::loadList},
        {"list show", "Write the list of a channel as such a file.", kChannel, session, commands::showList},
        {"list run", "Start lists, or let paused ones go on.", kChannels, runOptions, commands::runList},
        {"list watch", "Follow lists until they have stopped.", kChannels, session, commands::watchList},
        {"list pause", "Switch the outputs off until the lists are run again.", kChannels, session,
         commands::pauseList},
        {"list stop", "Stop lists.", kChannels, session, commands::stopList},
        {"delay load", "Replace the delay program of channels by that of a file.", kDelayFile, delayLoadOptions,
         commands::loadDelay},
        {"delay show", "Write the delay program of a channel as such a file.", kChannel, session, commands::showDelay},
        {"delay run", "Start delay programs.", kChannels, runOptions, commands::runDelay},
        {"delay watch", "Follow delay programs until they have stopped.", kChannels, session, commands::watchDelay},
        {"delay stop", "Stop delay programs.", kChannels, session, commands::stopDelay},
        {"log", "Write what channels give, at equal times, until Ctrl-C.", kAnyChannels, logOptions, commands::log},
        {"scpi", "Send messages of your own, and show what is answered and noted.", kMessages, session, commands::scpi},
        {"panel", "Show and operate the instrument on a page in the browser, until Ctrl-C.", kPanelResource,
         panelOptions, commands::panel},
    };
}

constexpr auto kGroups = std::to_array<Group>({
    {"list", "Lists: levels that an output takes one after the other."},
    {"delay", "Delay programs: outputs on and off after each other."},
});

} // namespace

std::span<const Command> commandTable()
{
    static const std::vector<Command> table = makeTable();
    return table;
}

std::span<const Group> groupTable()
{
    return kGroups;
}

} // namespace command_line
