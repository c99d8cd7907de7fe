#include "tools/kvx2800t/command_line/command.h"
#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/supply.h"

#include <array>

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

constexpr auto kResource = std::to_array<Positional>({{"RESOURCE", "As --resource", Occurrence::AtMostOnce}});
constexpr auto kChannels = std::to_array<Positional>({{"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"}});
constexpr auto kAnyChannels =
    std::to_array<Positional>({{"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3 [all there are]", Occurrence::AtMostOnce}});
constexpr auto kChannelsToSet = std::to_array<Positional>({
    {"CHANNELS", "Such as CH1, CH1,CH3 or CH1-3"},
    {"VALUES", "A voltage (5V), a current limit (500mA), on, off: any of them", Occurrence::OnceOrMore},
});

// Not constants of the compiler: the options of a session stand in another source.
const OptionLists& sessionLists()
{
    static const OptionLists lists = {sessionOptions(), kJson};
    return lists;
}

const OptionLists& offLists()
{
    static const OptionLists lists = {kOffOptions, sessionOptions(), kJson};
    return lists;
}

const OptionLists& protectLists()
{
    static const OptionLists lists = {kProtectOptions, sessionOptions(), kJson};
    return lists;
}

} // namespace

std::span<const Command> commandTable()
{
    static const auto table = std::to_array<Command>({
        {"identify", "Tell which instrument it is.", kResource, sessionLists(), commands::identify},
        {"get", "Show what channels are set to.", kAnyChannels, sessionLists(), commands::get},
        {"set", "Set voltage, current limit and output of channels.", kChannelsToSet, sessionLists(), commands::set},
        {"off", "Switch outputs off.", kAnyChannels, offLists(), commands::off},
        {"measure", "Read the meters of channels.", kAnyChannels, sessionLists(), commands::measure},
        {"protect", "Show or set the protections of channels.", kChannels, protectLists(), commands::protect},
    });
    return table;
}

std::span<const Group> groupTable()
{
    return {};
}

} // namespace command_line
