#pragma once

#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/channel_limits.h"

#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace kvxtest
{

/// A call that sets something of channels, and what it sends to each of them.
struct SettingCall
{
    const char* name;
    ViStatus (*set)(ViSession vi, ViConstString channels);
    std::vector<std::string> (*commands)(const ChannelMaximum& channel);
    ViStatus status = VI_SUCCESS;
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
        [](const ChannelMaximum& channel) {
            return std::vector<std::string>{channel.source() + ":CURR:PROT:STAT ON\n"};
        }},
    SettingCall{
        "CURRENT_LIMIT",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250005, 2.5); },
        [](const ChannelMaximum& channel) {
            return std::vector<std::string>{channel.source() + ":CURR 2.500000\n",
                                            channel.source() + ":CURR:PROT 2.500000\n"};
        }},
    SettingCall{"OUTPUT_ENABLED",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_SetAttributeViBoolean(vi, channels, 1250006, VI_TRUE);
                },
                [](const ChannelMaximum& channel) {
                    return std::vector<std::string>{std::string(":OUTP:STAT ") + channel.keyword + ",ON\n"};
                }},
    SettingCall{"OVP_ENABLED",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_SetAttributeViBoolean(vi, channels, 1250002, VI_TRUE);
                },
                [](const ChannelMaximum& channel) {
                    return std::vector<std::string>{channel.source() + ":VOLT:PROT:STAT ON\n"};
                }},
    SettingCall{
        "OVP_LIMIT",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250003, 6.25); },
        [](const ChannelMaximum& channel) {
            return std::vector<std::string>{channel.source() + ":VOLT:PROT 6.250000\n"};
        }},
    SettingCall{
        "VOLTAGE_LEVEL",
        [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViReal64(vi, channels, 1250001, 5.5); },
        [](const ChannelMaximum& channel) { return std::vector<std::string>{channel.source() + ":VOLT 5.500000\n"}; }},
    SettingCall{
        "ConfigureOutputEnabled",
        [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureOutputEnabled(vi, channels, VI_FALSE); },
        [](const ChannelMaximum& channel) {
            return std::vector<std::string>{std::string(":OUTP:STAT ") + channel.keyword + ",OFF\n"};
        }},
    SettingCall{
        "ConfigureVoltageLevel",
        [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureVoltageLevel(vi, channels, 0.25); },
        [](const ChannelMaximum& channel) { return std::vector<std::string>{channel.source() + ":VOLT 0.250000\n"}; }},
    SettingCall{"ConfigureCurrentLimit",
                [](ViSession vi, ViConstString channels) {
                    return KVX2800T_ConfigureCurrentLimit(vi, channels, KVX2800T_VAL_CURRENT_TRIP, 1.75);
                },
                [](const ChannelMaximum& channel) {
                    return std::vector<std::string>{channel.source() + ":CURR 1.750000\n",
                                                    channel.source() + ":CURR:PROT 1.750000\n",
                                                    channel.source() + ":CURR:PROT:STAT ON\n"};
                }},
    SettingCall{"ConfigureOVP",
                [](ViSession vi, ViConstString channels) { return KVX2800T_ConfigureOVP(vi, channels, VI_FALSE, 7.5); },
                [](const ChannelMaximum& channel) {
                    return std::vector<std::string>{channel.source() + ":VOLT:PROT 7.500000\n",
                                                    channel.source() + ":VOLT:PROT:STAT OFF\n"};
                }},
};

/// The one value that a setting checks itself, behind the change of the source mode.
inline const SettingCall kBadBehavior = {
    "CURRENT_LIMIT_BEHAVIOR_2",
    [](ViSession vi, ViConstString channels) { return KVX2800T_SetAttributeViInt32(vi, channels, 1250004, 2); },
    [](const ChannelMaximum& /*channel*/) { return std::vector<std::string>{}; }, kOutOfRange};

/// What a change to the series channel sends in the normal source mode: the change of the mode, and the commands.
inline std::vector<std::string> linesOfSeriesChannel(const SettingCall& call)
{
    std::vector<std::string> lines = {":SOUR:Mode?\n", ":SOUR:Mode SER\n"};
    for (std::string& command : call.commands(kChannelMaxima[4]))
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
