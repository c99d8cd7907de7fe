#include "tools/store/command_line.h"

#include "tools/store/argument_texts.h"
#include "tools/store/exit_codes.h"
#include "tools/store/plain_text.h"
#include "tools/store/values.h"

#include <CLI/CLI.hpp>
#include <ostream>

namespace store_tool
{
namespace
{

/// The texts of the options of `add` that are more than one value.
struct AddTexts
{
    std::string name;
    std::string resource;
    std::string asset;
    std::array<std::string, kSessionFlags.size()> flags;
    std::vector<std::string> virtualNames;
    std::vector<std::string> virtualRanges;
    std::vector<std::string> settings;
};

const CLI::Validator& text()
{
    static const auto& validator = *new CLI::Validator(complaintAboutText, "");
    return validator;
}

const CLI::Validator& name()
{
    static const auto& validator = *new CLI::Validator(complaintAboutName, "");
    return validator;
}

/// Accepts what `parse` reads.
template <class Parse>
CLI::Validator form(const std::string& pattern, Parse parse)
{
    return {[pattern, parse](const std::string& argument) {
                if (!isPlainText(argument) || argument.size() > kLongestText)
                    return complaintAboutText(argument);
                return parse(argument) ? std::string() : "not " + pattern + ": " + inQuotes(argument);
            },
            ""};
}

std::optional<bool> parseFlagOption(std::string_view argument)
{
    return argument == "0" || argument == "1" ? parseBoolean(argument) : std::nullopt;
}

/// An option that may be given several times, each time with one value as it stands.
CLI::Option* addList(CLI::App& command, const std::string& option, std::vector<std::string>& values,
                     const std::string& pattern, const std::string& meaning)
{
    return command.add_option(option, values, meaning + "; may be repeated")
        ->allow_extra_args(false)
        ->take_all()
        ->type_name(pattern);
}

void describeNames(CLI::App& command, Request& request, AddTexts& texts)
{
    SessionEntry& entry = request.entry;
    command.add_option("NAME", texts.name, "name of the driver session")->required()->check(name())->type_name("");
    command.add_option("--description", entry.description, "what the session is for")->check(text())->type_name("TEXT");
    command.add_option("--resource", texts.resource, "VISA resource descriptor of the instrument")
        ->check(name())
        ->type_name("DESCRIPTOR");
    command.add_option("--asset", texts.asset, "name of the hardware asset [NAME]")->check(name())->type_name("NAME");
    command.add_option("--module", entry.softwareModule, "name of the software module [KVX2800T]")
        ->check(name())
        ->type_name("NAME");
    addList(command, "--logical", entry.logicalNames, "NAME", "logical name that leads to the session")->check(name());
}

void describeOptions(CLI::App& command, Request& request, AddTexts& texts)
{
    for (std::size_t i = 0; i < kSessionFlags.size(); ++i) {
        const SessionFlag& flag = kSessionFlags[i];
        command
            .add_option(std::string(flag.option), texts.flags[i],
                        std::string(flag.meaning) + (flag.byDefault ? " [1]" : " [0]"))
            ->check(form("0 or 1", parseFlagOption))
            ->type_name("0|1");
    }
    command.add_option("--driver-setup", request.entry.driverSetup, "the DriverSetup text, such as Model:KVX2833T")
        ->check(text())
        ->type_name("TEXT");
}

void describeSelectors(CLI::App& command, AddTexts& texts)
{
    const std::string plain = "Name=MapTo";
    const std::string ranged = "Name=MapTo:min-max@start";
    const std::string setting = "type:Name=Value";
    addList(command, "--virtual", texts.virtualNames, plain, "virtual name")->check(form(plain, parseVirtualName));
    addList(command, "--virtual-range", texts.virtualRanges, ranged,
            "virtual names with an index: Rail=OutputChannel:1-3@2 makes Rail1 OutputChannel2")
        ->check(form(ranged, parseVirtualRange));
    addList(command, "--set", texts.settings, setting,
            "configurable initial setting; the type is boolean, integer, real or string")
        ->check(form(setting, parseSetting));
}

CLI::App& describeAdd(CLI::App& app, Request& request, AddTexts& texts)
{
    CLI::App& command = *app.add_subcommand("add", "Add a driver session with all that belongs to it.");
    describeNames(command, request, texts);
    describeOptions(command, request, texts);
    describeSelectors(command, texts);
    command.add_flag("--replace", request.replaces, "remove first what has the names of the session");
    command.add_flag("--create", request.creates, "make the store when there is none");
    return command;
}

/// Fills the entry from texts that their options have checked.
void fillEntry(SessionEntry& entry, const AddTexts& texts)
{
    entry.name = texts.name;
    if (!texts.resource.empty())
        entry.resource = texts.resource;
    if (!texts.asset.empty())
        entry.asset = texts.asset;
    for (std::size_t i = 0; i < kSessionFlags.size(); ++i)
        entry.flags[i] = parseFlagOption(texts.flags[i]).value_or(kSessionFlags[i].byDefault);
    for (const std::string& argument : texts.virtualNames)
        entry.virtualNames.push_back(*parseVirtualName(argument));
    for (const std::string& argument : texts.virtualRanges)
        entry.virtualNames.push_back(*parseVirtualRange(argument));
    entry.virtualNames = merged(entry.virtualNames);
    for (const std::string& argument : texts.settings)
        entry.settings.push_back(*parseSetting(argument));
}

} // namespace

CommandLine parseCommandLine(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& errors)
{
    Request request;
    AddTexts texts;
    std::string store;
    bool onlyLogical = false;

    CLI::App app("Looks after an IVI configuration store file.", "kvx2800t-store");
    app.set_version_flag("--version", "kvx2800t-store " KVX_STORE_TOOL_VERSION);
    // Texts may begin with a slash on every host.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--store", store, "the store file [the one that the configuration server uses]")
        ->check(CLI::Validator([](const std::string& path) { return path.empty() ? "is empty" : ""; }, ""))
        ->type_name("FILE");
    const CLI::App* const list = app.add_subcommand("list", "Show sessions, logical names and software modules.");
    const CLI::App& add = describeAdd(app, request, texts);
    CLI::App* const remove = app.add_subcommand("remove", "Remove a driver session or a logical name.");
    remove->add_option("NAME", request.name, "name of the session or the logical name")
        ->required()
        ->check(name())
        ->type_name("");
    remove->add_flag("--logical", onlyLogical, "remove the logical name only, not a session of this name");
    app.add_subcommand("check",
                       "Look for what breaks the rules of the file format, and for what fails or has no effect later.");

    CLI::App* const registers = app.add_subcommand(
        "register", "Register the driver's software module in the master store, as installing does.");
    registers->add_flag("--create", request.creates, "make the store when there is none");
    const CLI::App* const unregisters =
        app.add_subcommand("unregister", "Take the driver's software module out of the master store; sessions stay.");

    try {
        app.parse(argumentCount, arguments);
        if (add.parsed() && texts.resource.empty() && texts.asset.empty())
            throw CLI::ValidationError("add", "needs --resource, or --asset of a hardware asset that the store has");
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error, out, errors) == 0 ? kSuccess : kUsageError};
    }
    if (!store.empty())
        request.store = store;
    if (add.parsed())
        fillEntry(request.entry, texts);
    if (add.parsed())
        request.command = Command::Add;
    else if (remove->parsed())
        request.command = onlyLogical ? Command::RemoveLogicalName : Command::Remove;
    else if (registers->parsed() || unregisters->parsed())
        request.command = registers->parsed() ? Command::Register : Command::Unregister;
    else
        request.command = list->parsed() ? Command::List : Command::Check;
    return {std::move(request), kSuccess};
}

} // namespace store_tool
