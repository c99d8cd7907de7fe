#include "virtual_instrument/transport/vxi11/portmapper.h"

#include "virtual_instrument/transport/vxi11/xdr.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual::vxi11
{
namespace
{

constexpr std::uint32_t kPortmapperProgram = 100000;
constexpr std::uint32_t kPortmapperVersion = 2;
constexpr std::uint32_t kTcp = 6;

enum PortmapperProcedure : std::uint32_t
{
    kNull = 0,
    kSet = 1,
    kUnset = 2,
    kGetPort = 3,
    kDump = 4,
};

std::uint32_t portOf(XdrReader& wanted, const std::vector<PortMapping>& mappings)
{
    const auto program = wanted.word();
    const auto version = wanted.word();
    const auto protocol = wanted.word();
    wanted.word();
    const auto found = std::find_if(mappings.begin(), mappings.end(), [&](const PortMapping& each) {
        return protocol == kTcp && each.program == program && each.version == version;
    });
    return found == mappings.end() ? 0 : found->port;
}

std::string listOf(const std::vector<PortMapping>& mappings)
{
    XdrWriter list;
    for (const auto& each : mappings)
        list.word(1).word(each.program).word(each.version).word(kTcp).word(each.port);
    return list.word(0).bytes();
}

} // namespace

RpcAnswer answerPortmapper(const RpcCall& call, const std::vector<PortMapping>& mappings)
{
    if (call.program != kPortmapperProgram)
        return {Acceptance::ProgramUnavailable};
    if (call.version != kPortmapperVersion)
        return versionMismatch(kPortmapperVersion);
    XdrReader arguments(call.arguments);
    switch (call.procedure) {
    case kNull:
        return {};
    case kSet:
    case kUnset:
        // Refused: a program of its own knows its programs.
        return {Acceptance::Success, XdrWriter().word(0).bytes()};
    case kGetPort: {
        const auto port = portOf(arguments, mappings);
        return arguments.good() ? RpcAnswer{Acceptance::Success, XdrWriter().word(port).bytes()}
                                : RpcAnswer{Acceptance::GarbageArguments};
    }
    case kDump:
        return {Acceptance::Success, listOf(mappings)};
    default:
        return {Acceptance::ProcedureUnavailable};
    }
}

PortmapperDatagrams::PortmapperDatagrams(asio::io_context& context, const asio::ip::udp::endpoint& endpoint,
                                         std::vector<PortMapping> mappings)
    : socket_(context, endpoint), mappings_(std::move(mappings))
{
    receive();
}

void PortmapperDatagrams::receive()
{
    socket_.async_receive_from(asio::buffer(call_), sender_, [this](asio::error_code error, std::size_t size) {
        if (error == asio::error::operation_aborted)
            return;
        const auto message = readMessage({call_.data(), error ? 0 : size});
        const std::string reply =
            message.call ? replyTo(message.call->number, answerPortmapper(*message.call, mappings_)) : message.reply;
        asio::error_code ignored;
        if (!reply.empty())
            socket_.send_to(asio::buffer(reply), sender_, 0, ignored);
        receive();
    });
}

} // namespace kvxvirtual::vxi11
