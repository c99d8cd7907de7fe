// Any bytes as what clients of the virtual instrument's VXI-11 send: records are the same however the bytes arrive,
// each call is answered at most once, and the instrument works afterwards. Each input is tried twice: as a stream, and
// as the arguments of calls that its bytes pick.
#include "fuzz/input.h"
#include "virtual_instrument/transport/vxi11/core_service.h"
#include "virtual_instrument/transport/vxi11/portmapper.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace
{

using namespace kvxvirtual;
using namespace kvxvirtual::vxi11;
using kvxfuzz::require;

std::vector<std::string> recordsOf(std::string_view bytes, std::size_t piece)
{
    RecordAssembler assembler;
    std::vector<std::string> records;
    for (std::size_t at = 0; at < bytes.size() && !assembler.overrun(); at += piece) {
        assembler.append(bytes.substr(at, piece));
        while (auto record = assembler.next())
            records.push_back(std::move(*record));
    }
    return records;
}

class Registry final : public LinkRegistry
{
public:
    std::optional<LinkId> add(CoreService&) override { return links_ < 4 ? std::optional(++links_) : std::nullopt; }
    void remove(LinkId) override {}
    unsigned short abortPort() const override { return 1; }

private:
    LinkId links_ = 0;
};

/// The instrument behind two clients' core channels.
class Bench
{
public:
    void call(std::size_t client, const RpcCall& call)
    {
        // One at a time, as a connection has them.
        if (pending_[client])
            return abort(client);
        pending_[client] = true;
        clients_[client].call(call, [this, client](const RpcAnswer&) {
            require(pending_[client]);
            pending_[client] = false;
        });
        context_.restart();
        context_.poll();
    }

    void abort(std::size_t client)
    {
        for (LinkId link = 1; link <= 4; ++link)
            clients_[client].abort(link);
        context_.restart();
        context_.poll();
    }

    bool works() { return instrument_.receive("*CLS;*RST;:SYST:ERR?")->bytes == "0,\"No error\"\n"; }

private:
    asio::io_context context_{1};
    VirtualInstrument instrument_{{}, [] { return InstrumentClock::Duration(0); }};
    Journal journal_{[](const std::string&) {}, false};
    LinkHub hub_{context_, instrument_, journal_};
    Registry registry_;
    bool pending_[2] = {false, false};
    CoreService clients_[2] = {{hub_, registry_, "one", asio::ip::address_v4(0xFFFFFFFF)},
                               {hub_, registry_, "two", asio::ip::address_v4(0xFFFFFFFF)}};
};

void talk(const std::vector<RpcCall>& calls)
{
    Bench bench;
    const RpcCall create{1, kCoreProgram, kVersion, 10, XdrWriter().word(0).word(0).word(0).opaque("inst0").bytes()};
    bench.call(0, create);
    bench.call(1, create);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        answerPortmapper(calls[i], {{kCoreProgram, kVersion, 1}});
        bench.call(calls[i].number % 2, calls[i]);
    }
    require(bench.works());
}

std::vector<RpcCall> callsIn(const std::string& bytes)
{
    const auto records = recordsOf(bytes, std::max<std::size_t>(bytes.size(), 1));
    require(records == recordsOf(bytes, 1));
    std::vector<RpcCall> calls;
    for (const auto& record : records) {
        if (auto message = readMessage(record); message.call)
            calls.push_back(std::move(*message.call));
    }
    return calls;
}

/// A procedure, a client, and few enough arguments that they often fit.
std::vector<RpcCall> spelledCalls(std::string_view bytes)
{
    std::vector<RpcCall> calls;
    while (bytes.size() > 2) {
        const auto procedure = 10U + static_cast<unsigned char>(bytes[0]) % 17U;
        const auto client = static_cast<unsigned char>(bytes[1]);
        const std::size_t count = std::min<std::size_t>(static_cast<unsigned char>(bytes[2]) % 8U, bytes.size() - 3);
        XdrWriter arguments;
        arguments.word(1 + client % 2U);
        for (const char byte : bytes.substr(3, count))
            arguments.word(static_cast<unsigned char>(byte) % 160U);
        arguments.opaque(bytes.substr(3, count));
        calls.push_back({client, kCoreProgram, kVersion, procedure, arguments.bytes()});
        bytes.remove_prefix(3 + count);
    }
    return calls;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    talk(callsIn(bytes));
    talk(spelledCalls(bytes));
    return 0;
}
