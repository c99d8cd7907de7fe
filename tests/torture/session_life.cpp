#include "tests/torture/session_life.h"

#include "tests/support/driver/exported_calls.h"
#include "tests/support/driver/instrument_calls.h"

#include <algorithm>
#include <array>

namespace kvxtest
{
namespace
{

/// In a short run every so many of the instrument-specific functions.
constexpr std::size_t kEvery = 9;

/// Whether what is prepared for this call is what its results come from.
bool isPrepared(const InstrumentCall& call)
{
    return call.isQuery() && preparedReplies().at(call.lines.back()) == call.reply;
}

Step stepOf(const ExportedCall& call)
{
    const std::string name = call.name;
    const auto isOneOf = [&name](std::initializer_list<const char*> names) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    Step step;
    step.name = name;
    step.call = [run = call.call](ViSession vi, ViStatus& status) {
        status = run(vi);
        return true;
    };
    step.mayThrow = true;
    step.takesError = isOneOf({"GetError", "ClearError"});
    // What fails in these is the session service, or its lock.
    step.recordsNothing = step.takesError || isOneOf({"LockSession", "UnlockSession"});
    return step;
}

Step stepOf(const InstrumentCall& call)
{
    Step step;
    step.name = call.name;
    step.call = [&call](ViSession vi, ViStatus& status) {
        std::vector<double> outputs;
        status = call.run(vi, "OutputChannel3", outputs, kNone);
        return status != VI_SUCCESS || !isPrepared(call) || outputs == call.results;
    };
    return step;
}

/// A level that the instrument is asked for, which only it knows.
template <class Get>
Step asking(const char* name, double expected, Get get)
{
    Step step;
    step.name = name;
    step.call = [expected, get](ViSession vi, ViStatus& status) {
        ViReal64 value = kUntouched;
        status = get(vi, &value);
        return status != VI_SUCCESS || value == expected;
    };
    step.mayThrow = true;
    return step;
}

/// What a session without the key has none of.
Step messageRecordStep()
{
    Step step;
    step.name = "GetNextMessageRecord";
    step.call = [](ViSession vi, ViStatus& status) {
        std::array<ViChar, 1024> record{};
        status = KVX2800T_GetNextMessageRecord(vi, static_cast<ViInt32>(record.size()), record.data());
        return status != VI_SUCCESS || record.front() == '\0' || record[1] == ' ';
    };
    return step;
}

ViStatus voltageOf4(ViSession vi, ViReal64* value)
{
    return KVX2800T_GetAttributeViReal64(vi, "OutputChannel4", KVX2800T_ATTR_VOLTAGE_LEVEL, value);
}

ViStatus currentOf4(ViSession vi, ViReal64* value)
{
    return KVX2800T_GetAttributeViReal64(vi, "CH4", KVX2800T_ATTR_CURRENT_LIMIT, value);
}

} // namespace

const std::map<std::string, std::string>& preparedReplies()
{
    static const std::map<std::string, std::string> replies = [] {
        std::map<std::string, std::string> all;
        for (const InstrumentCall& call : instrumentCalls())
            if (call.isQuery())
                all.emplace(call.lines.back(), call.reply);
        // The driver asks these for itself.
        all["*ESR?"] = "0";
        all[":SOUR:Mode?"] = "NORMAL";
        all[":SOUR4:VOLT?"] = "4.5";
        all[":SOUR4:CURR?"] = "0.25";
        return all;
    }();
    return replies;
}

const std::vector<Scenario>& scenarios()
{
    static const std::vector<Scenario> all = {
        {"socket", "TCPIP0::host::1::SOCKET", "QueryInstrStatus=1"},
        {"serial", "ASRL1::INSTR", "QueryInstrStatus=1"},
        {"store entry", "BenchSupply", "QueryInstrStatus=1"},
        {"socket, logged", "TCPIP0::host::1::SOCKET", "QueryInstrStatus=1,DriverSetup=MessageLog:20"},
        {"simulated", "TCPIP0::host::1::SOCKET", "Simulate=1", VI_FALSE, false, false},
        {"replaced", "TCPIP0::host::1::SOCKET", "", VI_FALSE, true, false},
        {"reset", "TCPIP0::host::1::SOCKET", "Cache=1", VI_TRUE},
        {"socket, Bench", "TCPIP0::host::1::SOCKET", "QueryInstrStatus=1,DriverSetup=Profile:Bench"},
        {"serial, Bench", "ASRL1::INSTR", "DriverSetup=Profile:Bench"},
        {"store entry, Bench", "BenchSupply", "DriverSetup=Profile:Bench"},
        {"simulated, Bench", "TCPIP0::host::1::SOCKET", "Simulate=1,DriverSetup=Profile:Bench", VI_FALSE, false, false},
        {"replaced, Bench", "TCPIP0::host::1::SOCKET", "DriverSetup=Profile:Bench", VI_FALSE, true, false},
        {"reset, Bench", "TCPIP0::host::1::SOCKET", "DriverSetup=Profile:Bench", VI_TRUE},
    };
    return all;
}

std::vector<Step> classSteps()
{
    std::vector<Step> all;
    for (const ExportedCall& call : kExportedCalls)
        if (std::string(call.name) != "close")
            all.push_back(stepOf(call));
    return all;
}

std::vector<Step> instrumentSteps(bool whole)
{
    std::vector<Step> all;
    for (std::size_t i = 0; i < instrumentCalls().size(); ++i)
        if (whole || i % kEvery == 0)
            all.push_back(stepOf(instrumentCalls()[i]));
    all.push_back(messageRecordStep());
    return all;
}

std::vector<Step> levelSteps()
{
    return {asking("voltage of 4", 4.5, voltageOf4), asking("current of 4", 0.25, currentOf4),
            asking("voltage of 4 again", 4.5, voltageOf4)};
}

} // namespace kvxtest
