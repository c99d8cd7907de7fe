#include "api/KVX2800T.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// The driver over a real socket beside a hand-written loop that exchanges the same bytes with the same instrument. The
// two take turns, so that whatever else the machine does slows both down.

namespace
{

using Clock = std::chrono::steady_clock;

/// Ends the benchmark when something does not work; figures of failing calls mean nothing.
void require(bool works)
{
    if (!works)
        std::abort();
}

/// The instrument of all benchmarks.
kvxtest::VirtualInstrumentProcess& instrument()
{
    static kvxtest::VirtualInstrumentProcess process;
    return process;
}

/// What a program without driver and VISA would do.
class HandWrittenClient
{
public:
    HandWrittenClient() : socket_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(instrument().port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        require(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
        const int on = 1;
        require(::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0);
    }
    HandWrittenClient(const HandWrittenClient&) = delete;
    HandWrittenClient& operator=(const HandWrittenClient&) = delete;
    ~HandWrittenClient() { ::close(socket_); }

    void setAndQuery()
    {
        write(":SOUR3:VOLT 5.000000\n");
        write(":SOUR3:VOLT?\n");
        std::size_t length = 0;
        do {
            const ssize_t count = ::recv(socket_, reply_.data() + length, reply_.size() - length, 0);
            require(count > 0);
            length += static_cast<std::size_t>(count);
        } while (reply_[length - 1] != '\n');
        require(std::strtod(reply_.data(), nullptr) == 5.0);
    }

private:
    void write(std::string_view line)
    {
        require(::send(socket_, line.data(), line.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(line.size()));
    }

    int socket_;
    std::array<char, 256> reply_{};
};

class DriverClient
{
public:
    DriverClient()
    {
        std::string resource = instrument().resource();
        require(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi_) == VI_SUCCESS);
    }
    DriverClient(const DriverClient&) = delete;
    DriverClient& operator=(const DriverClient&) = delete;
    ~DriverClient() { KVX2800T_close(vi_); }

    void setAndQuery()
    {
        ViReal64 volts = 0.0;
        require(KVX2800T_ConfigureVoltageLevel(vi_, "OutputChannel3", 5.0) == VI_SUCCESS);
        require(KVX2800T_GetAttributeViReal64(vi_, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts) ==
                VI_SUCCESS);
        require(volts == 5.0);
    }

private:
    ViSession vi_ = VI_NULL;
};

template <class Client>
double secondsFor(Client& client, int exchanges)
{
    const auto start = Clock::now();
    for (int i = 0; i < exchanges; ++i)
        client.setAndQuery();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Sets and queries; the time is the driver's. The ratio is the median of all turns: it does not count how often
/// something else took the processor during one of the two.
void setAndQueryOverLoopback(benchmark::State& state)
{
    constexpr int kExchanges = 100;
    HandWrittenClient handWritten;
    DriverClient driver;
    double handWrittenSeconds = 0.0;
    double driverSeconds = 0.0;
    std::vector<double> ratios;
    std::vector<double> added;
    for (auto _ : state) {
        const double others = secondsFor(handWritten, kExchanges);
        const double own = secondsFor(driver, kExchanges);
        handWrittenSeconds += others;
        driverSeconds += own;
        ratios.push_back(others / own);
        added.push_back((own - others) / kExchanges);
        state.SetIterationTime(own);
    }
    const double exchanges = static_cast<double>(state.iterations()) * kExchanges;
    state.counters["driver_per_s"] = exchanges / driverSeconds;
    state.counters["hand_written_per_s"] = exchanges / handWrittenSeconds;
    state.counters["added_s"] = median(added);
    state.counters["ratio"] = median(ratios);
}
BENCHMARK(setAndQueryOverLoopback)->UseManualTime()->MinTime(3.0);

} // namespace
