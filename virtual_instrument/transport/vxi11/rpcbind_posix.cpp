#include "virtual_instrument/transport/vxi11/rpcbind.h"

#include "virtual_instrument/transport/vxi11/xdr.h"

#include <chrono>

namespace kvxvirtual::vxi11
{
namespace
{

using Local = asio::local::stream_protocol;

// What rpcbind takes from programs of its own machine only, and tells their users apart by (RFC 1833).
constexpr auto kRpcbindSocket = "/run/rpcbind.sock";
constexpr std::uint32_t kRpcbindProgram = 100000;
constexpr std::uint32_t kRpcbindVersion = 4;
constexpr std::uint32_t kRpcbindSet = 1;
constexpr std::uint32_t kRpcbindUnset = 2;
constexpr std::chrono::seconds kRpcbindPatience{1};

/// "127.0.0.1.48.57": the two bytes of the port behind the address.
std::string universalAddress(const std::string& address, unsigned short port)
{
    return address + '.' + std::to_string(port / 256) + '.' + std::to_string(port % 256);
}

/// What is written to be sent, and the record that answers it; empty when none does in time.
std::string exchangedWithRpcbind(const std::string& record)
{
    asio::io_context context(1);
    Local::socket socket(context);
    asio::error_code error;
    socket.connect(Local::endpoint(kRpcbindSocket), error);
    if (error)
        return {};
    std::array<char, 1024> chunk{};
    RecordAssembler answers;
    std::string answer;
    asio::async_write(socket, asio::buffer(record), [](asio::error_code, std::size_t) {});
    std::function<void()> receive = [&] {
        socket.async_read_some(asio::buffer(chunk), [&](asio::error_code failure, std::size_t size) {
            if (failure)
                return;
            answers.append({chunk.data(), size});
            if (auto complete = answers.next())
                answer = std::move(*complete);
            else
                receive();
        });
    };
    receive();
    context.run_for(kRpcbindPatience);
    return answer;
}

bool callRpcbind(std::uint32_t procedure, const std::string& address, const PortMapping& mapping)
{
    const auto arguments = XdrWriter()
                               .word(mapping.program)
                               .word(mapping.version)
                               .opaque("tcp")
                               .opaque(address)
                               .opaque(std::string_view())
                               .bytes();
    constexpr std::uint32_t kNumber = 1;
    const auto answer =
        exchangedWithRpcbind(asRecord(encodeCall({kNumber, kRpcbindProgram, kRpcbindVersion, procedure, arguments})));
    return answer == replyTo(kNumber, {Acceptance::Success, XdrWriter().word(1).bytes()});
}

} // namespace

bool registerWithRpcbind(const std::string& address, const PortMapping& mapping)
{
    unregisterFromRpcbind(mapping);
    return callRpcbind(kRpcbindSet, universalAddress(address, mapping.port), mapping);
}

void unregisterFromRpcbind(const PortMapping& mapping)
{
    callRpcbind(kRpcbindUnset, {}, mapping);
}

} // namespace kvxvirtual::vxi11
