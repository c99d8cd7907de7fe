#include "tests/support/driver/session_memory.h"

#include <benchmark/benchmark.h>

// What one of many open sessions holds; its counter is the figure, its time is none.

namespace
{

template <class Measure>
void measureBytes(benchmark::State& state, Measure measure)
{
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = measure();
    state.counters["bytes"] = static_cast<double>(bytes);
}

void simulatedSession(benchmark::State& state)
{
    measureBytes(state, kvxtest::bytesOfSimulatedSession);
}
BENCHMARK(simulatedSession)->Iterations(1);

void connectedSession(benchmark::State& state)
{
    const kvxtest::VirtualInstrumentProcess instrument;
    measureBytes(state, [&] { return kvxtest::bytesOfConnectedSession(instrument); });
}
BENCHMARK(connectedSession)->Iterations(1);

void visaSessionAlone(benchmark::State& state)
{
    const kvxtest::VirtualInstrumentProcess instrument;
    measureBytes(state, [&] { return kvxtest::bytesOfVisaSession(instrument); });
}
BENCHMARK(visaSessionAlone)->Iterations(1);

} // namespace
