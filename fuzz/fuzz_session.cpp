// A whole session over a real connection, with the platform's libraries: any exported functions in any order, and any
// bytes in any portions from the instrument. The first byte picks the options, the second how many calls there are,
// then comes a byte for each of them; the rest is what the instrument sends to whoever connects.
#include "tests/support/driver/exported_calls.h"
#include "tests/support/driver/instrument_calls.h"
#include "tests/support/driver/scripted_clock.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;

void expect(bool condition)
{
    if (!condition)
        std::abort();
}

/// Sends the same to each that connects, and reads what comes until it ends.
class Instrument
{
public:
    Instrument() : listening_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        auto* const name = reinterpret_cast<sockaddr*>(&address_);
        expect(::bind(listening_, name, size) == 0 && ::listen(listening_, 8) == 0);
        expect(::getsockname(listening_, name, &size) == 0);
        std::thread([this] { serve(); }).detach();
    }

    std::string resource() const
    {
        return "TCPIP0::127.0.0.1::" + std::to_string(ntohs(address_.sin_port)) + "::SOCKET";
    }

    void setBytes(std::string bytes)
    {
        const std::lock_guard guard(mutex_);
        bytes_ = std::move(bytes);
    }

private:
    [[noreturn]] void serve()
    {
        for (;;) {
            const int connection = ::accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
            expect(connection >= 0);
            std::string bytes;
            {
                const std::lock_guard guard(mutex_);
                bytes = bytes_;
            }
            static_cast<void>(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL));
            std::array<char, 4096> received{};
            while (::recv(connection, received.data(), received.size(), 0) > 0) {
            }
            ::close(connection);
        }
    }

    int listening_;
    sockaddr_in address_{};
    std::mutex mutex_;
    std::string bytes_;
};

struct Call
{
    std::function<ViStatus(ViSession vi)> run;
    bool recordsNothing = false;
    bool mayThrow = false;
};

const std::vector<Call>& everyCall()
{
    static const std::vector<Call> every = [] {
        std::vector<Call> calls;
        for (const ExportedCall& call : kExportedCalls) {
            const std::string_view name = call.name;
            if (name != "close")
                calls.push_back({call.call, name == "GetError" || name == "error_message", true});
        }
        for (const InstrumentCall& call : instrumentCalls())
            calls.push_back({[&call](ViSession vi) { return call(vi); }});
        return calls;
    }();
    return every;
}

constexpr std::array kOptions = {
    "DriverSetup=IoTimeout:1",
    "QueryInstrStatus=1,DriverSetup=IoTimeout:1,SafeErrors:1",
    "DriverSetup=IoTimeout:1,SafeErrors:1,DetailedErrors:1,TrueReadings:1",
    "QueryInstrStatus=1,DriverSetup=IoTimeout:1",
};

void check(const Call& call, ViSession vi, bool isSafe)
{
    ViStatus status = VI_SUCCESS;
    try {
        KVX2800T_ClearError(vi);
        status = call.run(vi);
    } catch (const std::logic_error&) {
        expect(call.mayThrow && !isSafe);
        KVX2800T_UnlockSession(vi, nullptr);
        return;
    }
    if (status >= 0 || call.recordsNothing)
        return;
    ViStatus code = VI_SUCCESS;
    std::array<ViChar, 256> text{};
    expect(KVX2800T_GetError(vi, &code, text.size(), text.data()) >= 0);
    expect(code == status);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kMostCalls = 8;
    if (size < 2)
        return 0;
    static Instrument instrument;
    static std::string resource = instrument.resource();
    static kvxtest::ScriptedClock clock;
    const char* const options = kOptions[data[0] % kOptions.size()];
    const bool isSafe = std::string_view(options).find("SafeErrors") != std::string_view::npos;
    const std::size_t calls = std::min<std::size_t>(data[1] % (kMostCalls + 1), size - 2);
    instrument.setBytes("Tessaro Instruments,KVX2833T,SN1,V2.34\n" +
                        std::string(reinterpret_cast<const char*>(data) + 2 + calls, size - 2 - calls));
    ViSession vi = VI_NULL;
    try {
        KVX2800T_InitWithOptions(resource.data(), VI_TRUE, VI_FALSE, options, &vi);
    } catch (const std::logic_error&) {
        expect(!isSafe);
    }
    if (vi == VI_NULL)
        return 0;
    for (std::size_t i = 0; i < calls; ++i)
        check(everyCall()[data[2 + i] % everyCall().size()], vi, isSafe);
    expect(KVX2800T_close(vi) == VI_SUCCESS);
    return 0;
}
