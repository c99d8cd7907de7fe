#include "visa/transport/usb/usbtmc_messages.h"

#include <algorithm>

namespace visa::usbtmc
{
namespace
{

constexpr ViByte kEndOfMessage = 1;
constexpr ViByte kTermCharEnabled = 2;
constexpr ViByte kFirstFailure = 0x80;

struct StatusRow
{
    Status status;
    ViStatus visa;
};

/// What a device that stays pending or busy keeps from being done in time is a matter of time.
constexpr std::array<StatusRow, 7> kStatuses{{
    {Status::Success, VI_SUCCESS},
    {Status::Pending, VI_ERROR_TMO},
    {Status::InterruptInBusy, VI_ERROR_TMO},
    {Status::Failed, VI_ERROR_IO},
    {Status::TransferNotInProgress, VI_ERROR_IO},
    {Status::SplitNotInProgress, VI_ERROR_IO},
    {Status::SplitInProgress, VI_ERROR_IO},
}};

struct OutcomeRow
{
    TransferOutcome outcome;
    ViStatus visa;
};

constexpr std::array<OutcomeRow, 7> kOutcomes{{
    {TransferOutcome::Complete, VI_SUCCESS},
    {TransferOutcome::TimedOut, VI_ERROR_TMO},
    {TransferOutcome::Stalled, VI_ERROR_IO},
    {TransferOutcome::Cancelled, VI_ERROR_ABORT},
    {TransferOutcome::Overflow, VI_ERROR_INP_PROT_VIOL},
    {TransferOutcome::Gone, VI_ERROR_CONN_LOST},
    {TransferOutcome::Failed, VI_ERROR_IO},
}};

ViByte byteOf(std::uint32_t number, unsigned index)
{
    return static_cast<ViByte>(number >> (8 * index));
}

Header header(MessageId id, ViByte tag)
{
    return {static_cast<ViByte>(id), tag, static_cast<ViByte>(~tag)};
}

Header sizedHeader(MessageId id, ViByte tag, std::uint32_t size, ViByte attributes)
{
    Header bytes = header(id, tag);
    for (unsigned i = 0; i < 4; ++i)
        bytes[4 + i] = byteOf(size, i);
    bytes[8] = attributes;
    return bytes;
}

std::uint32_t transferSize(std::span<const ViByte> transfer)
{
    std::uint32_t size = 0;
    for (unsigned i = 0; i < 4; ++i)
        size |= std::uint32_t{transfer[4 + i]} << (8 * i);
    return size;
}

/// A bit of an answer, which may be too short to have it.
bool hasBit(std::span<const ViByte> answer, std::size_t index, unsigned bit)
{
    return index < answer.size() && ((answer[index] >> bit) & 1U) != 0;
}

} // namespace

ViStatus visaStatus(Status status)
{
    const auto* const row = std::find_if(kStatuses.begin(), kStatuses.end(),
                                         [status](const StatusRow& candidate) { return candidate.status == status; });
    if (row != kStatuses.end())
        return row->visa;
    return static_cast<ViByte>(status) >= kFirstFailure ? VI_ERROR_IO : VI_ERROR_INP_PROT_VIOL;
}

ViStatus visaStatus(TransferOutcome outcome)
{
    const auto* const row = std::find_if(kOutcomes.begin(), kOutcomes.end(), [outcome](const OutcomeRow& candidate) {
        return candidate.outcome == outcome;
    });
    return row == kOutcomes.end() ? VI_ERROR_IO : row->visa;
}

ViByte nextMessageTag(ViByte tag)
{
    return tag == 255 ? ViByte{1} : static_cast<ViByte>(tag + 1);
}

ViByte nextStatusTag(ViByte tag)
{
    return tag >= 127 ? ViByte{2} : static_cast<ViByte>(tag + 1);
}

Header deviceDependentOut(ViByte tag, std::uint32_t size, bool endsMessage)
{
    return sizedHeader(MessageId::DeviceDependentOut, tag, size, endsMessage ? kEndOfMessage : ViByte{0});
}

Header requestDeviceDependentIn(ViByte tag, std::uint32_t size, std::optional<ViByte> termChar)
{
    Header bytes = sizedHeader(MessageId::RequestDeviceDependentIn, tag, size, termChar ? kTermCharEnabled : ViByte{0});
    bytes[9] = termChar.value_or(0);
    return bytes;
}

Header trigger(ViByte tag)
{
    return header(MessageId::Trigger, tag);
}

std::size_t paddedSize(std::size_t dataSize)
{
    return kHeaderSize + (dataSize + kAlignment - 1) / kAlignment * kAlignment;
}

std::optional<ViByte> tagOf(std::span<const ViByte> transfer)
{
    if (transfer.size() < kHeaderSize)
        return std::nullopt;
    const ViByte tag = transfer[1];
    const Header expected = header(MessageId::DeviceDependentIn, tag);
    return std::equal(expected.begin(), expected.begin() + 3, transfer.begin()) ? std::optional(tag) : std::nullopt;
}

Reply parseReply(std::span<const ViByte> transfer, ViByte tag, std::size_t asked)
{
    if (tagOf(transfer) != tag)
        return {VI_ERROR_INP_PROT_VIOL};
    const std::size_t size = transferSize(transfer);
    const auto body = transfer.subspan(kHeaderSize);
    const auto data = body.first(std::min({size, body.size(), asked}));
    if (size > asked || size > body.size())
        return {VI_ERROR_INP_PROT_VIOL, data};
    return {VI_SUCCESS, data, hasBit(transfer, 8, 0)};
}

Capabilities parseCapabilities(std::span<const ViByte> answer, std::uint8_t protocol)
{
    const bool is488 = protocol == kUsb488Protocol;
    return {.endsAtTermChar = hasBit(answer, 5, 0),
            .is4882 = is488 && hasBit(answer, 14, 2),
            .hasRemoteLocal = is488 && hasBit(answer, 14, 1),
            .hasTrigger = is488 && hasBit(answer, 14, 0)};
}

} // namespace visa::usbtmc
