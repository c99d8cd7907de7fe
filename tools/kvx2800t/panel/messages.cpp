#include "tools/kvx2800t/panel/messages.h"

#include "tools/kvx2800t/command_line/status_names.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

namespace panel
{
namespace
{

using Json = nlohmann::json;

/// Of the numbers that JavaScript counts with.
constexpr std::int64_t kLargestId = (std::int64_t{1} << 53) - 1;

/// What is wrong with a message.
class ShapeError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string quotedName(std::string_view name)
{
    return '"' + std::string(name) + '"';
}

const Json& memberOf(const Json& object, const char* name)
{
    const auto member = object.find(name);
    if (member == object.end())
        throw ShapeError(quotedName(name) + " is missing");
    return *member;
}

double numberIn(const Json& object, const char* name)
{
    const Json& member = memberOf(object, name);
    if (!member.is_number() || !std::isfinite(member.get<double>()))
        throw ShapeError(quotedName(name) + " is no finite number");
    return member.get<double>();
}

std::int64_t integerIn(const Json& object, const char* name, std::int64_t smallest, std::int64_t largest)
{
    const Json& member = memberOf(object, name);
    // What is beyond 63 bits is unsigned, and negative as a signed one.
    if (!member.is_number_integer() || member.get<std::int64_t>() < smallest || member.get<std::int64_t>() > largest)
        throw ShapeError(quotedName(name) + " is no integer from " + std::to_string(smallest) + " to " +
                         std::to_string(largest));
    return member.get<std::int64_t>();
}

bool switchIn(const Json& object, const char* name)
{
    const Json& member = memberOf(object, name);
    if (!member.is_boolean())
        throw ShapeError(quotedName(name) + " is neither true nor false");
    return member.get<bool>();
}

const std::string& wordIn(const Json& object, const char* name)
{
    const Json& member = memberOf(object, name);
    if (!member.is_string())
        throw ShapeError(quotedName(name) + " is no text");
    return member.get_ref<const std::string&>();
}

/// One of a few words.
template <class Value>
Value choiceIn(const Json& object, const char* name, std::optional<Value> (*valueOf)(std::string_view))
{
    const auto value = valueOf(wordIn(object, name));
    if (!value)
        throw ShapeError(quotedName(name) + " is none of its words");
    return *value;
}

std::optional<int> channelOf(std::string_view word)
{
    for (int channel = 1; channel <= kChannelCount; ++channel)
        if (word == channelAlias(channel))
            return channel;
    return std::nullopt;
}

void checkNames(const Json& object, const std::set<std::string_view>& names)
{
    for (const auto& member : object.items())
        if (!names.contains(member.key()))
            throw ShapeError("there is no " + quotedName(member.key()) + " in it");
}

kvx2800t::ListGroup groupIn(const Json& group)
{
    if (!group.is_object())
        throw ShapeError("a group is no object");
    checkNames(group, {"voltage", "current", "duration"});
    return {numberIn(group, "voltage"), numberIn(group, "current"), numberIn(group, "duration")};
}

std::vector<kvx2800t::ListGroup> groupsIn(const Json& object, const char* name)
{
    const Json& member = memberOf(object, name);
    if (!member.is_array() || member.empty())
        throw ShapeError(quotedName(name) + " is no array of groups");
    std::vector<kvx2800t::ListGroup> groups;
    std::transform(member.begin(), member.end(), std::back_inserter(groups), groupIn);
    return groups;
}

/// A member: what it is called, and how it is read.
struct MemberRow
{
    const char* name;
    void (*read)(const Json& object, const char* name, Action& action);
};

// In the order of Member.
constexpr std::array<MemberRow, 8> kMembers = {{
    {"channel", [](const Json& o, const char* n, Action& a) { a.channel = choiceIn(o, n, channelOf); }},
    {"value", [](const Json& o, const char* n, Action& a) { a.value = numberIn(o, n); }},
    {"on", [](const Json& o, const char* n, Action& a) { a.on = switchIn(o, n); }},
    {"enabled", [](const Json& o, const char* n, Action& a) { a.on = switchIn(o, n); }},
    {"mode", [](const Json& o, const char* n, Action& a) { a.mode = choiceIn(o, n, sourceModeOf); }},
    {"groups", [](const Json& o, const char* n, Action& a) { a.groups = groupsIn(o, n); }},
    {"cycles",
     [](const Json& o, const char* n, Action& a) {
         a.cycles = static_cast<ViInt32>(integerIn(o, n, 0, std::numeric_limits<std::int32_t>::max()));
     }},
    {"end", [](const Json& o, const char* n, Action& a) { a.end = choiceIn(o, n, listEndOf); }},
}};

const MemberRow& rowOf(Member member)
{
    return kMembers.at(static_cast<std::size_t>(member));
}

Action actionIn(const Json& object)
{
    const std::string& name = wordIn(object, "do");
    const ActionRow* row = findAction(name);
    if (row == nullptr)
        throw ShapeError("there is no action " + quotedName(name));
    std::set<std::string_view> names = {"id", "do"};
    for (const Member member : row->members)
        names.insert(rowOf(member).name);
    checkNames(object, names);
    Action action;
    action.kind = row->kind;
    for (const Member member : row->members)
        rowOf(member).read(object, rowOf(member).name, action);
    return action;
}

/// A text for pages, whatever the instrument has put into it.
std::string textOf(const Json& message)
{
    return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string_view wordOfLink(LinkState state)
{
    constexpr std::array<std::string_view, 3> kWords = {"connecting", "connected", "lost"};
    return kWords.at(static_cast<std::size_t>(state));
}

/// What an output holds: without a regulation it is off, or on and neither constant voltage nor constant current.
std::string_view wordOfRegulation(const ChannelState& channel)
{
    if (!channel.outputEnabled)
        return "off";
    if (channel.condition.constantCurrent())
        return "CC";
    return channel.condition.constantVoltage() ? "CV" : "unregulated";
}

Json jsonOfTrips(const kvx2800t::QuestionableStatus& condition)
{
    Json trips = Json::array();
    if (condition.overVoltage())
        trips.push_back("OVP");
    if (condition.overCurrent())
        trips.push_back("OCP");
    return trips;
}

Json jsonOfChannel(int number, const ChannelState& channel)
{
    const ChannelSettings& settings = channel.settings;
    return {{"name", channelAlias(number)},
            {"voltageLevel", settings.voltageLevel},
            {"currentLimit", settings.currentLimit},
            {"outputEnabled", channel.outputEnabled},
            {"maxVoltage", settings.maxVoltage},
            {"maxCurrent", settings.maxCurrent},
            {"ovpEnabled", settings.ovpEnabled},
            {"ovpLimit", settings.ovpLimit},
            {"ocpEnabled", settings.ocpEnabled},
            {"ocpLevel", settings.ocpLevel},
            {"voltage", channel.reading.volts},
            {"current", channel.reading.amperes},
            {"power", channel.reading.watts},
            {"regulation", wordOfRegulation(channel)},
            {"tripped", jsonOfTrips(channel.condition)}};
}

/// From 1; 0 for a list that is stopped or has no end. The driver counts those that remain, the present one included.
ViInt32 cycleOf(const ListProgress& progress)
{
    return progress.status.remainingCycles > 0 ? progress.cycles - progress.status.remainingCycles + 1 : 0;
}

Json jsonOfProgress(const ListProgress& progress)
{
    return {{"channel", channelAlias(progress.channel)},
            {"state", wordOf(progress.status.state)},
            {"group", progress.status.group},
            {"groups", progress.groups},
            {"remaining", progress.status.remainingSeconds},
            {"cycle", cycleOf(progress)},
            {"cycles", progress.cycles}};
}

void addInstrument(Json& message, const InstrumentState& instrument)
{
    const Identity& identity = instrument.identity;
    message["identity"] = {{"manufacturer", identity.manufacturer},
                           {"model", identity.model},
                           {"serial", identity.serial},
                           {"firmware", identity.firmware}};
    message["sourceMode"] = wordOf(instrument.sourceMode);
    Json channels = Json::array();
    for (const ChannelState& channel : instrument.channels)
        channels.push_back(jsonOfChannel(static_cast<int>(channels.size()) + 1, channel));
    message["channels"] = std::move(channels);
    Json lists = Json::array();
    std::transform(instrument.lists.begin(), instrument.lists.end(), std::back_inserter(lists), jsonOfProgress);
    message["lists"] = std::move(lists);
}

} // namespace

std::variant<PageRequest, Refusal> readRequest(std::string_view text)
{
    const Json message = Json::parse(text, nullptr, false);
    if (!message.is_object())
        return Refusal{false, std::nullopt, "this is no JSON object"};
    Refusal refusal;
    try {
        PageRequest request;
        request.id = integerIn(message, "id", 1, kLargestId);
        refusal.id = request.id;
        request.action = actionIn(message);
        return request;
    } catch (const ShapeError& error) {
        refusal.text = error.what();
        return refusal;
    }
}

std::string helloMessage(std::string_view version, std::string_view resource, bool simulated)
{
    Json channels = Json::array();
    for (int channel = 1; channel <= kChannelCount; ++channel)
        channels.push_back({{"name", channelAlias(channel)}, {"physical", channelName(channel)}});
    return textOf({{"type", "hello"},
                   {"version", version},
                   {"resource", resource},
                   {"simulated", simulated},
                   {"channels", std::move(channels)}});
}

std::string stateMessage(const Snapshot& snapshot)
{
    Json message = {{"type", "state"},
                    {"sequence", snapshot.sequence},
                    {"time", snapshot.seconds},
                    {"link", {{"state", wordOfLink(snapshot.link.state)}, {"text", snapshot.link.text}}},
                    {"identity", nullptr},
                    {"sourceMode", nullptr},
                    {"channels", nullptr},
                    {"lists", nullptr}};
    if (snapshot.instrument)
        addInstrument(message, *snapshot.instrument);
    return textOf(message);
}

std::string errorsMessage(const ErrorReport& report)
{
    Json entries = Json::array();
    for (const auto& error : report.entries)
        entries.push_back({{"code", error.code}, {"text", error.message}});
    Json message = {{"type", "errors"}, {"entries", std::move(entries)}};
    if (report.cleared)
        message["cleared"] = true;
    return textOf(message);
}

std::string resultMessage(const Result& result)
{
    Json message = {{"type", "result"}, {"id", result.id}, {"ok", result.ok}};
    if (result.code)
        message["code"] = command_line::statusNumber(*result.code);
    if (!result.ok) {
        message["name"] = result.name;
        message["text"] = result.text;
    } else if (result.code) {
        message["warning"] = result.text;
    }
    return textOf(message);
}

std::string refusalMessage(const Refusal& refusal)
{
    Json message = {
        {"type", "result"}, {"id", nullptr}, {"ok", false}, {"name", "INVALID_MESSAGE"}, {"text", refusal.text}};
    if (refusal.id)
        message["id"] = *refusal.id;
    return textOf(message);
}

std::string linesMessage(const Lines& lines, bool own)
{
    return textOf({{"type", "lines"},
                   {"id", lines.id},
                   {"page", own},
                   {"scpi", lines.scpi},
                   {"c", lines.c},
                   {"python", lines.python}});
}

std::string listMessage(const LoadedList& list)
{
    Json groups = Json::array();
    for (const auto& group : list.groups)
        groups.push_back({{"voltage", group.volts}, {"current", group.amperes}, {"duration", group.seconds}});
    return textOf({{"type", "list"},
                   {"channel", channelAlias(list.channel)},
                   {"groups", std::move(groups)},
                   {"cycles", list.cycles},
                   {"end", wordOf(list.end)}});
}

} // namespace panel
