#include "visa/transport/usb/status_byte.h"

#include "visa/transport/usb/usbtmc_messages.h"
#include "visa/transport/usb/usbtmc_requests.h"

#include <algorithm>
#include <array>
#include <utility>

namespace visa::usbtmc
{
namespace
{

constexpr std::size_t kLargestPacket = 1024;
constexpr ViByte kServiceRequest = 0x81;
constexpr ViByte kAnswer = 0x80; ///< with the tag
constexpr int kMostNotifications = 64;
constexpr int kMostAttempts = 8;
constexpr int kBusyMs = 100;

} // namespace

/// @return VI_SUCCESS with a kind of 0 for one that is too short
ViStatus StatusByte::next(const TransferLimit& limit, Notification& notification)
{
    std::array<ViByte, kLargestPacket> room{};
    const Transfer transfer = usb_.interruptIn(room, limit);
    if (transfer.outcome == TransferOutcome::Stalled)
        usb_.clearHalt(usb_.description().interruptInAddress);
    if (transfer.outcome == TransferOutcome::Complete)
        notification = transfer.count < 2 ? Notification{} : Notification{room[0], room[1]};
    return visaStatus(transfer.outcome);
}

/// Takes what has come up to the next service request.
void StatusByte::takeServiceRequest(const TransferLimit& limit)
{
    Notification notification;
    for (int i = 0; i < kMostNotifications && !serviceRequest_; ++i) {
        if (next(limit, notification) < 0)
            return;
        if (notification.kind == kServiceRequest)
            serviceRequest_ = notification.value;
    }
}

ViStatus StatusByte::awaitAnswer(ViByte tag, const Deadline& deadline, ViUInt16& status)
{
    Notification notification;
    for (int i = 0; i < kMostNotifications; ++i) {
        if (const ViStatus got = next(limitOf(deadline), notification); got < 0)
            return got;
        if (notification.kind == (kAnswer | tag)) {
            status = notification.value;
            return VI_SUCCESS;
        }
        if (notification.kind == kServiceRequest)
            serviceRequest_ = static_cast<ViByte>(serviceRequest_.value_or(0) | notification.value);
    }
    return VI_ERROR_INP_PROT_VIOL;
}

ViStatus StatusByte::ask(const Deadline& deadline, ViUInt16& status, bool& isBusy)
{
    tag_ = nextStatusTag(tag_);
    std::array<ViByte, 3> answer{};
    const ViStatus asked = askInterface(usb_, Request::ReadStatusByte, tag_, answer, limitOf(deadline));
    if (asked < 0)
        return asked;
    const auto result = static_cast<Status>(answer[0]);
    isBusy = result == Status::InterruptInBusy;
    if (result != Status::Success)
        return visaStatus(result);
    if (answer[1] != tag_)
        return VI_ERROR_INP_PROT_VIOL;
    if (hasInterruptPipe())
        return awaitAnswer(tag_, deadline, status);
    status = answer[2];
    return VI_SUCCESS;
}

ViStatus StatusByte::read(const Deadline& deadline, ViUInt16& status)
{
    if (hasInterruptPipe())
        takeServiceRequest({0});
    if (serviceRequest_) {
        status = *std::exchange(serviceRequest_, std::nullopt);
        return VI_SUCCESS;
    }
    ViStatus result = VI_ERROR_TMO;
    bool isBusy = true;
    for (int attempt = 0; attempt < kMostAttempts && isBusy; ++attempt) {
        isBusy = false;
        result = ask(deadline, status, isBusy);
        // The device has no room for its answer before what it has notified of is taken.
        if (isBusy && hasInterruptPipe())
            takeServiceRequest({std::min(limitOf(deadline).milliseconds, kBusyMs)});
        isBusy = isBusy && deadline.remainingMs(1) > 0;
    }
    return result;
}

} // namespace visa::usbtmc
