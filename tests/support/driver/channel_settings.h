#pragma once

#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/channel_limits.h"

#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace kvxtest
{

/// A call that sets something of channels, and what it sends to each of them: "$" stands for ":SOUR1" to ":SOUR6", "%"
/// for the channel's keyword.
struct SettingCall
{
    const char* name;
    ViStatus (*set)(ViSession vi, ViConstString channels);
    std::vector<std::string> commands;
    ViStatus status = VI_SUCCESS;

    std::vector<std::string> linesTo(const ChannelMaximum& channel) const
    {
        std::vector<std::string> lines = commands;
        for (std::string& line : lines) {
            if (const std::size_t place = line.find_first_of("$%"); place != std::string::npos)
                line.replace(place, 1, line[place] == '$' ? channel.source() : channel.keyword);
            line += '\n';
        }
        return lines;
    }
};

inline void PrintTo(const SettingCall& call, std::ostream* stream)
{
    *stream << call.name;
}

/// The six attributes of channels, and the four functions that configure them.
inline const std::array kSettingCalls = {
    SettingCall{
        "CURRENT_LIMIT_BEHAVIOR",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViInt32(vi, channels, 1250004, 1); },
        {"$:CURR:PROT:STAT ON"}},
    SettingCall{
        "CURRENT_LIMIT",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250005, 2.5); },
        {"$:CURR 2.500000", "$:CURR:PROT 2.500000"}},
    SettingCall{"OUTPUT_ENABLED",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_SetAttributeViBoolean(vi, channels, 1250006, VI_TRUE);
                },
                {":OUTP:STAT %,ON"}},
    SettingCall{"OVP_ENABLED",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_SetAttributeViBoolean(vi, channels, 1250002, VI_TRUE);
                },
                {"$:VOLT:PROT:STAT ON"}},
    SettingCall{
        "OVP_LIMIT",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250003, 6.25); },
        {"$:VOLT:PROT 6.250000"}},
    SettingCall{
        "VOLTAGE_LEVEL",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250001, 5.5); },
        {"$:VOLT 5.500000"}},
    SettingCall{
        "ConfigureOutputEnabled",
        [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureOutputEnabled(vi, channels, VI_FALSE); },
        {":OUTP:STAT %,OFF"}},
    SettingCall{"ConfigureVoltageLevel",
                [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureVoltageLevel(vi, channels, 0.25); },
                {"$:VOLT 0.250000"}},
    SettingCall{"ConfigureCurrentLimit",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_ConfigureCurrentLimit(vi, channels, KVX2800T_VAL_CURRENT_TRIP, 1.75);
                },
                {"$:CURR 1.750000", "$:CURR:PROT 1.750000", "$:CURR:PROT:STAT ON"}},
    SettingCall{"ConfigureOVP",
                [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureOVP(vi, channels, VI_FALSE, 7.5); },
                {"$:VOLT:PROT 7.500000", "$:VOLT:PROT:STAT OFF"}},
};

/// The one value that a setting checks itself, behind the change of the source mode.
inline const SettingCall kBadBehavior = {
    "CURRENT_LIMIT_BEHAVIOR_2",
    [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViInt32(vi, channels, 1250004, 2); },
    {},
    kOutOfRange};

/// What a change to the series channel sends in the normal source mode: the change of the mode, and the commands.
inline std::vector<std::string> linesOfSeriesChannel(const SettingCall& call)
{
    std::vector<std::string> lines = {":SOUR:Mode?\n", ":SOUR:Mode SER\n"};
    for (std::string& command : call.linesTo(kChannelMaxima[4]))
        lines.push_back(std::move(command));
    return lines;
}

/// All of them.
inline std::vector<SettingCall> callsThatChangeTheMode()
{
    std::vector<SettingCall> changing(kSettingCalls.begin(), kSettingCalls.end());
    changing.push_back(kBadBehavior);
    return changing;
}

} // namespace kvxtest
