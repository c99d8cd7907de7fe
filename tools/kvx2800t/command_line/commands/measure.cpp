#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/supply.h"
#include "tools/kvx2800t/command_line/units.h"

namespace command_line::commands
{
namespace
{

/// What an output does: the registers tell an output that is off from one that holds neither voltage nor current.
const char* stateOf(const kvx2800t::Channel& channel)
{
    const kvx2800t::QuestionableStatus condition = channel.state().condition();
    if (condition.overVoltage())
        return "OVP";
    if (condition.overCurrent())
        return "OCP";
    if (condition.constantCurrent())
        return "CC";
    if (condition.constantVoltage())
        return "CV";
    return channel.outputEnabled().get() ? "unregulated" : "off";
}

} // namespace

void measure(const Arguments& arguments, Console& console)
{
    const kvx2800t::Session supply = openSupply(arguments);
    Document::Array items;
    std::vector<std::vector<std::string>> rows = {{"Channel", "Voltage", "Current", "Power", "State"}};
    for (const std::string& name : channelsOf(supply, arguments.one("CHANNELS").value_or(""))) {
        const kvx2800t::Channel channel = supply.channel(name);
        const kvx2800t::Reading reading = channel.measure();
        const std::string state = stateOf(channel);
        rows.push_back({name, quantityText(reading.volts, Quantity::Voltage),
                        quantityText(reading.amperes, Quantity::Current), quantityText(reading.watts, Quantity::Power),
                        state});
        items.emplace_back(Document::Object{{"channel", name},
                                            {"voltage", reading.volts},
                                            {"current", reading.amperes},
                                            {"power", reading.watts},
                                            {"state", state}});
    }
    show(console, Document::Object{{"channels", std::move(items)}}, columns(rows));
}

} // namespace command_line::commands
