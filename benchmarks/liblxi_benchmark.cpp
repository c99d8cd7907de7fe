#include "benchmarks/driver_client.h"
#include "benchmarks/lan_instrument.h"

#include <lxi.h>

#include <array>
#include <cstdlib>
#include <string_view>

// The driver over VXI-11 beside liblxi, the library of lxi-tools. Its version 1.18 knows HiSLIP by name only.

namespace
{

using kvxbenchmark::DriverClient;
using kvxbenchmark::require;

constexpr int kTimeoutMs = 2000;

class LxiClient
{
public:
    LxiClient()
    {
        static const bool isReady = lxi_init() == LXI_OK;
        require(isReady);
        device_ = lxi_connect("127.0.0.1", 0, "inst0", kTimeoutMs, VXI11);
        require(device_ != LXI_ERROR);
    }
    LxiClient(const LxiClient&) = delete;
    LxiClient& operator=(const LxiClient&) = delete;
    ~LxiClient() { lxi_disconnect(device_); }

    void setAndQuery()
    {
        send(kvxbenchmark::kSetLine);
        send(kvxbenchmark::kQueryLine);
        std::array<char, 256> reply{};
        require(lxi_receive(device_, reply.data(), static_cast<int>(reply.size()) - 1, kTimeoutMs) > 0);
        require(std::strtod(reply.data(), nullptr) == 5.0);
    }

private:
    void send(std::string_view line)
    {
        const int size = static_cast<int>(line.size());
        require(lxi_send(device_, line.data(), size, kTimeoutMs) == size);
    }

    int device_ = LXI_ERROR;
};

void vxi11Liblxi(benchmark::State& state)
{
    kvxbenchmark::lanInstrument();
    LxiClient lxi;
    DriverClient driver(kvxbenchmark::vxi11Resource());
    kvxbenchmark::takeTurns(state, lxi, driver);
}
BENCHMARK(vxi11Liblxi)->UseManualTime()->MinTime(1.0);

} // namespace
