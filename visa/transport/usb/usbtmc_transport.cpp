#include "visa/transport/usb/usbtmc_transport.h"

#include "visa/transport/usb/usbtmc_requests.h"

#include <algorithm>
#include <array>
#include <utility>

namespace visa
{
namespace
{

constexpr std::size_t kMostData = 65536; ///< of one message's part
constexpr int kMostEmptyParts = 8;
constexpr int kMostLeftOver = 8;

/// Room for a reply of this size. The packet beyond it tells a device that sends more from one whose reply ends in
/// time.
std::size_t roomFor(std::size_t dataSize, std::size_t packetSize)
{
    return (usbtmc::paddedSize(dataSize) / packetSize + 1) * packetSize;
}

std::optional<ViByte> wantedTermChar(const AttributeValues& values)
{
    if (values.get<VI_ATTR_TERMCHAR_EN>() != VI_TRUE)
        return std::nullopt;
    return static_cast<ViByte>(values.get<VI_ATTR_TERMCHAR>());
}

struct RemoteCommand
{
    usbtmc::Request request;
    std::uint16_t value;
};

struct RemoteMode
{
    ViUInt16 mode;
    std::array<std::optional<RemoteCommand>, 2> commands;
};

constexpr RemoteCommand kRemoteEnable{usbtmc::Request::RenControl, 1};
constexpr RemoteCommand kRemoteDisable{usbtmc::Request::RenControl, 0};
constexpr RemoteCommand kGoToLocal{usbtmc::Request::GoToLocal, 0};
constexpr RemoteCommand kLocalLockout{usbtmc::Request::LocalLockout, 0};

/// A device on USB is always addressed.
constexpr std::array<RemoteMode, 7> kRemoteModes{{
    {VI_GPIB_REN_DEASSERT, {kRemoteDisable}},
    {VI_GPIB_REN_ASSERT, {kRemoteEnable}},
    {VI_GPIB_REN_DEASSERT_GTL, {kGoToLocal, kRemoteDisable}},
    {VI_GPIB_REN_ASSERT_ADDRESS, {kRemoteEnable}},
    {VI_GPIB_REN_ASSERT_LLO, {kRemoteEnable, kLocalLockout}},
    {VI_GPIB_REN_ASSERT_ADDRESS_LLO, {kRemoteEnable, kLocalLockout}},
    {VI_GPIB_REN_ADDRESS_GTL, {kGoToLocal}},
}};

} // namespace

UsbtmcTransport::UsbtmcTransport(std::unique_ptr<UsbInterface> usb, const usbtmc::Capabilities& capabilities)
    : usb_(std::move(usb)), capabilities_(capabilities), outgoing_(usbtmc::paddedSize(kMostData)),
      incoming_(roomFor(kMostData, usb_->description().bulkInPacketSize)), statusByte_(*usb_)
{
}

/// Runs the operation while no other one is under way.
template <class Operation>
ViStatus UsbtmcTransport::inTurn(Turn& turn, const Deadline& deadline, Operation operation)
{
    if (const ViStatus taken = turn.take(deadline); taken < 0)
        return taken;
    const ViStatus status = operation();
    endTurn(turn);
    return status == VI_ERROR_ABORT && turn.isInterrupted() ? VI_ERROR_INV_OBJECT : status;
}

void UsbtmcTransport::endTurn(Turn& turn)
{
    turn.give([&] {
        if (&turn == &bulkTurn_)
            usb_->resumeBulk();
    });
}

ViByte UsbtmcTransport::takeTag()
{
    return tag_ = usbtmc::nextMessageTag(tag_);
}

/// @param dataSent bytes of the data, on an error as well
ViStatus UsbtmcTransport::send(const usbtmc::Header& header, std::span<const ViByte> data, const Deadline& deadline,
                               std::size_t& dataSent)
{
    const auto message = std::span(outgoing_).first(usbtmc::paddedSize(data.size()));
    std::fill(message.begin(), message.end(), ViByte{0});
    std::copy(header.begin(), header.end(), message.begin());
    std::copy(data.begin(), data.end(), message.begin() + usbtmc::kHeaderSize);
    Transfer sent = usb_->bulkOut(message, usbtmc::limitOf(deadline));
    dataSent = std::min(sent.count - std::min(sent.count, usbtmc::kHeaderSize), data.size());
    if (sent.outcome == TransferOutcome::Complete && sent.count < message.size())
        sent.outcome = TransferOutcome::Failed;
    if (sent.outcome != TransferOutcome::Complete)
        usbtmc::recoverBulkOut(*usb_, header[1], sent.outcome);
    return usbtmc::visaStatus(sent.outcome);
}

ViStatus UsbtmcTransport::writeMessage(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    const bool endsMessage = terms.attributes.get<VI_ATTR_SEND_END_EN>() == VI_TRUE;
    while (count < bytes.size()) {
        const auto part = bytes.subspan(count, std::min(kMostData, bytes.size() - count));
        const bool isLast = count + part.size() == bytes.size();
        const auto header =
            usbtmc::deviceDependentOut(takeTag(), static_cast<std::uint32_t>(part.size()), isLast && endsMessage);
        std::size_t sent = 0;
        const ViStatus status = send(header, part, terms.deadline, sent);
        count += sent;
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus UsbtmcTransport::write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    count = 0;
    return inTurn(bulkTurn_, terms.deadline, [&] { return writeMessage(bytes, terms, count); });
}

ViStatus UsbtmcTransport::trigger(const Terms& terms)
{
    if (!capabilities_.hasTrigger)
        return VI_ERROR_INV_SETUP;
    std::size_t none = 0;
    return inTurn(bulkTurn_, terms.deadline,
                  [&] { return send(usbtmc::trigger(takeTag()), {}, terms.deadline, none); });
}

/// Whether the transfer answers a request that was given up.
bool UsbtmcTransport::isStale(std::span<const ViByte> transfer) const
{
    const auto tag = usbtmc::tagOf(transfer);
    return tag && staleSince_ && static_cast<ViByte>(*tag - *staleSince_) < static_cast<ViByte>(tag_ - *staleSince_);
}

/// Takes the next transfer that is not left over from a request before: an empty one, which may be another's end, or an
/// answer that nobody waits for any more.
Transfer UsbtmcTransport::receive(std::span<ViByte> room, const Deadline& deadline)
{
    Transfer transfer;
    for (int i = 0; i <= kMostLeftOver; ++i) {
        transfer = usb_->bulkIn(room, usbtmc::limitOf(deadline));
        transfer.count = std::min(transfer.count, room.size());
        if (transfer.outcome != TransferOutcome::Complete ||
            (transfer.count > 0 && !isStale(room.first(transfer.count))))
            break;
    }
    return transfer;
}

/// Room for what is dropped. Nothing is being sent then, and what was received stays as it is.
std::span<ViByte> UsbtmcTransport::scratch()
{
    const std::size_t packet = usb_->description().bulkInPacketSize;
    return std::span(outgoing_).first(outgoing_.size() / packet * packet);
}

/// Asks the device for so many bytes, or as many of them as one transfer has. On an error those that came are there
/// too.
ViStatus UsbtmcTransport::fetch(std::size_t wanted, const Terms& terms)
{
    const std::size_t asked = std::min(wanted, kMostData);
    const ViByte tag = takeTag();
    const auto end = capabilities_.endsAtTermChar ? wantedTermChar(terms.attributes) : std::nullopt;
    const auto request = usbtmc::requestDeviceDependentIn(tag, static_cast<std::uint32_t>(asked), end);
    std::size_t none = 0;
    if (const ViStatus sent = send(request, {}, terms.deadline, none); sent < 0)
        return sent;

    const auto room = std::span(incoming_).first(roomFor(asked, usb_->description().bulkInPacketSize));
    Transfer transfer = receive(room, terms.deadline);
    if (transfer.outcome == TransferOutcome::Complete && transfer.count == room.size())
        transfer.outcome = TransferOutcome::Overflow;
    const usbtmc::Reply reply = usbtmc::parseReply(room.first(transfer.count), tag, asked);
    const bool isComplete = transfer.outcome == TransferOutcome::Complete;
    const ViStatus status = isComplete ? reply.status : usbtmc::visaStatus(transfer.outcome);
    received_ = reply.data;
    endsMessage_ = status >= 0 && reply.endsMessage;
    if (status >= 0)
        staleSince_.reset();
    else if (!usbtmc::recoverBulkIn(*usb_, tag, transfer.outcome, scratch()) && !staleSince_)
        staleSince_ = tag;
    return status;
}

/// Moves what was received into the buffer.
/// @return the completion of the read that ends with it
std::optional<ViStatus> UsbtmcTransport::deliver(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    const auto ready = received_.first(std::min(received_.size(), buffer.size() - count));
    EndRule rule;
    rule.termByte = wantedTermChar(terms.attributes);
    const auto found = findEnd(ready, rule);
    const std::size_t taken = found ? found->length : ready.size();
    std::copy_n(ready.begin(), taken, buffer.begin() + static_cast<std::ptrdiff_t>(count));
    received_ = received_.subspan(taken);
    count += taken;
    const bool isEnd = endsMessage_ && received_.empty();
    endsMessage_ = endsMessage_ && !isEnd;
    if (isEnd && terms.attributes.get<VI_ATTR_SUPPRESS_END_EN>() != VI_TRUE)
        return VI_SUCCESS;
    if (found)
        return VI_SUCCESS_TERM_CHAR;
    return count == buffer.size() ? std::optional(VI_SUCCESS_MAX_CNT) : std::nullopt;
}

void UsbtmcTransport::forgetReceived()
{
    received_ = {};
    endsMessage_ = false;
}

ViStatus UsbtmcTransport::readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    for (int emptyParts = 0; emptyParts < kMostEmptyParts;) {
        const std::size_t before = count;
        const bool isLeft = !received_.empty() || endsMessage_;
        const ViStatus fetched = isLeft ? VI_SUCCESS : fetch(buffer.size() - count, terms);
        const auto completion = deliver(buffer, terms, count);
        if (fetched < 0) {
            forgetReceived();
            return fetched;
        }
        if (completion)
            return *completion;
        if (terms.deadline.remainingMs(1) == 0)
            return VI_ERROR_TMO;
        emptyParts = count == before ? emptyParts + 1 : 0;
    }
    return VI_ERROR_INP_PROT_VIOL;
}

ViStatus UsbtmcTransport::read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    count = 0;
    // A device must not be asked for nothing.
    if (buffer.empty())
        return VI_SUCCESS_MAX_CNT;
    return inTurn(bulkTurn_, terms.deadline, [&] { return readMessage(buffer, terms, count); });
}

ViStatus UsbtmcTransport::clear(const Terms& terms)
{
    endBulk();
    return inTurn(bulkTurn_, terms.deadline, [&] {
        forgetReceived();
        const ViStatus status = usbtmc::clearDevice(*usb_, scratch(), terms.deadline);
        if (status >= 0)
            staleSince_.reset();
        return status;
    });
}

ViStatus UsbtmcTransport::discardInput(const Terms&)
{
    // A read under way has the input to itself; flushing must not wait for it.
    if (!bulkTurn_.takeIfFree())
        return VI_SUCCESS;
    forgetReceived();
    endTurn(bulkTurn_);
    return VI_SUCCESS;
}

ViStatus UsbtmcTransport::readStatusByte(const Terms& terms, ViUInt16& status)
{
    if (usb_->description().protocol != usbtmc::kUsb488Protocol)
        return VI_ERROR_INV_SETUP;
    return inTurn(statusTurn_, terms.deadline, [&] { return statusByte_.read(terms.deadline, status); });
}

ViStatus UsbtmcTransport::controlRemote(const Terms& terms, ViUInt16 mode)
{
    if (!capabilities_.hasRemoteLocal)
        return VI_ERROR_NSUP_OPER;
    const auto* const row = std::find_if(kRemoteModes.begin(), kRemoteModes.end(),
                                         [mode](const RemoteMode& candidate) { return candidate.mode == mode; });
    if (row == kRemoteModes.end())
        return VI_ERROR_INV_MODE;
    return inTurn(statusTurn_, terms.deadline, [&] {
        ViStatus status = VI_SUCCESS;
        for (const auto& command : row->commands) {
            if (command && status >= 0)
                status = usbtmc::command(*usb_, command->request, command->value, terms.deadline);
        }
        return status;
    });
}

ViUInt32 UsbtmcTransport::numberFact(ViAttr attribute)
{
    const UsbDescription& usb = usb_->description();
    switch (attribute) {
    case VI_ATTR_MANF_ID:
        return usb.vendorId;
    case VI_ATTR_MODEL_CODE:
        return usb.productId;
    case VI_ATTR_4882_COMPLIANT:
        return capabilities_.is4882 ? VI_TRUE : VI_FALSE;
    case VI_ATTR_USB_INTFC_NUM:
        return usb.interfaceNumber;
    case VI_ATTR_USB_PROTOCOL:
        return usb.protocol;
    case VI_ATTR_USB_MAX_INTR_SIZE:
        return static_cast<ViUInt32>(usb.interruptInSize);
    default:
        return 0;
    }
}

std::string UsbtmcTransport::textFact(ViAttr attribute)
{
    const UsbDescription& usb = usb_->description();
    switch (attribute) {
    case VI_ATTR_MANF_NAME:
        return usb.vendorName;
    case VI_ATTR_MODEL_NAME:
        return usb.productName;
    default:
        return usb.serialNumber;
    }
}

void UsbtmcTransport::endBulk()
{
    bulkTurn_.abort([this] { usb_->cancelBulk(); });
}

ViStatus UsbtmcTransport::abort()
{
    endBulk();
    return VI_SUCCESS;
}

void UsbtmcTransport::interrupt() noexcept
{
    bulkTurn_.interrupt([] {});
    statusTurn_.interrupt([] {});
    usb_->cancelAll();
}

ViStatus makeUsbtmcTransport(std::unique_ptr<UsbInterface> usb, const Deadline& deadline,
                             std::unique_ptr<Transport>& transport)
{
    usbtmc::Capabilities capabilities;
    const ViStatus status = usbtmc::readCapabilities(*usb, deadline, capabilities);
    if (status >= 0)
        transport = std::make_unique<UsbtmcTransport>(std::move(usb), capabilities);
    return status;
}

} // namespace visa
