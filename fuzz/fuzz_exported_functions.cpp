// Any bytes as the replies to any exported function of a session with SafeErrors: a status comes back, the lock is
// given back, and a failure is on record. The first byte picks the function, the second the session; the rest are the
// replies, each up to its line feed.
#include "fuzz/input.h"
#include "tests/support/driver/exported_calls.h"
#include "tests/support/driver/instrument_calls.h"
#include "tests/support/driver/scripted_clock.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace kvxtest;
using kvxfuzz::require;

using Call = std::function<ViStatus(ViSession vi)>;

const std::vector<Call>& everyCall()
{
    static const std::vector<Call> every = [] {
        std::vector<Call> calls;
        for (const ExportedCall& call : kExportedCalls)
            if (call.isFramed)
                calls.emplace_back(call.call);
        for (const InstrumentCall& call : instrumentCalls())
            calls.emplace_back([&call](ViSession vi) { return call(vi); });
        return calls;
    }();
    return every;
}

constexpr std::array kOptions = {
    "DriverSetup=SafeErrors:1",
    "QueryInstrStatus=1,DriverSetup=SafeErrors:1,TrueReadings:1",
    "DriverSetup=SafeErrors:1,DetailedErrors:1",
    "QueryInstrStatus=1,DriverSetup=Profile:Bench",
};

ViSession openSession(const char* options)
{
    reset();
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    answer("*ESR?", "0");
    ViSession vi = VI_NULL;
    require(init(options, &vi) == VI_SUCCESS);
    return vi;
}

void queueReplies(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::string_view line = bytes.substr(0, bytes.find('\n'));
        queueReply(std::string(line) + "\n");
        bytes.remove_prefix(std::min(bytes.size(), line.size() + 1));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kChoices = 2;
    if (size < kChoices)
        return 0;
    // Nothing waits for the instrument to settle.
    static kvxtest::ScriptedClock clock;
    const ViSession vi = openSession(kOptions[data[1] % kOptions.size()]);
    queueReplies({reinterpret_cast<const char*>(data) + kChoices, size - kChoices});
    const ViStatus status = everyCall()[data[0] % everyCall().size()](vi);
    require(lockDepth(vi) == 0);
    require(status >= 0 || errorOf(vi).code == status);
    require(KVX2800T_close(vi) == VI_SUCCESS);
    require(openVisaSessions() == 0 && openIviSessions() == 0);
    return 0;
}
