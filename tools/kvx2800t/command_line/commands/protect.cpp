#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/supply.h"
#include "tools/kvx2800t/command_line/units.h"

namespace command_line::commands
{
namespace
{

/// What is asked of a protection: a level switches it on.
struct Wanted
{
    std::optional<double> level;
    std::optional<bool> isOn;
};

Wanted wantedOf(const Arguments& arguments, const std::string& option, Quantity quantity)
{
    const auto text = arguments.one(option);
    if (!text)
        return {};
    if (*text == "on" || *text == "off")
        return {std::nullopt, *text == "on"};
    const auto level = parseQuantity(*text, quantity);
    if (!level)
        throw UsageError(option + ": neither " + std::string(example(quantity)) + ", nor on or off: " + *text);
    return {level, true};
}

/// The level in front of the switch, so that a protection does not come on at its old one.
void apply(const Wanted& wanted, const kvx2800t::Value<double>& level, const kvx2800t::Value<bool>& isOn)
{
    if (wanted.level)
        level.set(*wanted.level);
    if (wanted.isOn)
        isOn.set(*wanted.isOn);
}

std::string trippedText(const kvx2800t::ProtectionState& state)
{
    if (!state.tripped())
        return "-";
    return std::string(state.overVoltage ? "OVP" : "") + (state.overVoltage && state.overCurrent ? "," : "") +
           (state.overCurrent ? "OCP" : "");
}

std::string switchedText(bool isOn, double level, Quantity quantity)
{
    return (isOn ? "on   " : "off  ") + quantityText(level, quantity);
}

void showProtections(const kvx2800t::Session& supply, const std::string& selector, Console& console)
{
    Document::Array items;
    std::vector<std::vector<std::string>> rows = {{"Channel", "OVP", "OCP", "OCP delay", "Tripped"}};
    for (const std::string& name : channelsOf(supply, selector)) {
        const kvx2800t::Protection protection = supply.channel(name).protection();
        const bool hasOvp = protection.ovpEnabled().get();
        const double ovpLevel = protection.ovpLimit().get();
        const bool hasOcp = protection.outputOcpEnabled().get();
        const double ocpLevel = protection.outputOcpValue().get();
        const double ocpDelay = protection.outputOcpDelay().get();
        const kvx2800t::ProtectionState state = protection.state();
        rows.push_back({name, switchedText(hasOvp, ovpLevel, Quantity::Voltage),
                        switchedText(hasOcp, ocpLevel, Quantity::Current), quantityText(ocpDelay, Quantity::Time),
                        trippedText(state)});
        items.emplace_back(Document::Object{{"channel", name},
                                            {"ovp", hasOvp},
                                            {"ovpLevel", ovpLevel},
                                            {"ocp", hasOcp},
                                            {"ocpLevel", ocpLevel},
                                            {"ocpDelay", ocpDelay},
                                            {"overVoltageTripped", state.overVoltage},
                                            {"overCurrentTripped", state.overCurrent}});
    }
    show(console, Document::Object{{"channels", std::move(items)}}, columns(rows));
}

} // namespace

void protect(const Arguments& arguments, Console& console)
{
    const Wanted ovp = wantedOf(arguments, "--ovp", Quantity::Voltage);
    const Wanted ocp = wantedOf(arguments, "--ocp", Quantity::Current);
    const auto delayText = arguments.one("--ocp-delay");
    const auto delay = delayText ? parseQuantity(*delayText, Quantity::Time) : std::nullopt;
    if (delayText && !delay)
        throw UsageError("--ocp-delay: not " + std::string(example(Quantity::Time)) + ": " + *delayText);

    kvx2800t::Session supply = openSupply(arguments);
    const std::string channels = arguments.one("CHANNELS").value_or("");
    configure(supply, [&] {
        const kvx2800t::Protection protection = supply.channel(channels).protection();
        apply(ovp, protection.ovpLimit(), protection.ovpEnabled());
        if (delay)
            protection.outputOcpDelay().set(*delay);
        apply(ocp, protection.outputOcpValue(), protection.outputOcpEnabled());
    });
    showProtections(supply, channels, console);
}

} // namespace command_line::commands
