#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/supply.h"
#include "tools/kvx2800t/command_line/units.h"

#include <array>

namespace command_line::commands
{
namespace
{

constexpr std::array<const char*, 3> kSourceModes = {"normal", "series", "parallel"};

std::string onOff(bool isOn)
{
    return isOn ? "on" : "off";
}

std::string selectorOf(const Arguments& arguments)
{
    return arguments.one("CHANNELS").value_or("");
}

/// What a channel is set to.
struct Settings
{
    std::string channel;
    double volts = 0.0;
    double amperes = 0.0;
    bool isOn = false;
    bool hasOvp = false;
    double ovpVolts = 0.0;
    bool hasOcp = false;
    double ocpAmperes = 0.0;
};

Settings settingsOf(const kvx2800t::Session& supply, const std::string& name)
{
    const kvx2800t::Channel channel = supply.channel(name);
    const kvx2800t::Protection protection = channel.protection();
    return {name,
            channel.voltageLevel().get(),
            channel.currentLimit().get(),
            channel.outputEnabled().get(),
            protection.ovpEnabled().get(),
            protection.ovpLimit().get(),
            protection.outputOcpEnabled().get(),
            protection.outputOcpValue().get()};
}

Document documentOf(const Settings& settings)
{
    return Document::Object{
        {"channel", settings.channel}, {"voltage", settings.volts},       {"currentLimit", settings.amperes},
        {"output", settings.isOn},     {"ovp", settings.hasOvp},          {"ovpLevel", settings.ovpVolts},
        {"ocp", settings.hasOcp},      {"ocpLevel", settings.ocpAmperes},
    };
}

/// The level of a protection, in brackets while it is off.
std::string levelText(bool isOn, double level, Quantity quantity)
{
    const std::string text = quantityText(level, quantity);
    return isOn ? text : "off (" + text + ")";
}

std::vector<std::string> rowOf(const Settings& settings)
{
    return {settings.channel,
            quantityText(settings.volts, Quantity::Voltage),
            quantityText(settings.amperes, Quantity::Current),
            onOff(settings.isOn),
            levelText(settings.hasOvp, settings.ovpVolts, Quantity::Voltage),
            levelText(settings.hasOcp, settings.ocpAmperes, Quantity::Current)};
}

void showSettings(Console& console, const std::string& sourceMode, const std::vector<Settings>& all)
{
    Document::Array items;
    std::vector<std::vector<std::string>> rows = {{"Channel", "Voltage", "Limit", "Output", "OVP", "OCP"}};
    for (const Settings& settings : all) {
        items.push_back(documentOf(settings));
        rows.push_back(rowOf(settings));
    }
    show(console, Document::Object{{"sourceMode", sourceMode}, {"channels", std::move(items)}},
         "Source mode " + sourceMode + "\n" + columns(rows));
}

/// What a command line asks to be set.
struct WantedSettings
{
    std::optional<double> volts;
    std::optional<double> amperes;
    std::optional<bool> isOn;
};

template <class Value>
void give(std::optional<Value>& place, const Value& value, const std::string& text)
{
    if (place)
        throw UsageError("given twice: " + text);
    place = value;
}

void take(WantedSettings& wanted, const std::string& text)
{
    const auto measure = parseMeasure(text);
    if (text == "on" || text == "off")
        give(wanted.isOn, text == "on", text);
    else if (measure && measure->quantity == Quantity::Voltage)
        give(wanted.volts, measure->value, text);
    else if (measure && measure->quantity == Quantity::Current)
        give(wanted.amperes, measure->value, text);
    else
        throw UsageError("neither a voltage (5V) nor a current (500mA), on or off: " + text);
}

/// An output that goes off does so before its levels change, one that goes on behind that.
void apply(kvx2800t::Session& supply, const std::string& channels, const WantedSettings& wanted)
{
    namespace attribute = kvx2800t::attribute;
    if (wanted.isOn == false)
        supply.configureOutputEnabled(channels, false);
    if (wanted.volts)
        supply.configureVoltageLevel(channels, *wanted.volts);
    if (wanted.amperes)
        supply.set(attribute::currentLimit, channels, *wanted.amperes);
    if (wanted.isOn == true)
        supply.configureOutputEnabled(channels, true);
}

} // namespace

void get(const Arguments& arguments, Console& console)
{
    const kvx2800t::Session supply = openSupply(arguments);
    std::vector<Settings> all;
    for (const std::string& channel : channelsOf(supply, selectorOf(arguments)))
        all.push_back(settingsOf(supply, channel));
    showSettings(console, kSourceModes.at(static_cast<std::size_t>(supply.sourceMode().get())), all);
}

void set(const Arguments& arguments, Console& console)
{
    WantedSettings wanted;
    for (const std::string& value : arguments.all("VALUES"))
        take(wanted, value);
    kvx2800t::Session supply = openSupply(arguments);
    const std::string channels = selectorOf(arguments);
    configure(supply, [&] { apply(supply, channels, wanted); });
    if (console.json)
        show(console, Document::Object{{"channels", channels}}, "");
}

void off(const Arguments& arguments, Console& console)
{
    const std::string channels = selectorOf(arguments);
    if (channels.empty() != arguments.has("--all"))
        throw UsageError("which outputs? Name channels, or all of them by --all");
    kvx2800t::Session supply = openSupply(arguments);
    configure(supply, [&] {
        if (channels.empty())
            supply.disable();
        else
            supply.configureOutputEnabled(channels, false);
    });
    if (console.json)
        show(console, Document::Object{{"channels", channels.empty() ? "all" : channels}}, "");
}

} // namespace command_line::commands
