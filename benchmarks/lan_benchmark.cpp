#include "benchmarks/driver_client.h"
#include "benchmarks/lan_instrument.h"
#include "benchmarks/loopback_socket.h"
#include "tests/support/processes/own_network.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

// The driver over HiSLIP and over VXI-11 beside a hand-written loop for each, which exchanges the same messages with
// the same instrument.

namespace
{

using kvxbenchmark::DriverClient;
using kvxbenchmark::LoopbackSocket;
using kvxbenchmark::require;

/// A message of big-endian numbers and of texts.
class Message
{
public:
    void clear() { size_ = 0; }

    template <std::unsigned_integral Number>
    void put(Number number)
    {
        for (int shift = static_cast<int>(sizeof number - 1) * 8; shift >= 0; shift -= 8)
            bytes_[size_++] = static_cast<char>(number >> shift);
    }

    void put(std::string_view text)
    {
        std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(size_));
        size_ += text.size();
    }

    std::span<const char> bytes() const { return std::span(bytes_).first(size_); }

private:
    std::array<char, 256> bytes_{};
    std::size_t size_ = 0;
};

std::uint32_t numberAt(std::span<const char> bytes, std::size_t place)
{
    std::uint32_t number = 0;
    for (const char byte : bytes.subspan(place, sizeof number))
        number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

/// What a connection has sent.
class Reply
{
public:
    explicit Reply(LoopbackSocket& socket) : socket_(socket) {}

    void clear() { size_ = 0; }

    /// Waits for a number of bytes in all.
    std::span<const char> upTo(std::size_t size)
    {
        while (size_ < size)
            size_ += socket_.receive(std::span(bytes_).subspan(size_));
        return std::span(bytes_).first(size);
    }

private:
    LoopbackSocket& socket_;
    std::array<char, 512> bytes_{};
    std::size_t size_ = 0;
};

class HislipClient
{
public:
    explicit HislipClient(unsigned short port) : synchronous_(port), asynchronous_(port)
    {
        constexpr std::uint32_t kVersionAndVendor = 0x01005858;
        begin(kInitialize, kVersionAndVendor, "hislip0");
        synchronous_.send(message_.bytes());
        const std::uint32_t session = numberAt(reply_.upTo(kHeaderSize), kParameterAt) & 0xFFFFU;
        begin(kAsyncInitialize, session, "");
        asynchronous_.send(message_.bytes());
        Reply(asynchronous_).upTo(kHeaderSize);
    }

    void setAndQuery()
    {
        send(kvxbenchmark::kSetLine);
        send(kvxbenchmark::kQueryLine);
        reply_.clear();
        const std::size_t size = numberAt(reply_.upTo(kHeaderSize), kLengthAt);
        const auto whole = reply_.upTo(kHeaderSize + size);
        isDelivered_ = true;
        require(whole[2] == static_cast<char>(kDataEnd) && std::strtod(whole.data() + kHeaderSize, nullptr) == 5.0);
    }

private:
    static constexpr std::uint8_t kInitialize = 0;
    static constexpr std::uint8_t kDataEnd = 7;
    static constexpr std::uint8_t kAsyncInitialize = 17;
    static constexpr std::size_t kHeaderSize = 16;
    static constexpr std::size_t kParameterAt = 4;
    static constexpr std::size_t kLengthAt = 12; // the low half: no message here is long

    void begin(std::uint8_t type, std::uint32_t parameter, std::string_view payload, std::uint8_t control = 0)
    {
        message_.clear();
        message_.put("HS");
        message_.put(type);
        message_.put(control);
        message_.put(parameter);
        message_.put(std::uint64_t{payload.size()});
        message_.put(payload);
    }

    void send(std::string_view line)
    {
        begin(kDataEnd, id_, line, isDelivered_ ? 1 : 0);
        synchronous_.send(message_.bytes());
        id_ += 2;
        isDelivered_ = false;
    }

    LoopbackSocket synchronous_;
    LoopbackSocket asynchronous_;
    Message message_;
    Reply reply_{synchronous_};
    std::uint32_t id_ = 0xFFFFFF00;
    bool isDelivered_ = false;
};

class Vxi11Client
{
public:
    explicit Vxi11Client(unsigned short port) : socket_(port)
    {
        constexpr std::string_view kDevice = "inst0";
        link_ = numberAt(call(10, {1, 0, 0}, kDevice), kResultAt + 4);
    }

    void setAndQuery()
    {
        write(kvxbenchmark::kSetLine);
        write(kvxbenchmark::kQueryLine);
        const auto reply = call(12, {link_, 1024, kTimeoutMs, 0, 0, 0});
        require(std::strtod(reply.data() + kResultAt + 12, nullptr) == 5.0);
    }

private:
    static constexpr std::uint32_t kTimeoutMs = 2000;
    static constexpr std::size_t kResultAt = 28;

    void write(std::string_view line)
    {
        constexpr std::uint32_t kEnd = 8;
        call(11, {link_, kTimeoutMs, 0, kEnd}, line);
    }

    /// The record that answers; its results begin at kResultAt.
    std::span<const char> call(std::uint32_t procedure, std::initializer_list<std::uint32_t> arguments,
                               std::string_view data = {})
    {
        constexpr std::uint32_t kLast = 0x80000000;
        constexpr std::uint32_t kCoreChannel = 0x0607AF;
        constexpr std::size_t kCallWords = 10;
        const std::size_t padded = (data.size() + 3) / 4 * 4;
        const std::size_t dataSize = data.empty() ? 0 : 4 + padded;
        message_.clear();
        message_.put(kLast | static_cast<std::uint32_t>(4 * (kCallWords + arguments.size()) + dataSize));
        for (const std::uint32_t word : {++transaction_, 0U, 2U, kCoreChannel, 1U, procedure, 0U, 0U, 0U, 0U})
            message_.put(word);
        for (const std::uint32_t word : arguments)
            message_.put(word);
        if (!data.empty()) {
            message_.put(static_cast<std::uint32_t>(data.size()));
            message_.put(data);
            message_.put(std::string_view("\0\0\0", padded - data.size()));
        }
        socket_.send(message_.bytes());
        reply_.clear();
        const std::size_t size = numberAt(reply_.upTo(4), 0) & ~kLast;
        const auto record = reply_.upTo(4 + size);
        require(numberAt(record, 4) == transaction_ && numberAt(record, kResultAt) == 0);
        return record;
    }

    LoopbackSocket socket_;
    Message message_;
    Reply reply_{socket_};
    std::uint32_t transaction_ = 0;
    std::uint32_t link_ = 0;
};

void hislipHandWritten(benchmark::State& state)
{
    HislipClient handWritten(kvxbenchmark::lanInstrument().hislipPort());
    DriverClient driver(kvxbenchmark::hislipResource());
    kvxbenchmark::takeTurns(state, handWritten, driver);
}
BENCHMARK(hislipHandWritten)->UseManualTime()->MinTime(3.0);

void vxi11HandWritten(benchmark::State& state)
{
    Vxi11Client handWritten(kvxbenchmark::lanInstrument().vxi11Port());
    DriverClient driver(kvxbenchmark::vxi11Resource());
    kvxbenchmark::takeTurns(state, handWritten, driver);
}
BENCHMARK(vxi11HandWritten)->UseManualTime()->MinTime(3.0);

} // namespace

int main(int argc, char* argv[])
{
    const std::string complaint = kvxtest::enterOwnNetwork();
    if (!complaint.empty()) {
        std::fprintf(stderr, "%s\n", complaint.c_str());
        return EXIT_FAILURE;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
