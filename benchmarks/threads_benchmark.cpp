#include "api/KVX2800T.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <barrier>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <string>
#include <thread>

// Two sessions in two threads beside one session in one thread. They take turns in short runs, of which the best count:
// when something else has one of the processors, two threads cannot be faster than one.

namespace
{

using Clock = std::chrono::steady_clock;

/// A session for as long as a benchmark runs.
class BenchmarkSession
{
public:
    BenchmarkSession(std::string resource, const char* options)
    {
        if (KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, options, &vi_) != VI_SUCCESS)
            std::abort();
    }
    BenchmarkSession(const BenchmarkSession&) = delete;
    BenchmarkSession& operator=(const BenchmarkSession&) = delete;
    ~BenchmarkSession() { KVX2800T_close(vi_); }

    ViSession vi() const { return vi_; }

private:
    ViSession vi_ = VI_NULL;
};

void setOften(ViSession vi, int calls)
{
    for (int i = 0; i < calls; ++i)
        if (KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.0) != VI_SUCCESS)
            std::abort();
}

void getOften(ViSession vi, int calls)
{
    for (int i = 0; i < calls; ++i) {
        ViReal64 volts = 0.0;
        if (KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts) != VI_SUCCESS)
            std::abort();
    }
}

/// When some work began and when it was done.
struct Span
{
    Clock::time_point begin;
    Clock::time_point end;
};

using Work = void (*)(ViSession, int);

Span run(Work work, ViSession vi, int calls)
{
    Span span{Clock::now(), {}};
    work(vi, calls);
    span.end = Clock::now();
    return span;
}

double seconds(Span span)
{
    return std::chrono::duration<double>(span.end - span.begin).count();
}

/// Once both threads are there; until both have made their calls.
Span runSideBySide(Work work, ViSession own, ViSession others, int calls)
{
    std::barrier bothAreThere(2);
    Span second;
    std::thread other([&] {
        bothAreThere.arrive_and_wait();
        second = run(work, others, calls);
    });
    bothAreThere.arrive_and_wait();
    const Span first = run(work, own, calls);
    other.join();
    return {std::min(first.begin, second.begin), std::max(first.end, second.end)};
}

/// Its time is that of two threads with `calls` calls each.
void compare(benchmark::State& state, Work work, int calls, const BenchmarkSession& one, const BenchmarkSession& two)
{
    double alone = std::numeric_limits<double>::max();
    double sideBySide = std::numeric_limits<double>::max();
    for (auto _ : state) {
        alone = std::min(alone, seconds(run(work, one.vi(), calls)));
        const double both = seconds(runSideBySide(work, one.vi(), two.vi(), calls));
        sideBySide = std::min(sideBySide, both);
        state.SetIterationTime(both);
    }
    state.counters["one_per_s"] = calls / alone;
    state.counters["two_per_s"] = 2.0 * calls / sideBySide;
    state.counters["ratio"] = 2.0 * alone / sideBySide;
}

void twoSimulatedSessions(benchmark::State& state, Work work)
{
    const BenchmarkSession one("", "Simulate=1");
    const BenchmarkSession two("", "Simulate=1");
    compare(state, work, 20'000, one, two);
}
BENCHMARK_CAPTURE(twoSimulatedSessions, set, setOften)->UseManualTime()->MinTime(2.0);
BENCHMARK_CAPTURE(twoSimulatedSessions, get, getOften)->UseManualTime()->MinTime(2.0);

/// Each session has an instrument of its own.
void twoSessionsOverLoopback(benchmark::State& state, Work work)
{
    const kvxtest::VirtualInstrumentProcess first;
    const kvxtest::VirtualInstrumentProcess second;
    const BenchmarkSession one(first.resource(), "");
    const BenchmarkSession two(second.resource(), "");
    compare(state, work, 500, one, two);
}
BENCHMARK_CAPTURE(twoSessionsOverLoopback, get, getOften)->UseManualTime()->MinTime(2.0);

} // namespace
