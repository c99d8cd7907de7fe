#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/interruption.h"
#include "tools/kvx2800t/command_line/program_files.h"
#include "tools/kvx2800t/command_line/supply.h"
#include "tools/kvx2800t/command_line/units.h"

#include <array>
#include <charconv>

namespace command_line::commands
{
namespace
{

/// What lists and delay programs have of their own; the commands below are for both.
struct Lists
{
    using Program = kvx2800t::ListProgram;
    using Group = kvx2800t::ListGroup;
    using State = kvx2800t::ListState;
    using End = kvx2800t::ListEnd;
    static constexpr std::string_view kColumns = kListColumns;
    static constexpr auto kParse = parseList;
    static constexpr std::array<const char*, 4> kStates = {"stopped", "ready", "running", "paused"};
    static constexpr std::array<const char*, 2> kEnds = {"off", "last"};

    static Program of(const kvx2800t::Channel& channel) { return channel.list(); }
    static void start(const Program& program) { program.run(); }
    static Document documentOf(const Group& group)
    {
        return Document::Object{{"voltage", group.volts}, {"current", group.amperes}, {"duration", group.seconds}};
    }
};

struct Delays
{
    using Program = kvx2800t::DelayProgram;
    using Group = kvx2800t::DelayGroup;
    using State = kvx2800t::DelayState;
    using End = kvx2800t::DelayEnd;
    static constexpr std::string_view kColumns = kDelayColumns;
    static constexpr auto kParse = parseDelay;
    static constexpr std::array<const char*, 2> kStates = {"stopped", "running"};
    static constexpr std::array<const char*, 3> kEnds = {"off", "on", "last"};

    static Program of(const kvx2800t::Channel& channel) { return channel.delay(); }
    static void start(const Program& program) { program.start(); }
    static Document documentOf(const Group& group)
    {
        return Document::Object{{"output", group.on}, {"duration", group.seconds}};
    }
};

std::string required(const Arguments& arguments, const std::string& name)
{
    return arguments.one(name).value_or("");
}

std::optional<ViInt32> cyclesOf(const Arguments& arguments)
{
    const auto text = arguments.one("--cycles");
    if (!text)
        return std::nullopt;
    ViInt32 cycles = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), cycles);
    if (error != std::errc() || end != text->data() + text->size() || cycles < 0)
        throw UsageError("--cycles: not a number of cycles: " + *text);
    return cycles;
}

template <class Kind>
std::optional<typename Kind::End> endOf(const Arguments& arguments)
{
    const auto text = arguments.one("--end");
    if (!text)
        return std::nullopt;
    for (std::size_t i = 0; i < Kind::kEnds.size(); ++i)
        if (*text == Kind::kEnds[i])
            return static_cast<typename Kind::End>(i);
    throw UsageError("--end: no such end: " + *text);
}

template <class Kind>
void load(const Arguments& arguments, Console& console)
{
    const auto cycles = cyclesOf(arguments);
    const auto end = endOf<Kind>(arguments);
    const std::string file = required(arguments, "FILE");
    const auto groups = Kind::kParse(readFile(file, console.in), file);
    const std::string channels = required(arguments, "CHANNELS");
    kvx2800t::Session supply = openSupply(arguments);
    configure(supply, [&] {
        Progress progress(console);
        progress.show("Loading " + counted(static_cast<std::int64_t>(groups.size()), "group") + " ...");
        const auto program = Kind::of(supply.channel(channels));
        program.load(groups);
        if (cycles)
            program.cycles().set(*cycles);
        if (end)
            program.endState().set(*end);
    });
    show(console, Document::Object{{"channels", channels}, {"groups", static_cast<int>(groups.size())}},
         channels + ": " + counted(static_cast<std::int64_t>(groups.size()), "group") + " loaded\n");
}

template <class Kind>
void showGroups(const Arguments& arguments, Console& console)
{
    const kvx2800t::Session supply = openSupply(arguments);
    const auto program = Kind::of(supply.channel(required(arguments, "CHANNEL")));
    Document::Array items;
    std::string text = std::string(Kind::kColumns) + '\n';
    for (ViInt32 number = 1, count = program.groupCount(); number <= count; ++number) {
        const auto group = program.group(number);
        items.push_back(Kind::documentOf(group));
        text += csvText(group) + '\n';
    }
    show(console,
         Document::Object{{"cycles", static_cast<int>(program.cycles().get())},
                          {"end", Kind::kEnds.at(static_cast<std::size_t>(program.endState().get()))},
                          {"groups", std::move(items)}},
         text);
}

/// A program of a channel that is followed.
template <class Kind>
struct Followed
{
    std::string channel;
    typename Kind::Program program;
    ViInt32 groups;
    kvx2800t::ProgramStatus<typename Kind::State> status{};
};

template <class Kind>
Document documentOf(const Followed<Kind>& followed)
{
    return Document::Object{{"channel", followed.channel},
                            {"state", Kind::kStates.at(static_cast<std::size_t>(followed.status.state))},
                            {"group", static_cast<int>(followed.status.group)},
                            {"groups", static_cast<int>(followed.groups)},
                            {"cyclesLeft", static_cast<int>(followed.status.remainingCycles)}};
}

template <class Kind>
std::string textOf(const Followed<Kind>& followed)
{
    const auto& status = followed.status;
    std::string text = followed.channel + " " + Kind::kStates.at(static_cast<std::size_t>(status.state));
    if (status.group > 0)
        text += ", group " + std::to_string(status.group) + " of " + std::to_string(followed.groups);
    if (status.remainingCycles > 1)
        text += ", " + std::to_string(status.remainingCycles) + " cycles left";
    return text;
}

template <class Status>
bool isSame(const Status& one, const Status& other)
{
    return one.state == other.state && one.group == other.group && one.remainingCycles == other.remainingCycles;
}

void requireNoTrip(const kvx2800t::Session& supply, const std::string& channel)
{
    const kvx2800t::ProtectionState state = supply.channel(channel).protection().state();
    if (state.tripped())
        throw Failure(ExitCode::InstrumentError, channel + ": the over-" + (state.overVoltage ? "voltage" : "current") +
                                                     " protection has switched the output off");
}

template <class Kind>
std::vector<Followed<Kind>> programsOf(const kvx2800t::Session& supply, const std::string& selector)
{
    std::vector<Followed<Kind>> all;
    for (const std::string& channel : channelsOf(supply, selector)) {
        const auto program = Kind::of(supply.channel(channel));
        all.push_back({channel, program, program.groupCount()});
    }
    return all;
}

/// Reads a program's status, and writes it when it is another one. @return whether the program has not stopped yet
template <class Kind>
bool refresh(Followed<Kind>& followed, bool isFirst, Progress& progress, Console& console)
{
    const auto status = followed.program.status();
    const bool isNews = isFirst || !isSame(status, followed.status);
    followed.status = status;
    if (isNews) {
        progress.wipe();
        showLine(console, documentOf(followed), textOf(followed));
    }
    return static_cast<int>(status.state) != 0;
}

/// How often a program that runs is looked at.
constexpr auto kRefreshPeriod = std::chrono::milliseconds(100);

/// Follows programs until all have stopped, or Ctrl-C.
template <class Kind>
void follow(const kvx2800t::Session& supply, const std::string& selector, Console& console)
{
    const Interruption interruption;
    Progress progress(console);
    auto all = programsOf<Kind>(supply, selector);
    bool isFirst = true;
    for (bool isRunning = true; isRunning && !interruption.isRequested();) {
        isRunning = false;
        std::string line;
        for (Followed<Kind>& followed : all) {
            isRunning = refresh(followed, isFirst, progress, console) || isRunning;
            line += (line.empty() ? "" : "   ") + followed.channel + " " +
                    quantityText(followed.status.remainingSeconds, Quantity::Time);
        }
        isFirst = false;
        progress.show(line + " left of the group");
        if (isRunning)
            interruption.waitUntil(std::chrono::steady_clock::now() + kRefreshPeriod);
    }
    progress.wipe();
    for (const Followed<Kind>& followed : all)
        requireNoTrip(supply, followed.channel);
}

template <class Kind>
void run(const Arguments& arguments, Console& console)
{
    kvx2800t::Session supply = openSupply(arguments);
    const std::string channels = required(arguments, "CHANNELS");
    configure(supply, [&] { Kind::start(Kind::of(supply.channel(channels))); });
    if (arguments.has("--watch"))
        follow<Kind>(supply, channels, console);
}

template <class Kind>
void watch(const Arguments& arguments, Console& console)
{
    const kvx2800t::Session supply = openSupply(arguments);
    follow<Kind>(supply, required(arguments, "CHANNELS"), console);
}

template <class Kind>
void stop(const Arguments& arguments, Console& /*console*/)
{
    kvx2800t::Session supply = openSupply(arguments);
    configure(supply, [&] { Kind::of(supply.channel(required(arguments, "CHANNELS"))).stop(); });
}

} // namespace

void loadList(const Arguments& arguments, Console& console)
{
    load<Lists>(arguments, console);
}

void showList(const Arguments& arguments, Console& console)
{
    showGroups<Lists>(arguments, console);
}

void runList(const Arguments& arguments, Console& console)
{
    run<Lists>(arguments, console);
}

void watchList(const Arguments& arguments, Console& console)
{
    watch<Lists>(arguments, console);
}

void pauseList(const Arguments& arguments, Console& /*console*/)
{
    kvx2800t::Session supply = openSupply(arguments);
    configure(supply, [&] { supply.channel(required(arguments, "CHANNELS")).list().pause(); });
}

void stopList(const Arguments& arguments, Console& console)
{
    stop<Lists>(arguments, console);
}

void loadDelay(const Arguments& arguments, Console& console)
{
    load<Delays>(arguments, console);
}

void showDelay(const Arguments& arguments, Console& console)
{
    showGroups<Delays>(arguments, console);
}

void runDelay(const Arguments& arguments, Console& console)
{
    run<Delays>(arguments, console);
}

void watchDelay(const Arguments& arguments, Console& console)
{
    watch<Delays>(arguments, console);
}

void stopDelay(const Arguments& arguments, Console& console)
{
    stop<Delays>(arguments, console);
}

} // namespace command_line::commands
