// A whole session over a real connection, with the platform's libraries: any exported functions in any order, and any
// bytes in any portions from the instrument. The first byte picks the options, the second how many calls there are,
// then comes a byte for each of them; the rest is what the instrument sends to whoever connects.
#include "fuzz/input.h"
#include "tests/support/driver/exported_calls.h"
#include "tests/support/driver/instrument_calls.h"
#include "tests/support/driver/scripted_clock.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;
using kvxfuzz::require;

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
        require(::bind(listening_, name, size) == 0 && ::listen(listening_, 8) == 0);
        require(::getsockname(listening_, name, &size) == 0);
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
            require(connection >= 0);
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

ViStatus directIo(ViSession vi)
{
    std::array<ViByte, 6> message = {'*', 'I', 'D', 'N', '?', '\n'};
    std::array<ViByte, 64> reply{};
    ViInt64 count = 0;
    const ViStatus status = KVX2800T_viWrite(vi, message.data(), message.size(), &count);
    return status < 0 ? status : KVX2800T_viRead(vi, reply.size(), reply.data(), &count);
}

ViStatus inherent(ViSession vi)
{
    std::array<ViChar, 64> text{};
    ViStatus status = KVX2800T_GetNextCoercionRecord(vi, text.size(), text.data());
    if (status >= 0)
        status = KVX2800T_GetNextMessageRecord(vi, text.size(), text.data());
    if (status >= 0)
        status = KVX2800T_SetIoTimeout(vi, 1);
    return status;
}

ViStatus measureAll(ViSession vi)
{
    std::array<ViReal64, 2> volts{};
    std::array<ViReal64, 2> amperes{};
    std::array<ViReal64, 2> watts{};
    ViInt32 count = 0;
    return KVX2800T_MeasureAll(vi, "OutputChannel3,Core", 2, volts.data(), amperes.data(), watts.data(), &count);
}

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
        calls.insert(calls.end(), {{directIo}, {inherent}, {[](ViSession vi) { return measureAll(vi); }}});
        return calls;
    }();
    return every;
}

constexpr std::array kOptions = {
    "DriverSetup=IoTimeout:1",
    "QueryInstrStatus=1,DriverSetup=IoTimeout:1,SafeErrors:1",
    "DriverSetup=IoTimeout:1,SafeErrors:1,DetailedErrors:1,TrueReadings:1",
    "QueryInstrStatus=1,DriverSetup=IoTimeout:1",
    "DriverSetup=Profile:Bench,IoTimeout:1,MessageLog:9",
    "Simulate=1,DriverSetup=Model:KVX2833T",
    "Simulate=1,DriverSetup=Profile:Bench",
    // By the name of an entry of the store.
    "",
    "QueryInstrStatus=1,DriverSetup=SafeErrors:1,IoTimeout:1",
};
constexpr std::size_t kFirstByName = 7;

/// The name of an entry that leads to the instrument, in a store of this process.
std::string storeEntry(const std::string& resource)
{
    static TemporaryFolder folder;
    std::ofstream(folder / "store.xml") << R"(<IviConfigStore>
  <SoftwareModules><IviSoftwareModule id="p1"><Name>KVX2800T</Name><PhysicalNames>
    <IviPhysicalName id="p2"><Name>OutputChannel1</Name><RCName>OutputChannel</RCName></IviPhysicalName></PhysicalNames>
  </IviSoftwareModule></SoftwareModules>
  <HardwareAssets><IviHardwareAsset id="p3"><Name>Supply</Name><IOResourceDescriptor>)"
                                        << resource << R"(</IOResourceDescriptor></IviHardwareAsset></HardwareAssets>
  <DriverSessions><IviDriverSession id="p4"><Name>Bench</Name>
    <DataComponents><IviStructure id="p5"><Name>Configurable Initial Settings</Name><Type>Structure</Type><DataComponents>
      <IviString id="p6"><Name>model</Name><Type>String</Type><Value>KVX2833T</Value></IviString>
      <IviInteger id="p7"><Name>Retries</Name><Type>Integer</Type><Value>3</Value></IviInteger>
      <IviReal id="p8"><Name>Settling</Name><Type>Real</Type><Value>0.5</Value></IviReal>
      <IviBoolean id="p9"><Name>Trace</Name><Type>Boolean</Type><Value>1</Value></IviBoolean>
    </DataComponents></IviStructure></DataComponents>
    <IviHardwareAsset idref="p3"/><IviSoftwareModuleRef idref="p1"/>
    <VirtualNames><IviVirtualName id="p10"><Name>Core</Name><MapTo>OutputChannel4</MapTo></IviVirtualName>
      <IviVirtualName id="p11"><Name>Rail</Name><MapTo>OutputChannel</MapTo><VirtualRanges>
        <IviVirtualRange id="p12"><Name>Rails</Name><Max>3</Max><Min>1</Min><StartingPhysicalIndex>2</StartingPhysicalIndex></IviVirtualRange>
      </VirtualRanges></IviVirtualName></VirtualNames>
    <Cache>1</Cache><RangeCheck>1</RangeCheck><DriverSetup>IoTimeout:1</DriverSetup></IviDriverSession></DriverSessions>
  <LogicalNames><IviLogicalName id="p13"><Name>BenchSupply</Name><IviDriverSession idref="p4"/></IviLogicalName></LogicalNames>
</IviConfigStore>
)";
    static const EnvironmentVariable master("IVI_MASTER_STORE", (folder / "store.xml").c_str());
    static const EnvironmentVariable noProcessDefault("IVICONFIGSERVERDEFAULT", nullptr);
    return "BenchSupply";
}

void check(const Call& call, ViSession vi, bool isSafe)
{
    ViStatus status = VI_SUCCESS;
    try {
        KVX2800T_ClearError(vi);
        status = call.run(vi);
    } catch (const std::logic_error&) {
        require(call.mayThrow && !isSafe);
        KVX2800T_UnlockSession(vi, nullptr);
        return;
    }
    if (status >= 0 || call.recordsNothing)
        return;
    ViStatus code = VI_SUCCESS;
    std::array<ViChar, 256> text{};
    require(KVX2800T_GetError(vi, &code, text.size(), text.data()) >= 0);
    require(code == status);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kMostCalls = 8;
    if (size < 2)
        return 0;
    static Instrument instrument;
    static std::string resource = instrument.resource();
    static std::string name = storeEntry(resource);
    static kvxtest::ScriptedClock clock;
    const std::size_t choice = data[0] % kOptions.size();
    const char* const options = kOptions[choice];
    const std::string_view keys = options;
    const bool isSafe = keys.find("SafeErrors") != keys.npos || keys.find("Bench") != keys.npos;
    const std::size_t calls = std::min<std::size_t>(data[1] % (kMostCalls + 1), size - 2);
    instrument.setBytes("Tessaro Instruments,KVX2833T,SN1,V2.34\n" +
                        std::string(reinterpret_cast<const char*>(data) + 2 + calls, size - 2 - calls));
    ViSession vi = VI_NULL;
    try {
        KVX2800T_InitWithOptions((choice < kFirstByName ? resource : name).data(), VI_TRUE, VI_FALSE, options, &vi);
    } catch (const std::logic_error&) {
        require(!isSafe);
    }
    if (vi == VI_NULL)
        return 0;
    for (std::size_t i = 0; i < calls; ++i)
        check(everyCall()[data[2 + i] % everyCall().size()], vi, isSafe);
    require(KVX2800T_close(vi) == VI_SUCCESS);
    return 0;
}
