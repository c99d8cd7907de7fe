#pragma once

#include "examples/kvx2800t.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a page can ask for: one table of actions, with what they are called in messages, which members those have, and
/// the lines of C and Python that do the same.
namespace panel
{

inline constexpr int kChannelCount = 6;

enum class ActionKind
{
    SetVoltage,
    SetCurrent,
    SetOutput,
    AllOff,
    SetOvp,
    SetOcp,
    ResetProtection,
    SetSourceMode,
    LoadList,
    RunList,
    PauseList,
    StopList,
    ReadList,
    ClearErrors,
    Reconnect,
    Reset
};

/// Of its members those count that the table has for its kind.
struct Action
{
    ActionKind kind = ActionKind::AllOff;
    int channel = 1; ///< from 1
    double value = 0.0;
    bool on = false;
    kvx2800t::SourceMode mode = kvx2800t::SourceMode::normal;
    std::vector<kvx2800t::ListGroup> groups; ///< at least one
    ViInt32 cycles = 1;
    kvx2800t::ListEnd end = kvx2800t::ListEnd::off;
};

enum class Member
{
    Channel, ///< "channel": "CH1"
    Value,   ///< "value": volts or amperes
    On,      ///< "on"
    Enabled, ///< "enabled", the same in Action
    Mode,    ///< "mode": "normal", "series", "parallel"
    Groups,  ///< "groups": [{"voltage", "current", "duration"}]
    Cycles,  ///< "cycles"
    End      ///< "end": "off", "last"
};

/// In lines, $ and a word stand for what is in the action: channel and alias ("OutputChannel1", "CH1"), value, on,
/// mode, cycles, end, and for lists count, volts, amperes, seconds (C) and groups (Python); resource and simulate are
/// the session's.
struct ActionRow
{
    ActionKind kind;
    std::string_view name;
    std::vector<Member> members;
    std::vector<std::string_view> c;
    std::vector<std::string_view> python;
};

const std::vector<ActionRow>& actionTable();

/// Nothing for a name that is none.
const ActionRow* findAction(std::string_view name);

const ActionRow& rowOf(ActionKind kind);

/// "CH1", and "OutputChannel1".
std::string channelAlias(int channel);
std::string channelName(int channel);

/// What a name in messages stands for: words of a page's message are read and state is written by the same table.
std::string_view wordOf(kvx2800t::SourceMode mode);
std::string_view wordOf(kvx2800t::ListEnd end);
std::string_view wordOf(kvx2800t::ListState state);
std::optional<kvx2800t::SourceMode> sourceModeOf(std::string_view word);
std::optional<kvx2800t::ListEnd> listEndOf(std::string_view word);

} // namespace panel
