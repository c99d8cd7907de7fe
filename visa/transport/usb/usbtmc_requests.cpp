#include "visa/transport/usb/usbtmc_requests.h"

#include <algorithm>
#include <array>
#include <limits>

namespace visa::usbtmc
{
namespace
{

constexpr std::uint8_t kToInterface = 0xA1; ///< a class request with an answer
constexpr std::uint8_t kToEndpoint = 0xA2;

constexpr int kMomentMs = 10;
constexpr int kLongestRequestMs = 5000; ///< USB gives a device as long for a request
constexpr int kPollMs = 10;
constexpr int kMostPolls = 3000;
constexpr int kDrainMs = 100;
constexpr int kMostDrained = 64;
constexpr ViUInt32 kRecoveryMs = 1000;
constexpr std::size_t kCapabilitiesSize = 24;

/// What is done with a device, and for how long.
struct Work
{
    UsbInterface& usb;
    std::span<ViByte> scratch;
    const Deadline& deadline;
    bool isCancellable;

    TransferLimit limit(int longestMs) const
    {
        return {std::max(deadline.remainingMs(longestMs), kMomentMs), isCancellable};
    }
};

Status statusIn(std::span<const ViByte> answer)
{
    return static_cast<Status>(answer.front());
}

/// Only a device that has not done what it was asked may say less than the whole answer.
bool isWhole(std::span<const ViByte> answer, std::size_t count)
{
    return count > 0 && (count >= answer.size() || statusIn(answer) != Status::Success);
}

ViStatus ask(UsbInterface& usb, const ControlRequest& request, std::span<ViByte> answer, const TransferLimit& limit)
{
    std::fill(answer.begin(), answer.end(), ViByte{0});
    const Transfer transfer = usb.controlIn(request, answer, limit);
    if (transfer.outcome != TransferOutcome::Complete)
        return visaStatus(transfer.outcome);
    return isWhole(answer, transfer.count) ? VI_SUCCESS : VI_ERROR_INP_PROT_VIOL;
}

ControlRequest toInterface(const UsbInterface& usb, Request request, std::uint16_t value)
{
    return {kToInterface, static_cast<std::uint8_t>(request), value, usb.description().interfaceNumber};
}

ControlRequest toEndpoint(std::uint8_t address, Request request, std::uint16_t value)
{
    return {kToEndpoint, static_cast<std::uint8_t>(request), value, address};
}

/// Drops what the device has to send, up to the end of its transfer.
void drain(const Work& work)
{
    for (int i = 0; i < kMostDrained && work.deadline.remainingMs(1) > 0; ++i) {
        const Transfer dropped = work.usb.bulkIn(work.scratch, work.limit(kDrainMs));
        if (dropped.outcome == TransferOutcome::Stalled)
            work.usb.clearHalt(work.usb.description().bulkInAddress);
        if (dropped.outcome != TransferOutcome::Complete || dropped.count < work.scratch.size())
            return;
    }
}

/// Asks until the device is done with what it was told. While bit 0 of the second byte says that there is more to come
/// from it, that is dropped.
ViStatus awaitDone(const Work& work, const ControlRequest& check, std::size_t answerSize)
{
    std::array<ViByte, 8> room{};
    const auto answer = std::span(room).first(answerSize);
    for (int poll = 0; poll < kMostPolls; ++poll) {
        const ViStatus asked = ask(work.usb, check, answer, work.limit(kLongestRequestMs));
        if (asked < 0)
            return asked;
        if (statusIn(answer) != Status::Pending)
            return visaStatus(statusIn(answer));
        if (work.deadline.remainingMs(1) == 0)
            break;
        if (answerSize > 1 && (answer[1] & 1U) != 0 && !work.scratch.empty())
            drain(work);
        else
            work.usb.pause(kPollMs);
    }
    return VI_ERROR_TMO;
}

/// Tells the device to give a transfer up.
/// @return whether it does; not so where it knows of none
bool initiateAbort(const Work& work, std::uint8_t address, Request request, ViByte tag)
{
    std::array<ViByte, 2> answer{};
    const ViStatus asked = ask(work.usb, toEndpoint(address, request, tag), answer, work.limit(kLongestRequestMs));
    return asked >= 0 && statusIn(answer) == Status::Success;
}

bool abortBulkOut(const Work& work, ViByte tag)
{
    const std::uint8_t address = work.usb.description().bulkOutAddress;
    if (!initiateAbort(work, address, Request::InitiateAbortBulkOut, tag))
        return false;
    const ViStatus done = awaitDone(work, toEndpoint(address, Request::CheckAbortBulkOutStatus, 0), 8);
    return work.usb.clearHalt(address) == TransferOutcome::Complete && done >= 0;
}

bool abortBulkIn(const Work& work, ViByte tag)
{
    const std::uint8_t address = work.usb.description().bulkInAddress;
    if (!initiateAbort(work, address, Request::InitiateAbortBulkIn, tag))
        return false;
    // The device ends its transfer with a short packet.
    drain(work);
    return awaitDone(work, toEndpoint(address, Request::CheckAbortBulkInStatus, 0), 8) >= 0;
}

/// Brings a pipe back to order in the way that suits what happened on it.
template <class Abort>
bool recover(UsbInterface& usb, std::uint8_t address, TransferOutcome outcome, Abort abort)
{
    if (outcome == TransferOutcome::Gone)
        return false;
    return outcome == TransferOutcome::Stalled ? usb.clearHalt(address) == TransferOutcome::Complete : abort();
}

} // namespace

TransferLimit limitOf(const Deadline& deadline)
{
    return {std::max(deadline.remainingMs(std::numeric_limits<int>::max()), kMomentMs)};
}

ViStatus askInterface(UsbInterface& usb, Request request, std::uint16_t value, std::span<ViByte> answer,
                      const TransferLimit& limit)
{
    return ask(usb, toInterface(usb, request, value), answer,
               {std::min(limit.milliseconds, kLongestRequestMs), limit.isCancellable});
}

ViStatus command(UsbInterface& usb, Request request, std::uint16_t value, const Deadline& deadline)
{
    std::array<ViByte, 1> answer{};
    const ViStatus asked = askInterface(usb, request, value, answer, limitOf(deadline));
    return asked < 0 ? asked : visaStatus(statusIn(answer));
}

ViStatus readCapabilities(UsbInterface& usb, const Deadline& deadline, Capabilities& capabilities)
{
    std::array<ViByte, kCapabilitiesSize> answer{};
    const Transfer transfer = usb.controlIn(toInterface(usb, Request::GetCapabilities, 0), answer,
                                            {std::min(limitOf(deadline).milliseconds, kLongestRequestMs)});
    capabilities = {};
    if (transfer.outcome == TransferOutcome::Stalled)
        return VI_SUCCESS;
    const auto told = std::span(answer).first(std::min(transfer.count, answer.size()));
    if (!told.empty() && statusIn(told) == Status::Success)
        capabilities = parseCapabilities(told, usb.description().protocol);
    return visaStatus(transfer.outcome);
}

ViStatus clearDevice(UsbInterface& usb, std::span<ViByte> scratch, const Deadline& deadline)
{
    const Work work{usb, scratch, deadline, true};
    const ViStatus initiated = command(usb, Request::InitiateClear, 0, deadline);
    if (initiated < 0)
        return initiated;
    const ViStatus done = awaitDone(work, toInterface(usb, Request::CheckClearStatus, 0), 2);
    const TransferOutcome halt = usb.clearHalt(usb.description().bulkOutAddress);
    return done < 0 ? done : visaStatus(halt);
}

void recoverBulkOut(UsbInterface& usb, ViByte tag, TransferOutcome outcome)
{
    const Deadline deadline(kRecoveryMs);
    const Work work{usb, {}, deadline, false};
    recover(usb, usb.description().bulkOutAddress, outcome, [&] { return abortBulkOut(work, tag); });
}

bool recoverBulkIn(UsbInterface& usb, ViByte tag, TransferOutcome outcome, std::span<ViByte> scratch)
{
    const Deadline deadline(kRecoveryMs);
    const Work work{usb, scratch, deadline, false};
    return recover(usb, usb.description().bulkInAddress, outcome, [&] { return abortBulkIn(work, tag); });
}

} // namespace visa::usbtmc
