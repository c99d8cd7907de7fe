#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <vector>

/// Two clients that set and query on one instrument and take turns, so that whatever else the machine does slows both
/// down.
namespace kvxbenchmark
{

/// Ends the benchmark when something does not work; figures of failing calls mean nothing.
inline void require(bool works)
{
    if (!works)
        std::abort();
}

template <class Client>
double secondsFor(Client& client, int exchanges)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (int i = 0; i < exchanges; ++i)
        client.setAndQuery();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Sets and queries; the time is the driver's. The ratio, of the driver's rate over the other's, is the median of all
/// turns: it does not count how often something else took the processor during one of the two.
template <class Other, class Driver>
void takeTurns(benchmark::State& state, Other& other, Driver& driver)
{
    constexpr int kExchanges = 100;
    double otherSeconds = 0.0;
    double driverSeconds = 0.0;
    std::vector<double> ratios;
    std::vector<double> added;
    for (auto _ : state) {
        const double others = secondsFor(other, kExchanges);
        const double own = secondsFor(driver, kExchanges);
        otherSeconds += others;
        driverSeconds += own;
        ratios.push_back(others / own);
        added.push_back((own - others) / kExchanges);
        state.SetIterationTime(own);
    }
    const double exchanges = static_cast<double>(state.iterations()) * kExchanges;
    state.counters["driver_per_s"] = exchanges / driverSeconds;
    state.counters["other_per_s"] = exchanges / otherSeconds;
    state.counters["added_s"] = median(added);
    state.counters["ratio"] = median(ratios);
}

} // namespace kvxbenchmark
