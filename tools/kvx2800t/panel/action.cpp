#include "tools/kvx2800t/panel/action.h"

#include <algorithm>
#include <array>

namespace panel
{
namespace
{

using M = Member;
using K = ActionKind;

/// What a channel's list is in both languages.
#define KVX_PYTHON_LIST "supply.channels[\"$alias\"].list"

template <class Value, std::size_t kCount>
std::optional<Value> valueOf(const std::array<std::string_view, kCount>& words, std::string_view word)
{
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end())
        return std::nullopt;
    return static_cast<Value>(found - words.begin());
}

// In the order of the driver's values.
constexpr std::array<std::string_view, 3> kSourceModeWords = {"normal", "series", "parallel"};
constexpr std::array<std::string_view, 2> kListEndWords = {"off", "last"};
constexpr std::array<std::string_view, 4> kListStateWords = {"stopped", "ready", "running", "paused"};

} // namespace

const std::vector<ActionRow>& actionTable()
{
    static const std::vector<ActionRow> rows = {
        {K::SetVoltage,
         "setVoltage",
         {M::Channel, M::Value},
         {"KVX2800T_ConfigureVoltageLevel(vi, \"$channel\", $value);"},
         {"supply.channels[\"$alias\"].voltage_level = $value"}},
        {K::SetCurrent,
         "setCurrent",
         {M::Channel, M::Value},
         {"KVX2800T_SetAttributeViReal64(vi, \"$channel\", KVX2800T_ATTR_CURRENT_LIMIT, $value);"},
         {"supply.channels[\"$alias\"].current_limit = $value"}},
        {K::SetOutput,
         "setOutput",
         {M::Channel, M::On},
         {"KVX2800T_ConfigureOutputEnabled(vi, \"$channel\", $on);"},
         {"supply.channels[\"$alias\"].output_enabled = $on"}},
        {K::AllOff, "allOff", {}, {"KVX2800T_Disable(vi);"}, {"supply.disable()"}},
        {K::SetOvp,
         "setOvp",
         {M::Channel, M::Enabled, M::Value},
         {"KVX2800T_ConfigureOVP(vi, \"$channel\", $on, $value);"},
         {"supply.channels[\"$alias\"].protection.configure_ovp($on, $value)"}},
        {K::SetOcp,
         "setOcp",
         {M::Channel, M::Enabled, M::Value},
         {"KVX2800T_ConfigureOCPValue(vi, \"$channel\", $value);",
          "KVX2800T_ConfigureOCPEnabled(vi, \"$channel\", $on);"},
         {"supply.channels[\"$alias\"].protection.output_ocp_value = $value",
          "supply.channels[\"$alias\"].protection.output_ocp_enabled = $on"}},
        {K::ResetProtection,
         "resetProtection",
         {M::Channel},
         {"KVX2800T_ResetOutputProtection(vi, \"$channel\");"},
         {"supply.channels[\"$alias\"].protection.reset()"}},
        {K::SetSourceMode,
         "setSourceMode",
         {M::Mode},
         {"KVX2800T_ConfigureSourceMode(vi, $mode);"},
         {"supply.source_mode = $mode"}},
        {K::LoadList,
         "loadList",
         {M::Channel, M::Groups, M::Cycles, M::End},
         {"const ViReal64 volts[] = {$volts};", "const ViReal64 amperes[] = {$amperes};",
          "const ViReal64 seconds[] = {$seconds};",
          "KVX2800T_LoadList(vi, \"$channel\", $count, volts, amperes, seconds);",
          "KVX2800T_ConfigureListCycles(vi, \"$channel\", $cycles);",
          "KVX2800T_ConfigureListEndState(vi, \"$channel\", $end);"},
         {KVX_PYTHON_LIST ".load([$groups])", KVX_PYTHON_LIST ".cycles = $cycles",
          KVX_PYTHON_LIST ".end_state = $end"}},
        {K::RunList, "runList", {M::Channel}, {"KVX2800T_RunList(vi, \"$channel\");"}, {KVX_PYTHON_LIST ".run()"}},
        {K::PauseList,
         "pauseList",
         {M::Channel},
         {"KVX2800T_PauseList(vi, \"$channel\");"},
         {KVX_PYTHON_LIST ".pause()"}},
        {K::StopList,
         "stopList",
         {M::Channel},
         {"KVX2800T_ConfigureListEnabled(vi, \"$channel\", VI_FALSE);"},
         {KVX_PYTHON_LIST ".stop()"}},
        {K::ReadList,
         "readList",
         {M::Channel},
         {"ViInt32 count = 0, number, cycles, end;", "ViReal64 volts, amperes, seconds;",
          "KVX2800T_QueryListGroupCount(vi, \"$channel\", &count);", "for (number = 1; number <= count; ++number)",
          "    KVX2800T_QueryListGroup(vi, \"$channel\", number, &volts, &amperes, &seconds);",
          "KVX2800T_QueryListCycles(vi, \"$channel\", &cycles);",
          "KVX2800T_QueryListEndState(vi, \"$channel\", &end);"},
         {"for number in range(1, " KVX_PYTHON_LIST ".group_count + 1):",
          "    print(" KVX_PYTHON_LIST ".group(number))",
          "print(" KVX_PYTHON_LIST ".cycles, " KVX_PYTHON_LIST ".end_state)"}},
        {K::ClearErrors, "clearErrors", {}, {"KVX2800T_ClearStatus(vi);"}, {"supply.clear_status()"}},
        {K::Reconnect,
         "reconnect",
         {},
         {"KVX2800T_close(vi);", R"(KVX2800T_InitWithOptions("$resource", VI_FALSE, VI_FALSE, "$options", &vi);)"},
         {"supply.close()", "supply = Supply(\"$resource\"$simulate)"}},
        {K::Reset, "reset", {}, {"KVX2800T_reset(vi);"}, {"supply.reset()"}},
    };
    return rows;
}

#undef KVX_PYTHON_LIST

const ActionRow* findAction(std::string_view name)
{
    const auto& rows = actionTable();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [name](const ActionRow& row) { return row.name == name; });
    return found == rows.end() ? nullptr : &*found;
}

const ActionRow& rowOf(ActionKind kind)
{
    // The rows are in the order of the kinds.
    return actionTable()[static_cast<std::size_t>(kind)];
}

std::string channelAlias(int channel)
{
    return "CH" + std::to_string(channel);
}

std::string channelName(int channel)
{
    return "OutputChannel" + std::to_string(channel);
}

std::string_view wordOf(kvx2800t::SourceMode mode)
{
    return kSourceModeWords.at(static_cast<std::size_t>(mode));
}

std::string_view wordOf(kvx2800t::ListEnd end)
{
    return kListEndWords.at(static_cast<std::size_t>(end));
}

std::string_view wordOf(kvx2800t::ListState state)
{
    return kListStateWords.at(static_cast<std::size_t>(state));
}

std::optional<kvx2800t::SourceMode> sourceModeOf(std::string_view word)
{
    return valueOf<kvx2800t::SourceMode>(kSourceModeWords, word);
}

std::optional<kvx2800t::ListEnd> listEndOf(std::string_view word)
{
    return valueOf<kvx2800t::ListEnd>(kListEndWords, word);
}

} // namespace panel
