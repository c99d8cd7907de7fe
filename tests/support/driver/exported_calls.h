#pragma once

#include "tests/support/driver/api_fixture.h"

#include <array>
#include <ostream>

namespace kvxtest
{

/// An exported function on a session, with arguments that let it do all of its work.
struct ExportedCall
{
    const char* name;
    ViStatus (*call)(ViSession vi);
    ViStatus success = VI_SUCCESS;
    /// Whether it runs in the frame: look-up, lock, work, unlock.
    bool isFramed = true;
};

inline void PrintTo(const ExportedCall& call, std::ostream* stream)
{
    *stream << call.name;
}

/// Lets the instrument answer everything that the calls ask.
inline void answerExportedCalls()
{
    answer(":SYSTem:ERRor?", "0,\"No error\"");
    for (const char* channel : {"1", "4"}) {
        const std::string source = std::string(":SOUR") + channel;
        answer(source + ":CURR:PROT:STAT?", "OFF");
        answer(source + ":CURR?", "1.0");
        answer(source + ":VOLT?", "5.0");
        answer(std::string(":OUTP:STAT? CH") + channel, "ON");
        answer(std::string(":STATus:QUEStionable:INSTrument:ISUMmary") + channel + ":CONDition?", "2");
    }
}

/// One channel that needs a source mode and one that does not.
inline constexpr const char* kTwoChannels = "OutputChannel1,OutputChannel4";

inline const std::array kExportedCalls = {
    ExportedCall{"close", [](ViSession vi) { return KVX2800T_close(vi); }, VI_SUCCESS, false},
    ExportedCall{"LockSession",
                 [](ViSession vi) {
                     ViBoolean hasLock = VI_TRUE;
                     return KVX2800T_LockSession(vi, &hasLock);
                 }},
    ExportedCall{"UnlockSession",
                 [](ViSession vi) {
                     ViBoolean hasLock = VI_FALSE;
                     return KVX2800T_UnlockSession(vi, &hasLock);
                 }},
    ExportedCall{"GetError",
                 [](ViSession vi) {
                     ViStatus status = VI_SUCCESS;
                     std::array<ViChar, 256> text{};
                     return KVX2800T_GetError(vi, &status, 256, text.data());
                 },
                 VI_SUCCESS, false},
    ExportedCall{"ClearError", [](ViSession vi) { return KVX2800T_ClearError(vi); }, VI_SUCCESS, false},
    ExportedCall{"error_message",
                 [](ViSession vi) {
                     std::array<ViChar, 256> text{};
                     return KVX2800T_error_message(vi, 12345, text.data());
                 },
                 code(0xBFFA0010), false},
    ExportedCall{"error_query",
                 [](ViSession vi) {
                     ViInt32 number = 0;
                     std::array<ViChar, 256> text{};
                     return KVX2800T_error_query(vi, &number, text.data());
                 }},
    ExportedCall{"reset", [](ViSession vi) { return KVX2800T_reset(vi); }},
    ExportedCall{"ResetWithDefaults", [](ViSession vi) { return KVX2800T_ResetWithDefaults(vi); }},
    ExportedCall{"Disable", [](ViSession vi) { return KVX2800T_Disable(vi); }},
    ExportedCall{"self_test",
                 [](ViSession vi) {
                     ViInt16 result = 0;
                     std::array<ViChar, 256> text{};
                     return KVX2800T_self_test(vi, &result, text.data());
                 },
                 code(0x3FFA0067)},
    ExportedCall{"revision_query",
                 [](ViSession vi) {
                     std::array<ViChar, 256> driver{};
                     std::array<ViChar, 256> instrument{};
                     return KVX2800T_revision_query(vi, driver.data(), instrument.data());
                 }},
    ExportedCall{"InvalidateAllAttributes", [](ViSession vi) { return KVX2800T_InvalidateAllAttributes(vi); }},
    ExportedCall{"ConfigureOutputEnabled",
                 [](ViSession vi) { return KVX2800T_ConfigureOutputEnabled(vi, kTwoChannels, VI_TRUE); }},
    ExportedCall{"ConfigureVoltageLevel",
                 [](ViSession vi) { return KVX2800T_ConfigureVoltageLevel(vi, kTwoChannels, 1.0); }},
    ExportedCall{"ConfigureCurrentLimit",
                 [](ViSession vi) { return KVX2800T_ConfigureCurrentLimit(vi, kTwoChannels, 0, 1.0); }},
    ExportedCall{"ConfigureOVP", [](ViSession vi) { return KVX2800T_ConfigureOVP(vi, kTwoChannels, VI_TRUE, 1.0); }},
    ExportedCall{"ConfigureOutputRange",
                 [](ViSession vi) { return KVX2800T_ConfigureOutputRange(vi, kTwoChannels, 0, 1.0); }},
    ExportedCall{"ResetOutputProtection",
                 [](ViSession vi) { return KVX2800T_ResetOutputProtection(vi, kTwoChannels); }},
    ExportedCall{"QueryMaxCurrentLimit",
                 [](ViSession vi) {
                     ViReal64 value = 0;
                     return KVX2800T_QueryMaxCurrentLimit(vi, kTwoChannels, 0, &value);
                 }},
    ExportedCall{"QueryMaxVoltageLevel",
                 [](ViSession vi) {
                     ViReal64 value = 0;
                     return KVX2800T_QueryMaxVoltageLevel(vi, kTwoChannels, 0, &value);
                 }},
    ExportedCall{"QueryOutputState",
                 [](ViSession vi) {
                     ViBoolean value = 0;
                     return KVX2800T_QueryOutputState(vi, kTwoChannels, 0, &value);
                 }},
    ExportedCall{"Measure",
                 [](ViSession vi) {
                     ViReal64 value = 0;
                     return KVX2800T_Measure(vi, kTwoChannels, 0, &value);
                 }},
    ExportedCall{"GetChannelName",
                 [](ViSession vi) {
                     std::array<ViChar, 256> name{};
                     return KVX2800T_GetChannelName(vi, 1, 256, name.data());
                 }},
    ExportedCall{"GetAttributeViInt32",
                 [](ViSession vi) {
                     ViInt32 value = 0;
                     return KVX2800T_GetAttributeViInt32(vi, "OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR,
                                                         &value);
                 }},
    ExportedCall{"GetAttributeViReal64",
                 [](ViSession vi) {
                     ViReal64 value = 0;
                     return KVX2800T_GetAttributeViReal64(vi, "OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, &value);
                 }},
    ExportedCall{"GetAttributeViBoolean",
                 [](ViSession vi) {
                     ViBoolean value = VI_FALSE;
                     return KVX2800T_GetAttributeViBoolean(vi, "OutputChannel1", KVX2800T_ATTR_OUTPUT_ENABLED, &value);
                 }},
    ExportedCall{"GetAttributeViSession",
                 [](ViSession vi) {
                     ViSession value = VI_NULL;
                     return KVX2800T_GetAttributeViSession(vi, "", 0, &value);
                 },
                 code(0xBFFA000C), false},
    ExportedCall{"GetAttributeViString",
                 [](ViSession vi) {
                     std::array<ViChar, 256> text{};
                     return KVX2800T_GetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, 256, text.data());
                 }},
    ExportedCall{"SetAttributeViInt32",
                 [](ViSession vi) {
                     return KVX2800T_SetAttributeViInt32(vi, kTwoChannels, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, 1);
                 }},
    ExportedCall{
        "SetAttributeViReal64",
        [](ViSession vi) { return KVX2800T_SetAttributeViReal64(vi, kTwoChannels, KVX2800T_ATTR_CURRENT_LIMIT, 1.0); }},
    ExportedCall{"SetAttributeViBoolean",
                 [](ViSession vi) {
                     return KVX2800T_SetAttributeViBoolean(vi, kTwoChannels, KVX2800T_ATTR_OVP_ENABLED, VI_TRUE);
                 }},
    ExportedCall{"SetAttributeViSession",
                 [](ViSession vi) { return KVX2800T_SetAttributeViSession(vi, "", 0, VI_NULL); }, code(0xBFFA000C),
                 false},
    ExportedCall{
        "SetAttributeViString",
        [](ViSession vi) { return KVX2800T_SetAttributeViString(vi, "", KVX2800T_ATTR_INSTRUMENT_MODEL, "X"); },
        code(0xBFFA000D), false},
};
// All but the two that open a session.
static_assert(std::tuple_size_v<decltype(kExportedCalls)> == 34);

} // namespace kvxtest
