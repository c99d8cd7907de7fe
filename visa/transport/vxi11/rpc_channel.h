#pragma once

#include "visa/transport/stream.h"
#include "visa/transport/vxi11/big_endian.h"
#include "visa/transport/vxi11/record_reader.h"

#include <rpc/xdr.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace visa
{

/// A value that XDR writes or reads, by the function that rpcgen has made for its type.
class XdrValue
{
public:
    template <auto code, class Value>
    static XdrValue by(Value& value)
    {
        return {[](XDR* xdr, void* object) { return code(xdr, static_cast<Value*>(object)) != FALSE; }, &value};
    }

    bool apply(XDR* xdr) const { return code_(xdr, object_); }

private:
    using Code = bool (*)(XDR*, void*);

    XdrValue(Code code, void* object) : code_(code), object_(object) {}

    Code code_;
    void* object_;
};

struct RpcProgram
{
    std::uint32_t number;
    std::uint32_t version;
};

/// Calls of one program of the other end (ONC RPC, RFC 5531) over a connection, one at a time: call(), and what its
/// reply has, from its beginning, by the functions below it. TI-RPC's own client can neither be interrupted nor share
/// the transfers of the other transports, so that only its XDR is used. No call takes memory.
///
/// A reply that is given up because its time is over is skipped when it comes, by its number: the connection, and what
/// the other end keeps for it, outlives a slow answer. Where only part of a call has been sent the two ends are out of
/// step, and the connection is of no use any more; nor is it after a reply that breaks the protocol.
class RpcChannel
{
public:
    RpcChannel(std::unique_ptr<Stream> stream, RpcProgram program);

    /// Sends the arguments and, behind them, the payload as the contents of opaque data, and waits for the reply.
    /// @return VI_SUCCESS when the other end has carried the call out; VI_ERROR_NSUP_OPER when it has no such
    /// procedure,
    ///         VI_ERROR_IO when it refused the call otherwise; VI_ERROR_CONN_LOST for a connection of no use, also
    ///         later; VI_ERROR_INP_PROT_VIOL, VI_ERROR_TMO, or VI_ERROR_INV_OBJECT after interrupt()
    ViStatus call(std::uint32_t procedure, XdrValue arguments, std::span<const ViByte> payload,
                  const Deadline& deadline) noexcept;

    /// Reads the next value of the reply.
    ViStatus take(XdrValue value, const Deadline& deadline) noexcept;

    /// Reads the next bytes of the reply; a count is told on an error as well.
    ViStatus take(std::span<ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept;

    /// The address of the other end, without its port; empty when it cannot be told.
    std::string address() const { return stream_->address(); }

    bool isUsable() const { return isUsable_; }

    /// Ends waiting calls for good. May be called from any thread.
    void interrupt() noexcept { stream_->interrupt(); }

private:
    ViStatus send(std::uint32_t procedure, XdrValue arguments, std::span<const ViByte> payload,
                  const Deadline& deadline) noexcept;
    ViStatus sendRecord(std::span<ViByte> head, std::span<const ViByte> payload, const Deadline& deadline) noexcept;
    ViStatus reachReply(const Deadline& deadline) noexcept;
    ViStatus reachResult(const Deadline& deadline) noexcept;
    template <std::size_t words>
    ViStatus takeWords(std::array<std::uint32_t, words>& values, const Deadline& deadline) noexcept;
    /// Ends the use of the connection after what cannot be mended.
    ViStatus checked(ViStatus status) noexcept;

    ViByte* wordOfCall(std::size_t index) { return sendBuffer_.data() + index * kWordBytes; }

    static constexpr std::size_t kSendBuffer = 16384;

    const std::unique_ptr<Stream> stream_;
    RecordReader replies_;
    /// Begins with what is the same in each call.
    std::array<ViByte, kSendBuffer> sendBuffer_{};
    std::uint32_t lastNumber_ = 0;
    bool isUsable_ = true;
};

} // namespace visa
