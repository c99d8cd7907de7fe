#include "virtual_instrument/transport/vxi11/rpc_message.h"

#include "virtual_instrument/transport/vxi11/xdr.h"

#include <utility>

namespace kvxvirtual::vxi11
{
namespace
{

enum MessageType : std::uint32_t
{
    kCall = 0,
    kReply = 1,
};
constexpr std::uint32_t kRpcVersion = 2;
constexpr std::uint32_t kAccepted = 0;
constexpr std::uint32_t kDenied = 1;
constexpr std::uint32_t kRpcMismatch = 0;
constexpr std::uint32_t kNobody = 0;
constexpr std::size_t kLongestCredentials = 400;

constexpr std::size_t kMarkSize = 4;
constexpr std::uint32_t kLastOfRecord = 0x80000000U;

} // namespace

RpcAnswer versionMismatch(std::uint32_t version)
{
    return {Acceptance::ProgramMismatch, XdrWriter().word(version).word(version).bytes()};
}

ReadMessage readMessage(std::string_view message)
{
    XdrReader reader(message);
    RpcCall call;
    call.number = reader.word();
    if (reader.word() != kCall || !reader.good())
        return {};
    const auto rpcVersion = reader.word();
    if (!reader.good())
        return {};
    if (rpcVersion != kRpcVersion)
        return {std::nullopt, XdrWriter()
                                  .word(call.number)
                                  .word(kReply)
                                  .word(kDenied)
                                  .word(kRpcMismatch)
                                  .word(kRpcVersion)
                                  .word(kRpcVersion)
                                  .bytes()};
    call.program = reader.word();
    call.version = reader.word();
    call.procedure = reader.word();
    // Credentials and verifier.
    for (int i = 0; i < 2; ++i) {
        reader.word();
        reader.opaque(kLongestCredentials);
    }
    if (!reader.good())
        return {std::nullopt, replyTo(call.number, {Acceptance::GarbageArguments})};
    call.arguments = reader.rest();
    return {std::move(call), {}};
}

std::string replyTo(std::uint32_t number, const RpcAnswer& answer)
{
    return XdrWriter()
               .word(number)
               .word(kReply)
               .word(kAccepted)
               .word(kNobody)
               .word(0)
               .word(static_cast<std::uint32_t>(answer.acceptance))
               .bytes() +
           answer.result;
}

std::string encodeCall(const RpcCall& call)
{
    return XdrWriter()
               .word(call.number)
               .word(kCall)
               .word(kRpcVersion)
               .word(call.program)
               .word(call.version)
               .word(call.procedure)
               .word(kNobody)
               .word(0)
               .word(kNobody)
               .word(0)
               .bytes() +
           call.arguments;
}

std::string asRecord(std::string_view message)
{
    return XdrWriter().word(kLastOfRecord | static_cast<std::uint32_t>(message.size())).bytes() + std::string(message);
}

void RecordAssembler::append(std::string_view bytes)
{
    input_.erase(0, std::exchange(begin_, 0));
    input_ += bytes;
}

std::optional<std::string> RecordAssembler::next()
{
    while (!overrun_ && waitingBytes() >= kMarkSize) {
        const auto mark = XdrReader(std::string_view(input_).substr(begin_)).word();
        const std::size_t length = mark & ~kLastOfRecord;
        overrun_ = length > kLongestRecord - record_.size();
        if (overrun_ || waitingBytes() < kMarkSize + length)
            break;
        record_.append(input_, begin_ + kMarkSize, length);
        begin_ += kMarkSize + length;
        if ((mark & kLastOfRecord) != 0)
            return std::exchange(record_, {});
    }
    return std::nullopt;
}

} // namespace kvxvirtual::vxi11
