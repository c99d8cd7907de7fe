#include "visa/transport/vxi11/rpc_channel.h"

#include "visa/transport/vxi11/big_endian.h"

#include <algorithm>
#include <utility>

namespace visa
{
namespace
{

constexpr std::uint32_t kReply = 1;
constexpr std::uint32_t kRpcVersion = 2;

/// Where the words of a call stand that are not 0, behind the mark of its record. Its type is 0 (a call), and so is all
/// of the credentials and of the verifier: there are none.
enum CallWord : std::size_t
{
    kNumberAt = 1,
    kRpcVersionAt = 3,
    kProgramAt = 4,
    kProgramVersionAt = 5,
    kProcedureAt = 6,
    kWordsBeforeArguments = 11
};

constexpr std::uint32_t kMessageAccepted = 0;
constexpr std::uint32_t kLongestVerifier = 400;

/// What an accepted call has come to, by its number in the reply; later numbers are an error of the other end.
constexpr std::array<ViStatus, 4> kAcceptedStatuses{VI_SUCCESS, VI_ERROR_NSUP_OPER, VI_ERROR_NSUP_OPER,
                                                    VI_ERROR_NSUP_OPER};

std::size_t paddingOf(std::size_t length)
{
    return (kWordBytes - length % kWordBytes) % kWordBytes;
}

/// A reply that XDR reads from, and what the reading has come to.
struct ReplySource
{
    RecordReader& reader;
    const Deadline& deadline;
    ViStatus status = VI_SUCCESS;

    bool fill(std::span<ViByte> bytes)
    {
        std::size_t count = 0;
        status = reader.read(bytes, deadline, count);
        return status == VI_SUCCESS;
    }
};

ReplySource& sourceOf(XDR* xdr)
{
    return *static_cast<ReplySource*>(xdr->x_private);
}

bool_t getLong(XDR* xdr, long* value)
{
    std::array<ViByte, kWordBytes> bytes{};
    if (!sourceOf(xdr).fill(bytes))
        return FALSE;
    *value = static_cast<std::int32_t>(wordAt(bytes.data()));
    return TRUE;
}

bool_t getBytes(XDR* xdr, char* bytes, u_int count)
{
    return sourceOf(xdr).fill({reinterpret_cast<ViByte*>(bytes), count}) ? TRUE : FALSE;
}

int32_t* noBuffer(XDR*, u_int)
{
    return nullptr;
}

/// XDR reading from a reply; what is left out here is for writing and for going back.
constexpr XDR::xdr_ops kReplyOperations{getLong, nullptr,  getBytes, nullptr, nullptr,
                                        nullptr, noBuffer, nullptr,  nullptr};

} // namespace

RpcChannel::RpcChannel(std::unique_ptr<Stream> stream, RpcProgram program)
    : stream_(std::move(stream)), replies_(*stream_)
{
    putWord(wordOfCall(kRpcVersionAt), kRpcVersion);
    putWord(wordOfCall(kProgramAt), program.number);
    putWord(wordOfCall(kProgramVersionAt), program.version);
}

ViStatus RpcChannel::call(std::uint32_t procedure, XdrValue arguments, std::span<const ViByte> payload,
                          const Deadline& deadline) noexcept
{
    if (!isUsable_)
        return VI_ERROR_CONN_LOST;
    const ViStatus sent = send(procedure, arguments, payload, deadline);
    return sent < 0 ? sent : checked(reachReply(deadline));
}

ViStatus RpcChannel::send(std::uint32_t procedure, XdrValue arguments, std::span<const ViByte> payload,
                          const Deadline& deadline) noexcept
{
    putWord(wordOfCall(kNumberAt), ++lastNumber_);
    putWord(wordOfCall(kProcedureAt), procedure);
    constexpr std::size_t kHeaderBytes = kWordsBeforeArguments * kWordBytes;
    XDR xdr{};
    xdrmem_create(&xdr, reinterpret_cast<char*>(sendBuffer_.data()) + kHeaderBytes, kSendBuffer - kHeaderBytes,
                  XDR_ENCODE);
    if (!arguments.apply(&xdr))
        return VI_ERROR_SYSTEM_ERROR;
    return sendRecord(std::span(sendBuffer_).first(kHeaderBytes + xdr_getpos(&xdr)), payload, deadline);
}

/// Sends a short payload together with what is before it, and what does not fit from where it is.
ViStatus RpcChannel::sendRecord(std::span<ViByte> head, std::span<const ViByte> payload,
                                const Deadline& deadline) noexcept
{
    constexpr std::array<ViByte, kWordBytes> kZeros{};
    const std::size_t padding = paddingOf(payload.size());
    const std::size_t length = head.size() - kWordBytes + payload.size() + padding;
    putWord(head.data(), kLastFragment | static_cast<std::uint32_t>(length));
    const std::size_t room = kSendBuffer - head.size();
    const bool fits = payload.size() + padding <= room;
    const std::size_t copied = fits ? payload.size() : room;
    std::copy_n(payload.begin(), copied, sendBuffer_.begin() + static_cast<std::ptrdiff_t>(head.size()));
    std::size_t begun = head.size() + copied;
    if (fits) {
        std::copy_n(kZeros.begin(), padding, sendBuffer_.begin() + static_cast<std::ptrdiff_t>(begun));
        begun += padding;
    }
    const std::array<std::span<const ViByte>, 3> pieces{std::span(sendBuffer_).first(begun), payload.subspan(copied),
                                                        std::span(kZeros).first(fits ? 0 : padding)};
    std::size_t sent = 0;
    for (const auto piece : pieces) {
        std::size_t count = 0;
        const ViStatus status = piece.empty() ? VI_SUCCESS : stream_->writeAll(piece, deadline, count);
        sent += count;
        if (status < 0) {
            isUsable_ = isUsable_ && sent == 0;
            return checked(status);
        }
    }
    return VI_SUCCESS;
}

template <std::size_t words>
ViStatus RpcChannel::takeWords(std::array<std::uint32_t, words>& values, const Deadline& deadline) noexcept
{
    std::array<ViByte, words * kWordBytes> bytes{};
    std::size_t count = 0;
    const ViStatus status = replies_.read(bytes, deadline, count);
    for (std::size_t i = 0; i < words; ++i)
        values[i] = wordAt(bytes.data() + i * kWordBytes);
    return status;
}

ViStatus RpcChannel::reachReply(const Deadline& deadline) noexcept
{
    std::array<std::uint32_t, 2> beginning{};
    do {
        ViStatus status = replies_.next(deadline);
        if (status == VI_SUCCESS)
            status = takeWords(beginning, deadline);
        if (status < 0)
            return status;
    } while (beginning != std::array<std::uint32_t, 2>{lastNumber_, kReply});
    return reachResult(deadline);
}

ViStatus RpcChannel::reachResult(const Deadline& deadline) noexcept
{
    std::array<std::uint32_t, 1> acceptance{};
    if (const ViStatus status = takeWords(acceptance, deadline); status < 0)
        return status;
    if (acceptance[0] != kMessageAccepted)
        return VI_ERROR_IO;
    std::array<std::uint32_t, 2> verifier{};
    if (const ViStatus status = takeWords(verifier, deadline); status < 0)
        return status;
    if (verifier[1] > kLongestVerifier)
        return VI_ERROR_INP_PROT_VIOL;
    std::array<std::uint32_t, 1> result{};
    ViStatus status = replies_.skip(verifier[1] + paddingOf(verifier[1]), deadline);
    if (status == VI_SUCCESS)
        status = takeWords(result, deadline);
    if (status < 0)
        return status;
    return result[0] < kAcceptedStatuses.size() ? kAcceptedStatuses[result[0]] : VI_ERROR_IO;
}

ViStatus RpcChannel::take(XdrValue value, const Deadline& deadline) noexcept
{
    ReplySource source{replies_, deadline};
    XDR xdr{};
    xdr.x_op = XDR_DECODE;
    xdr.x_ops = &kReplyOperations;
    xdr.x_private = &source;
    if (value.apply(&xdr))
        return VI_SUCCESS;
    return checked(source.status < 0 ? source.status : VI_ERROR_INP_PROT_VIOL);
}

ViStatus RpcChannel::take(std::span<ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
{
    return checked(replies_.read(bytes, deadline, count));
}

ViStatus RpcChannel::checked(ViStatus status) noexcept
{
    if (status == VI_ERROR_CONN_LOST || status == VI_ERROR_INP_PROT_VIOL || status == VI_ERROR_INV_OBJECT)
        isUsable_ = false;
    return status;
}

} // namespace visa
