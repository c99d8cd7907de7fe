#include "visa/transport/vxi11/vxi11_transport.h"

#include "visa/transport/tcp/tcp_stream.h"
#include "visa/transport/vxi11/vxi11_status.h"

#include <visa/transport/vxi11/vxi11_protocol.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace visa
{
namespace
{

/// How long closing a session may take for a device that does not answer any more.
constexpr ViUInt32 kGoodbyeMs = 500;
constexpr ViUInt32 kAbortMs = 2000;
/// What a device takes at least that names no limit.
constexpr std::size_t kLeastSent = 1024;
constexpr RpcProgram kCore{DEVICE_CORE, DEVICE_CORE_VERSION};
constexpr RpcProgram kAbortProgram{DEVICE_ASYNC, DEVICE_ASYNC_VERSION};

ViUInt32 leftMs(const Deadline& deadline)
{
    return static_cast<ViUInt32>(deadline.remainingMs(std::numeric_limits<int>::max()));
}

template <auto arguments, auto results, class Arguments, class Results>
ViStatus exchange(RpcChannel& channel, std::uint32_t procedure, Arguments sent, Results& received,
                  const Deadline& deadline, std::span<const ViByte> payload = {})
{
    ViStatus status = channel.call(procedure, XdrValue::by<arguments>(sent), payload, deadline);
    if (status == VI_SUCCESS)
        status = channel.take(XdrValue::by<results>(received), deadline);
    return status == VI_SUCCESS ? statusOfVxi11(received.error) : status;
}

/// The same for a procedure that answers with nothing but an error.
template <auto arguments, class Arguments>
ViStatus command(RpcChannel& channel, std::uint32_t procedure, Arguments sent, const Deadline& deadline)
{
    Device_Error received{};
    return exchange<arguments, xdr_Device_Error>(channel, procedure, sent, received, deadline);
}

struct RemoteRow
{
    ViUInt16 mode;
    std::uint32_t procedure;
};

/// The others are about a bus that is not there.
constexpr std::array<RemoteRow, 4> kRemoteModes{{
    {VI_GPIB_REN_DEASSERT_GTL, device_local},
    {VI_GPIB_REN_ASSERT_ADDRESS, device_remote},
    {VI_GPIB_REN_ASSERT_ADDRESS_LLO, device_remote},
    {VI_GPIB_REN_ADDRESS_GTL, device_local},
}};

} // namespace

Vxi11Transport::Vxi11Transport(std::unique_ptr<RpcChannel> core, Vxi11Link link)
    : core_(std::move(core)), link_(link), address_(core_->address())
{
}

Vxi11Transport::~Vxi11Transport()
{
    command<xdr_Device_Link>(*core_, destroy_link, Device_Link{link_.number}, Deadline(kGoodbyeMs));
}

/// Runs the operation when no other is under way.
template <class Operation>
ViStatus Vxi11Transport::inTurn(const Deadline& deadline, Operation operation)
{
    const TurnTaken taken(turn_, deadline);
    if (taken.status() < 0)
        return taken.status();
    const ViStatus status = operation();
    return turn_.isInterrupted() ? VI_ERROR_INV_OBJECT : status;
}

ViStatus Vxi11Transport::read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    count = 0;
    return inTurn(terms.deadline, [&] { return readMessage(buffer, terms, count); });
}

ViStatus Vxi11Transport::readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    const bool endEnds = terms.attributes.get<VI_ATTR_SUPPRESS_END_EN>() != VI_TRUE;
    while (count < buffer.size()) {
        std::size_t stored = 0;
        int reason = 0;
        const ViStatus status = readPart(buffer.subspan(count), terms, stored, reason);
        count += stored;
        if (status < 0)
            return status;
        if (endEnds && (reason & DEVICE_REASON_END) != 0)
            return VI_SUCCESS;
        if ((reason & DEVICE_REASON_TERM_CHAR) != 0)
            return VI_SUCCESS_TERM_CHAR;
        if (const ViStatus goesOn = turn_.status(); goesOn < 0)
            return goesOn;
        if (count < buffer.size() && leftMs(terms.deadline) == 0)
            return VI_ERROR_TMO;
    }
    return VI_SUCCESS_MAX_CNT;
}

ViStatus Vxi11Transport::readPart(std::span<ViByte> room, const Terms& terms, std::size_t& count, int& reason)
{
    const bool endsAtCharacter = terms.attributes.get<VI_ATTR_TERMCHAR_EN>() == VI_TRUE;
    const ViUInt32 waitMs = leftMs(terms.deadline);
    const Device_ReadParms wanted{link_.number,
                                  static_cast<u_int>(room.size()),
                                  waitMs,
                                  0,
                                  endsAtCharacter ? DEVICE_FLAG_TERM_CHAR : 0,
                                  static_cast<char>(terms.attributes.get<VI_ATTR_TERMCHAR>())};
    const Deadline deadline = answerDeadline(waitMs);
    Device_ReadResp answer{};
    const ViStatus answered =
        exchange<xdr_Device_ReadParms, xdr_Device_ReadResp>(*core_, device_read, wanted, answer, deadline);
    // More than was asked for stays in its record, which the next call skips.
    if (answer.dataSize > room.size())
        return VI_ERROR_INP_PROT_VIOL;
    const ViStatus taken = core_->take(room.first(answer.dataSize), deadline, count);
    reason = answer.reason;
    return answered < 0 ? answered : taken;
}

ViStatus Vxi11Transport::write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    count = 0;
    return inTurn(terms.deadline, [&] {
        const bool sendsEnd = terms.attributes.get<VI_ATTR_SEND_END_EN>() == VI_TRUE;
        while (count < bytes.size()) {
            const auto part = bytes.subspan(count, std::min(link_.mostSent, bytes.size() - count));
            const bool isLast = count + part.size() == bytes.size();
            std::size_t written = 0;
            const ViStatus status = writePart(part, sendsEnd && isLast, terms, written);
            count += written;
            if (status < 0)
                return status;
            if (const ViStatus goesOn = turn_.status(); goesOn < 0 && count < bytes.size())
                return goesOn;
        }
        return VI_SUCCESS;
    });
}

ViStatus Vxi11Transport::writePart(std::span<const ViByte> part, bool isLast, const Terms& terms, std::size_t& count)
{
    const ViUInt32 waitMs = leftMs(terms.deadline);
    const Device_WriteParms told{link_.number, waitMs, 0, isLast ? DEVICE_FLAG_END : 0,
                                 static_cast<u_int>(part.size())};
    Device_WriteResp answer{};
    const ViStatus status = exchange<xdr_Device_WriteParms, xdr_Device_WriteResp>(*core_, device_write, told, answer,
                                                                                  answerDeadline(waitMs), part);
    const bool isPossible = answer.size <= part.size() && (status < 0 || answer.size > 0);
    count = std::min<std::size_t>(answer.size, part.size());
    return isPossible ? status : VI_ERROR_OUTP_PROT_VIOL;
}

ViStatus Vxi11Transport::callGeneric(std::uint32_t procedure, const Terms& terms)
{
    return inTurn(terms.deadline, [&] {
        const ViUInt32 waitMs = leftMs(terms.deadline);
        return command<xdr_Device_GenericParms>(*core_, procedure, Device_GenericParms{link_.number, 0, 0, waitMs},
                                                answerDeadline(waitMs));
    });
}

ViStatus Vxi11Transport::clear(const Terms& terms)
{
    return callGeneric(device_clear, terms);
}

ViStatus Vxi11Transport::trigger(const Terms& terms)
{
    return callGeneric(device_trigger, terms);
}

ViStatus Vxi11Transport::controlRemote(const Terms& terms, ViUInt16 mode)
{
    const auto* const row = std::find_if(kRemoteModes.begin(), kRemoteModes.end(),
                                         [mode](const RemoteRow& each) { return each.mode == mode; });
    return row == kRemoteModes.end() ? VI_ERROR_NSUP_OPER : callGeneric(row->procedure, terms);
}

ViStatus Vxi11Transport::readStatusByte(const Terms& terms, ViUInt16& status)
{
    return inTurn(terms.deadline, [&] {
        const ViUInt32 waitMs = leftMs(terms.deadline);
        Device_ReadStbResp answer{};
        const ViStatus answered = exchange<xdr_Device_GenericParms, xdr_Device_ReadStbResp>(
            *core_, device_readstb, Device_GenericParms{link_.number, 0, 0, waitMs}, answer, answerDeadline(waitMs));
        if (answered >= 0)
            status = answer.stb;
        return answered;
    });
}

ViStatus Vxi11Transport::lock(const Terms& terms, const LockRequest& request)
{
    if (request.isShared)
        return VI_SUCCESS;
    return inTurn(terms.deadline, [&] {
        const ViUInt32 waitMs = leftMs(terms.deadline);
        const int flags = waitMs > 0 ? DEVICE_FLAG_WAIT_LOCK : 0;
        const ViStatus status = command<xdr_Device_LockParms>(
            *core_, device_lock, Device_LockParms{link_.number, flags, waitMs}, answerDeadline(waitMs));
        // Here another's lock is what the time was for.
        return status == VI_ERROR_RSRC_LOCKED ? VI_ERROR_TMO : status;
    });
}

ViStatus Vxi11Transport::unlock(const Terms& terms, bool isShared)
{
    if (isShared)
        return VI_SUCCESS;
    return inTurn(terms.deadline, [&] {
        return command<xdr_Device_Link>(*core_, device_unlock, Device_Link{link_.number},
                                        answerDeadline(leftMs(terms.deadline)));
    });
}

Deadline Vxi11Transport::answerDeadline(ViUInt32 deviceMs) const
{
    return Deadline(deviceMs + link_.allowanceMs);
}

std::string Vxi11Transport::textFact(ViAttr)
{
    return address_;
}

ViStatus Vxi11Transport::abort()
{
    if (!turn_.abort([] {}))
        return VI_SUCCESS;
    const std::lock_guard aborting(abortMutex_);
    const Deadline deadline(kAbortMs);
    if (const ViStatus status = connectAbortChannel(deadline); status < 0)
        return status;
    return command<xdr_Device_Link>(*abortChannel_, device_abort, Device_Link{link_.number}, deadline);
}

ViStatus Vxi11Transport::connectAbortChannel(const Deadline& deadline)
{
    if (abortChannel_ != nullptr && abortChannel_->isUsable())
        return VI_SUCCESS;
    ResourceName name;
    name.address = address_;
    name.port = link_.abortPort;
    std::unique_ptr<Stream> stream;
    const ViStatus status = openTcpStream(name, deadline, stream);
    if (status == VI_SUCCESS)
        abortChannel_ = std::make_unique<RpcChannel>(std::move(stream), kAbortProgram);
    return status == VI_ERROR_RSRC_NFOUND ? VI_ERROR_CONN_LOST : status;
}

void Vxi11Transport::interrupt() noexcept
{
    turn_.interrupt([this] { core_->interrupt(); });
}

ViStatus findVxi11Core(const std::string& host, const Deadline& deadline, RpcPlace& core)
{
    return findRpcProgram(host, DEVICE_CORE, DEVICE_CORE_VERSION, deadline, core);
}

ViStatus openVxi11Link(const RpcPlace& core, const std::string& device, const Deadline& deadline,
                       std::unique_ptr<Transport>& transport, ViUInt32 allowanceMs)
{
    ResourceName name;
    name.address = core.address;
    name.port = core.port;
    std::unique_ptr<Stream> connection;
    const ViStatus status = openTcpStream(name, deadline, connection);
    return status < 0 ? status : openVxi11Link(std::move(connection), device, deadline, transport, allowanceMs);
}

ViStatus openVxi11Link(std::unique_ptr<Stream> connection, const std::string& device, const Deadline& deadline,
                       std::unique_ptr<Transport>& transport, ViUInt32 allowanceMs)
{
    auto core = std::make_unique<RpcChannel>(std::move(connection), kCore);
    std::string name = device;
    Create_LinkResp answer{};
    const ViStatus status = exchange<xdr_Create_LinkParms, xdr_Create_LinkResp>(
        *core, create_link, Create_LinkParms{0, FALSE, 0, name.data()}, answer, deadline);
    if (status < 0)
        return status;
    const std::size_t mostSent = answer.maxRecvSize == 0 ? kLeastSent : answer.maxRecvSize;
    transport = std::make_unique<Vxi11Transport>(std::move(core),
                                                 Vxi11Link{answer.lid, answer.abortPort, mostSent, allowanceMs});
    return VI_SUCCESS;
}

} // namespace visa
