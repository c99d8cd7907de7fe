#include "benchmarks/driver_client.h"
#include "benchmarks/loopback_socket.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <array>
#include <cstdlib>
#include <string_view>

// The driver over a real socket beside a hand-written loop that exchanges the same bytes with the same instrument.

namespace
{

using kvxbenchmark::DriverClient;
using kvxbenchmark::require;

/// What a program without driver and VISA would do.
class HandWrittenClient
{
public:
    explicit HandWrittenClient(unsigned short port) : socket_(port) {}

    void setAndQuery()
    {
        write(":SOUR3:VOLT 5.000000\n");
        write(":SOUR3:VOLT?\n");
        std::size_t length = 0;
        do
            length += socket_.receive(std::span(reply_).subspan(length));
        while (reply_[length - 1] != '\n');
        require(std::strtod(reply_.data(), nullptr) == 5.0);
    }

private:
    void write(std::string_view line) { socket_.send(line); }

    kvxbenchmark::LoopbackSocket socket_;
    std::array<char, 256> reply_{};
};

void setAndQueryOverLoopback(benchmark::State& state)
{
    kvxtest::VirtualInstrumentProcess instrument;
    HandWrittenClient handWritten(instrument.port());
    DriverClient driver(instrument.resource());
    kvxbenchmark::takeTurns(state, handWritten, driver);
}
BENCHMARK(setAndQueryOverLoopback)->UseManualTime()->MinTime(3.0);

} // namespace
