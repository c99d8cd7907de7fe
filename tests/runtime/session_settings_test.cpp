#include "runtime/session_settings.h"

#include "base/option_grammar.h"
#include "base/status_codes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace drivekit
{

bool operator==(const OptionFault& left, const OptionFault& right)
{
    return left.status == right.status && left.quoted == right.quoted;
}

void PrintTo(const OptionFault& fault, std::ostream* stream)
{
    *stream << std::hex << static_cast<ViUInt32>(fault.status) << " '" << fault.quoted << "'";
}

namespace
{

using Fault = std::optional<OptionFault>;

SessionSettings settingsOf(std::string_view driverSetup)
{
    SessionSettings settings;
    EXPECT_EQ(takeSettings(driverSetup, settings), Fault()) << driverSetup;
    return settings;
}

Fault faultOf(std::string_view driverSetup)
{
    SessionSettings settings;
    return takeSettings(driverSetup, settings);
}

Fault bad(std::string_view value)
{
    return OptionFault{base::kErrorBadOptionValue, value};
}

/// The six switches, in the order of the table.
std::string switches(const SessionSettings& settings)
{
    std::string text;
    for (const bool on : {settings.safeErrors, settings.connection.freshReplies, settings.detailedErrors,
                          settings.trueReadings, settings.checkedOptions, settings.statefulSimulation})
        text += on ? '1' : '0';
    return text;
}

TEST(SessionSettings, AreOffInATextWithoutTheirKeys)
{
    for (const char* const text : {"", "Model:KVX2833T", "Banana:1,SafeError:1,SafeErrorss:1", "Safe,Errors", "1"}) {
        const SessionSettings settings = settingsOf(text);
        EXPECT_EQ(switches(settings), "000000") << text;
        EXPECT_EQ(settings.connection.io.openTimeoutMs, 2000);
        EXPECT_EQ(settings.connection.io.timeoutMs, 2000);
        EXPECT_EQ(settings.connection.io.baudRate, 9600);
        EXPECT_EQ(settings.messageLog, 0);
    }
}

TEST(SessionSettings, EachSwitchHasAKeyOfItsOwn)
{
    const std::vector<std::pair<std::string, std::string>> keys = {
        {"SafeErrors", "100000"},   {"FreshReplies", "010000"},   {"DetailedErrors", "001000"},
        {"TrueReadings", "000100"}, {"CheckedOptions", "000010"}, {"StatefulSimulation", "000001"}};
    for (const auto& [key, expected] : keys) {
        EXPECT_EQ(switches(settingsOf(key + ":1")), expected);
        EXPECT_EQ(switches(settingsOf("Model:X," + key + "=true")), expected);
        EXPECT_EQ(switches(settingsOf(key + ":0")), "000000");
        EXPECT_EQ(switches(settingsOf(key + ":false")), "000000");
    }
}

TEST(SessionSettings, LetterCaseAndTrailingBlanksDoNotCount)
{
    EXPECT_EQ(switches(settingsOf("safeERRORS: True  ,\tfreshreplies=1 \t, Parity: EVEN ")), "110000");
    EXPECT_EQ(settingsOf("parity:even").connection.io.parity, 2);
}

TEST(SessionSettings, TheBenchProfileSwitchesAllSixOnAndAKeyBesideItWins)
{
    EXPECT_EQ(switches(settingsOf("Profile:Bench")), "111111");
    EXPECT_EQ(switches(settingsOf("Profile:bench,TrueReadings:0")), "111011");
    EXPECT_EQ(switches(settingsOf("StatefulSimulation:0,FreshReplies:false,Profile:BENCH")), "101110");
}

TEST(SessionSettings, AnotherValueIsRefusedAndQuoted)
{
    for (const char* const key : {"SafeErrors", "FreshReplies", "DetailedErrors", "TrueReadings", "CheckedOptions",
                                  "StatefulSimulation", "Profile"})
        for (const char* const value : {"2", "yes", "vi_true", "10", "-1", "on"})
            EXPECT_EQ(faultOf(std::string(key) + ":" + value), bad(value)) << key;
    for (const char* const text :
         {"SafeErrors: , Model:X", "SafeErrors", "Model:X, safeerrors", "Profile:", "Parity= ,A:1"})
        EXPECT_EQ(faultOf(text), bad("")) << text;
    EXPECT_EQ(faultOf("Profile:1"), bad("1"));
    EXPECT_EQ(faultOf("SafeErrors:Bench"), bad("Bench"));
}

TEST(SessionSettings, OneKeyInTwoSpellingsIsRefusedAndTheSecondQuoted)
{
    EXPECT_EQ(faultOf("SafeErrors:1,safeerrors:1"), (OptionFault{base::kErrorCannotRecover, "safeerrors"}));
    EXPECT_EQ(faultOf("BaudRate:9600,Model:X,BAUDRATE=1"), (OptionFault{base::kErrorCannotRecover, "BAUDRATE"}));
}

TEST(SessionSettings, WhatStandsInFrontOfAFaultInTheTableHasBeenTaken)
{
    SessionSettings settings;
    EXPECT_EQ(takeSettings("BaudRate:fast,SafeErrors:1", settings), bad("fast"));
    EXPECT_TRUE(settings.safeErrors);
}

TEST(SessionSettings, ParametersOfTheConnectionHaveVisasValues)
{
    const InstLink::IoSettings io =
        settingsOf("OpenTimeout:5000,IoTimeout:250,BaudRate:115200,DataBits:7,Parity:Odd,StopBits:2,FlowControl:RtsCts")
            .connection.io;
    EXPECT_EQ(io.openTimeoutMs, 5000);
    EXPECT_EQ(io.timeoutMs, 250);
    EXPECT_EQ(io.baudRate, 115200);
    EXPECT_EQ(io.dataBits, 7);
    EXPECT_EQ(io.parity, 1);
    EXPECT_EQ(io.stopBits, 20);
    EXPECT_EQ(io.flowControl, 2);
}

TEST(SessionSettings, EveryWordOfAParameterHasItsValue)
{
    const std::vector<std::pair<std::string, ViInt32>> parities = {
        {"None", 0}, {"Odd", 1}, {"Even", 2}, {"Mark", 3}, {"Space", 4}};
    for (const auto& [word, value] : parities)
        EXPECT_EQ(settingsOf("Parity:" + word).connection.io.parity, value) << word;
    const std::vector<std::pair<std::string, ViInt32>> stopBits = {{"1", 10}, {"1.5", 15}, {"2", 20}};
    for (const auto& [word, value] : stopBits)
        EXPECT_EQ(settingsOf("StopBits:" + word).connection.io.stopBits, value) << word;
    const std::vector<std::pair<std::string, ViInt32>> controls = {
        {"None", 0}, {"XonXoff", 1}, {"RtsCts", 2}, {"DtrDsr", 4}};
    for (const auto& [word, value] : controls)
        EXPECT_EQ(settingsOf("FlowControl:" + word).connection.io.flowControl, value) << word;
    EXPECT_EQ(settingsOf("IoTimeout:Infinite").connection.io.timeoutMs, -1);
    EXPECT_EQ(settingsOf("OpenTimeout:infinite").connection.io.openTimeoutMs, -1);
}

TEST(SessionSettings, NumbersKeepToTheirRanges)
{
    EXPECT_EQ(settingsOf("DataBits:5").connection.io.dataBits, 5);
    EXPECT_EQ(settingsOf("DataBits:8").connection.io.dataBits, 8);
    EXPECT_EQ(settingsOf("IoTimeout:0").connection.io.timeoutMs, 0);
    EXPECT_EQ(settingsOf("IoTimeout:2147483647").connection.io.timeoutMs, 2147483647);
    EXPECT_EQ(settingsOf("BaudRate:1").connection.io.baudRate, 1);
    EXPECT_EQ(settingsOf("MessageLog:1").messageLog, 1);
    EXPECT_EQ(settingsOf("Profile:Bench,messagelog=10000").messageLog, 10000);
    EXPECT_EQ(settingsOf("Profile:Bench").messageLog, 0);
    for (const char* const text :
         {"DataBits:4", "DataBits:9", "IoTimeout:-1", "IoTimeout:2147483648", "BaudRate:0", "BaudRate:1e3",
          "OpenTimeout:1.5", "Parity:1", "StopBits:3", "FlowControl:Hard", "IoTimeout:99999999999999999999",
          "BaudRate:+1", "BaudRate:0x10", "MessageLog:0", "MessageLog:10001", "MessageLog:true", "MessageLog:-1"})
        EXPECT_EQ(faultOf(text), bad(std::string_view(text).substr(std::string_view(text).find(':') + 1)));
}

// The option string to the letter.

/// The fault of an option string whose DriverSetup is the one that holds.
Fault optionFault(std::string_view optionString)
{
    return findOptionFault(optionString, base::splitOptionString(optionString).driverSetup.value_or(""));
}

TEST(OptionFaults, AreNoneInAGoodOptionString)
{
    for (const char* const text :
         {"", "Simulate=1", " Simulate = 1 , RangeCheck=False,", "cache=VI_TRUE", "Simulate=1,,Cache=0", " , Cache=1",
          "Simulate=0,DriverSetup=Model:X,Simulated:1", "DriverSetup=", "DriverSetup=,,"})
        EXPECT_EQ(optionFault(text), Fault()) << text;
}

TEST(OptionFaults, AreFoundInInherentOptions)
{
    const std::vector<std::pair<std::string, OptionFault>> faults = {
        {"Simulate", {base::kErrorMissingOptionValue, "Simulate"}},
        {"Simulate=", {base::kErrorMissingOptionValue, "Simulate"}},
        {"Cache=1,Simulate = ,RangeCheck=1", {base::kErrorMissingOptionValue, "Simulate"}},
        {"=1", {base::kErrorMissingOptionName, ""}},
        {"Cache=1, =0", {base::kErrorMissingOptionName, ""}},
        {"Simulate=1 0", {base::kErrorBadOptionValue, "1 0"}},
        {"Simulate=perhaps", {base::kErrorBadOptionValue, "perhaps"}},
        {"Simulate=averylongword", {base::kErrorBadOptionValue, "averylongword"}},
        {"Simu late=1", {base::kErrorBadOptionName, "Simu late"}},
        {"Cache=1,DriverSetup", {base::kErrorBadOptionName, "DriverSetup"}},
    };
    for (const auto& [text, fault] : faults)
        EXPECT_EQ(optionFault(text), fault) << text;
}

TEST(OptionFaults, AreInherentOptionsInsideDriverSetup)
{
    for (const char* const text : {"DriverSetup=Simulate:1", "Cache=1,DriverSetup=Model:X, simulate = 1",
                                   "DriverSetup=Simulate", "DriverSetup=Model:X,Simulate:"})
    {
        const auto fault = optionFault(text);
        ASSERT_TRUE(fault) << text;
        EXPECT_EQ(fault->status, base::kErrorBadOptionName) << text;
        EXPECT_EQ(std::string(fault->quoted).size(), 8U) << text;
    }
    EXPECT_EQ(findOptionFault("Cache=1", "Model:X,Simulate:1"), (OptionFault{base::kErrorBadOptionName, "Simulate"}));
    EXPECT_EQ(optionFault("DriverSetup=rangecheck:0"), (OptionFault{base::kErrorBadOptionName, "rangecheck"}));
}

} // namespace
} // namespace drivekit
