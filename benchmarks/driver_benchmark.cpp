#include "api/KVX2800T.h"
#include "api/attribute_table.h"
#include "instrument/command_text.h"
#include "instrument/reply_parsing.h"
#include "runtime/kvx2800t_driver_session.h"
#include "runtime/selector.h"

#include <IviCShared.h>

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace
{

/// A simulated session for as long as a benchmark runs.
class SimulatedSession
{
public:
    SimulatedSession()
    {
        if (KVX2800T_InitWithOptions(nullptr, VI_FALSE, VI_FALSE, "Simulate=1", &vi_) < 0)
            std::abort();
    }
    SimulatedSession(const SimulatedSession&) = delete;
    SimulatedSession& operator=(const SimulatedSession&) = delete;
    ~SimulatedSession() { KVX2800T_close(vi_); }

    ViSession vi() const { return vi_; }

private:
    ViSession vi_ = VI_NULL;
};

void composeLevelBaseline(benchmark::State& state)
{
    char line[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::snprintf(line, sizeof line, ":SOUR%d:VOLT %f", 3, 5.0));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(composeLevelBaseline);

void composeLevel(benchmark::State& state)
{
    std::string line;
    line.reserve(64);
    for (auto _ : state) {
        line.clear();
        TSRO::Header::ofSource(":SOUR:VOLT", 3).appendTo(line);
        TSRO::appendArguments(line, 5.0);
        benchmark::DoNotOptimize(line.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(composeLevel);

constexpr std::array kLevels = {5.0, 3.3, 0.001, 12.345678, 29.999};
constexpr std::array<std::string_view, 5> kReplies = {"5.000", "3.300000", "+1.234500E+00", "0.0012", "29.999"};

/// Composes the five levels; `append` spells the number.
template <class Append>
void composeLevels(benchmark::State& state, Append append)
{
    std::string line;
    line.reserve(64);
    for (auto _ : state)
        for (const double level : kLevels) {
            line.clear();
            TSRO::Header::ofSource(":SOUR:VOLT", 3).appendTo(line);
            append(line, level);
            benchmark::DoNotOptimize(line.data());
            benchmark::ClobberMemory();
        }
}

void appendByToChars(std::string& line, double level)
{
    std::array<char, 330> digits; // NOLINT(cppcoreguidelines-pro-type-member-init): written by to_chars
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), level, std::chars_format::fixed, 6).ptr;
    line += ' ';
    line.append(digits.data(), end);
}

BENCHMARK_CAPTURE(composeLevels, toChars, appendByToChars);
BENCHMARK_CAPTURE(composeLevels, driver, TSRO::appendArguments<double>);

void parseFieldsBaseline(benchmark::State& state)
{
    const char* const reply = "5.000,1.200,6.000";
    for (auto _ : state) {
        char* end = nullptr;
        double sum = std::strtod(reply, &end);
        sum += std::strtod(end + 1, &end);
        sum += std::strtod(end + 1, &end);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(parseFieldsBaseline);

void parseFields(benchmark::State& state)
{
    const std::string reply = "5.000,1.200,6.000";
    for (auto _ : state) {
        const TSRO::ReplyFields fields(reply);
        double sum = TSRO::parseDouble(fields[0]);
        sum += TSRO::parseDouble(fields[1]);
        sum += TSRO::parseDouble(fields[2]);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(parseFields);

/// Reads the five replies; `parse` reads the number.
template <class Parse>
void parseReplies(benchmark::State& state, Parse parse)
{
    for (auto _ : state)
        for (const std::string_view reply : kReplies) {
            double value = parse(reply);
            benchmark::DoNotOptimize(&value);
            benchmark::ClobberMemory();
        }
}

double parseByFromChars(std::string_view reply)
{
    if (reply.starts_with('+'))
        reply.remove_prefix(1);
    double value = 0.0;
    std::from_chars(reply.data(), reply.data() + reply.size(), value);
    return value;
}

BENCHMARK_CAPTURE(parseReplies, fromChars, parseByFromChars);
BENCHMARK_CAPTURE(parseReplies, driver, TSRO::parseDouble);

/// What a program would do that knows the names: compare with all of them.
void resolveNameBaseline(benchmark::State& state)
{
    constexpr std::array kNames = {"OutputChannel1", "OutputChannel2", "OutputChannel3",
                                   "OutputChannel4", "OutputChannel5", "OutputChannel6"};
    for (auto _ : state) {
        const char* selector = "OutputChannel3";
        benchmark::DoNotOptimize(selector);
        int found = 0;
        for (const char* const name : kNames)
            found += std::strcmp(name, selector) == 0 ? 1 : 0;
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(resolveNameBaseline);

void resolve(benchmark::State& state, const char* selector)
{
    KVX2800TDriverSession session(VI_NULL, api::attributeRegistry());
    for (auto _ : state) {
        drivekit::OutputSelection channels;
        benchmark::DoNotOptimize(selector);
        if (drivekit::resolveSelector(session, selector, channels) < 0)
            std::abort();
        benchmark::DoNotOptimize(channels.begin());
    }
}
BENCHMARK_CAPTURE(resolve, name, "OutputChannel3");
BENCHMARK_CAPTURE(resolve, alias, "CH3");
BENCHMARK_CAPTURE(resolve, rangeAndName, "OutputChannel1-3,OutputChannel5");

void parseOptionString(benchmark::State& state)
{
    const std::string options = "Cache=0, RangeCheck=1, QueryInstrStatus=1, Simulate=0, DriverSetup=Model:KVX2833T";
    for (auto _ : state) {
        KVX2800TDriverSession session(VI_NULL, api::attributeRegistry());
        if (session.ParseOptionString(options) < 0)
            std::abort();
        benchmark::DoNotOptimize(session.simulate());
    }
}
BENCHMARK(parseOptionString);

void sessionLockBaseline(benchmark::State& state)
{
    const SimulatedSession session;
    for (auto _ : state) {
        ViAddr data = nullptr;
        IviSession_GetDataPtr(session.vi(), &data);
        IviSession_Lock(session.vi(), VI_NULL);
        IviSession_Unlock(session.vi(), VI_NULL);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(sessionLockBaseline);

void configureVoltageLevelSimulated(benchmark::State& state)
{
    const SimulatedSession session;
    for (auto _ : state)
        benchmark::DoNotOptimize(KVX2800T_ConfigureVoltageLevel(session.vi(), "OutputChannel3", 5.0));
}
BENCHMARK(configureVoltageLevelSimulated);

void getVoltageLevelSimulated(benchmark::State& state)
{
    const SimulatedSession session;
    ViReal64 volts = 0.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            KVX2800T_GetAttributeViReal64(session.vi(), "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts));
}
BENCHMARK(getVoltageLevelSimulated);

} // namespace
