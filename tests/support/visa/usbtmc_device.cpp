#include "tests/support/visa/usbtmc_device.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <utility>

namespace kvxtest
{
namespace
{

using visa::Transfer;
using visa::TransferOutcome;

constexpr std::size_t kHeader = 12;

std::string hexadecimal(unsigned number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%02X", number);
    return text.data();
}

std::uint32_t sizeIn(std::span<const ViByte> header)
{
    std::uint32_t size = 0;
    for (std::size_t i = 0; i < 4; ++i)
        size |= std::uint32_t{header[4 + i]} << (8 * i);
    return size;
}

struct RequestName
{
    visa::usbtmc::Request request;
    const char* name;
    std::size_t length;
    bool isToEndpoint;
};

constexpr std::array<RequestName, 11> kRequests{{
    {visa::usbtmc::Request::InitiateAbortBulkOut, "InitiateAbortBulkOut", 2, true},
    {visa::usbtmc::Request::CheckAbortBulkOutStatus, "CheckAbortBulkOutStatus", 8, true},
    {visa::usbtmc::Request::InitiateAbortBulkIn, "InitiateAbortBulkIn", 2, true},
    {visa::usbtmc::Request::CheckAbortBulkInStatus, "CheckAbortBulkInStatus", 8, true},
    {visa::usbtmc::Request::InitiateClear, "InitiateClear", 1, false},
    {visa::usbtmc::Request::CheckClearStatus, "CheckClearStatus", 2, false},
    {visa::usbtmc::Request::GetCapabilities, "GetCapabilities", 24, false},
    {visa::usbtmc::Request::ReadStatusByte, "ReadStatusByte", 3, false},
    {visa::usbtmc::Request::RenControl, "RenControl", 1, false},
    {visa::usbtmc::Request::GoToLocal, "GoToLocal", 1, false},
    {visa::usbtmc::Request::LocalLockout, "LocalLockout", 1, false},
}};

} // namespace

UsbtmcDevice::UsbtmcDevice()
{
    usb.vendorId = 0x1234;
    usb.productId = 0x5678;
    usb.vendorName = "Vendor";
    usb.productName = "Product";
    usb.serialNumber = "SN-1";
    usb.interfaceNumber = kInterfaceNumber;
    usb.protocol = 1;
    usb.bulkOutAddress = kBulkOut;
    usb.bulkInAddress = kBulkIn;
    capabilities[0] = 1;
    capabilities[5] = 1;  // ends at a termination character
    capabilities[14] = 7; // 488.2, remote and local, trigger
}

void UsbtmcDevice::addInterruptPipe()
{
    usb.interruptInAddress = kInterruptIn;
    usb.interruptInSize = 8;
}

void UsbtmcDevice::answer(const std::string& bytes, bool endsMessage)
{
    const std::lock_guard guard(mutex_);
    output_.push_back({bytes, endsMessage});
    changed_.notify_all();
}

void UsbtmcDevice::notify(const Bytes& notification)
{
    const std::lock_guard guard(mutex_);
    notifications_.push_back(notification);
    changed_.notify_all();
}

void UsbtmcDevice::check(bool holds, const std::string& rule)
{
    if (!holds)
        violations.push_back(rule);
}

std::optional<Transfer> UsbtmcDevice::fault()
{
    ++transfers;
    if (failsAt && (transfers == *failsAt || (failsFromThenOn && transfers > *failsAt)))
        return Transfer{failure};
    return std::nullopt;
}

/// What CHECK_... answers: pending for as often as the test wants.
UsbtmcDevice::Bytes UsbtmcDevice::whenDone(std::size_t size)
{
    Bytes reply(size, 0);
    const bool isPending = polls_ > 0;
    polls_ -= isPending ? 1 : 0;
    reply[0] = static_cast<ViByte>(isPending ? Status::Pending : Status::Success);
    reply[1] = isPending && hasMoreWhilePending ? 1 : 0;
    return reply;
}

UsbtmcDevice::Bytes UsbtmcDevice::replyTo(const visa::ControlRequest& request)
{
    const auto tag = static_cast<ViByte>(request.value);
    const auto success = static_cast<ViByte>(Status::Success);
    switch (static_cast<Request>(request.request)) {
    case Request::GetCapabilities:
        return capabilities;
    case Request::InitiateAbortBulkIn: {
        const bool isKnown = asked_ && asked_->tag == tag;
        asked_.reset();
        sending_.clear();
        isSending_ = isKnown;
        polls_ = pendingPolls;
        return {static_cast<ViByte>(isKnown ? Status::Success : Status::TransferNotInProgress), tag};
    }
    case Request::InitiateAbortBulkOut:
        polls_ = pendingPolls;
        return {success, tag};
    case Request::InitiateClear:
        output_.clear();
        asked_.reset();
        sending_.clear();
        isSending_ = false;
        polls_ = pendingPolls;
        return {success};
    case Request::CheckAbortBulkOutStatus:
    case Request::CheckAbortBulkInStatus:
        return whenDone(8);
    case Request::CheckClearStatus:
        return whenDone(2);
    case Request::ReadStatusByte:
        check(tag >= 2 && tag <= 127, "tag of a status byte");
        if (busyNotifications > 0) {
            --busyNotifications;
            return {static_cast<ViByte>(Status::InterruptInBusy), tag, 0};
        }
        if (usb.interruptInSize == 0)
            return {success, tag, statusByte};
        notifications_.insert(notifications_.end(), beforeAnswer.begin(), beforeAnswer.end());
        notifications_.push_back({static_cast<ViByte>(0x80 | tag), statusByte});
        return {success, tag, 0};
    default:
        return {success};
    }
}

Transfer UsbtmcDevice::controlIn(const visa::ControlRequest& request, std::span<ViByte> answer,
                                 const visa::TransferLimit& limit) noexcept
{
    const std::lock_guard guard(mutex_);
    if (isAllCancelled_ && limit.isCancellable)
        return {TransferOutcome::Cancelled};
    if (const auto failed = fault())
        return *failed;
    const auto known = std::find_if(kRequests.begin(), kRequests.end(), [&](const RequestName& name) {
        return static_cast<std::uint8_t>(name.request) == request.request;
    });
    if (known == kRequests.end()) {
        violations.emplace_back("unknown request");
        return {TransferOutcome::Stalled};
    }
    const bool isBulkOut =
        std::string(known->name).ends_with("Out") || std::string(known->name).find("OutS") != std::string::npos;
    check(request.requestType == (known->isToEndpoint ? 0xA2 : 0xA1), "recipient");
    check(request.index == (!known->isToEndpoint ? kInterfaceNumber : isBulkOut ? kBulkOut : kBulkIn), "index");
    check(answer.size() == known->length, "length of the answer");
    log.push_back(known->name + (" " + std::to_string(request.value)));
    if (const auto outcome = outcomes.find(known->request); outcome != outcomes.end())
        return {outcome->second};
    const auto other = answers.find(known->request);
    const Bytes reply = other != answers.end() ? other->second : replyTo(request);
    const std::size_t count = std::min(reply.size(), answer.size());
    std::copy_n(reply.begin(), count, answer.begin());
    return {TransferOutcome::Complete, count};
}

void UsbtmcDevice::take(std::span<const ViByte> message)
{
    check(message.size() >= kHeader && message.size() % 4 == 0, "size of a message");
    if (message.size() < kHeader)
        return;
    const ViByte tag = message[1];
    check(message[2] == static_cast<ViByte>(~tag) && message[3] == 0, "header");
    const std::uint32_t size = sizeIn(message);
    const std::string number = std::to_string(tag);
    check(message[10] == 0 && message[11] == 0, "reserved bytes");
    switch (message[0]) {
    case 1: {
        check(size > 0 && size <= message.size() - kHeader && message.size() - kHeader - size < 4, "size of the data");
        check((message[8] & ~1U) == 0 && message[9] == 0, "attributes");
        const auto data = message.subspan(kHeader, std::min<std::size_t>(size, message.size() - kHeader));
        const auto padding = message.subspan(kHeader + data.size());
        check(std::all_of(padding.begin(), padding.end(), [](ViByte byte) { return byte == 0; }), "padding");
        const bool isLong = data.size() > 100;
        log.push_back(
            "out " + number + " " +
            (isLong ? std::to_string(data.size()) + " bytes" : "'" + std::string(data.begin(), data.end()) + "'") +
            (message[8] == 1 ? " END" : ""));
        return;
    }
    case 2:
        check(size > 0 && message.size() == kHeader, "size of a request");
        check((message[8] & ~2U) == 0 && (message[8] == 2 || message[9] == 0), "attributes");
        asked_ = Asked{tag, size, message[8] == 2 ? std::optional(message[9]) : std::nullopt};
        isSending_ = false;
        log.push_back("ask " + number + " for " + std::to_string(size) +
                      (asked_->termChar ? " to " + hexadecimal(*asked_->termChar) : ""));
        return;
    case 128:
        check(size == 0 && message.size() == kHeader && message[8] == 0 && message[9] == 0, "trigger");
        log.push_back("trigger " + number);
        return;
    default:
        violations.emplace_back("unknown message");
    }
}

Transfer UsbtmcDevice::bulkOut(std::span<const ViByte> bytes, const visa::TransferLimit& limit) noexcept
{
    const std::lock_guard guard(mutex_);
    if ((isBulkCancelled_ || isAllCancelled_) && limit.isCancellable)
        return {TransferOutcome::Cancelled};
    const ViByte tagBefore = std::exchange(lastTag_, bytes[1]);
    if (const auto failed = fault())
        return *failed;
    if (bulkOutEnds != TransferOutcome::Complete || bulkOutTakes < bytes.size())
        return {bulkOutEnds, std::min(bulkOutTakes, bytes.size())};
    check(lastTag_ == (tagBefore == 255 ? 1 : tagBefore + 1), "tag in turn");
    take(bytes);
    return {TransferOutcome::Complete, bytes.size()};
}

/// The answer to the request: as much of the message as was asked for.
UsbtmcDevice::Bytes UsbtmcDevice::takePart()
{
    Message& message = output_.front();
    std::size_t size = std::min({message.bytes.size(), asked_->size, mostInOnePart});
    bool isAtTermChar = false;
    if (asked_->termChar && heedsTermChar) {
        const std::size_t at = message.bytes.find(static_cast<char>(*asked_->termChar));
        isAtTermChar = at < size;
        size = isAtTermChar ? at + 1 : size;
    }
    const bool isAll = size == message.bytes.size();
    Bytes part(kHeader, 0);
    part[0] = 2;
    part[1] = asked_->tag;
    part[2] = static_cast<ViByte>(~asked_->tag);
    for (unsigned i = 0; i < 4; ++i)
        part[4 + i] = static_cast<ViByte>(size >> (8 * i));
    part[8] = static_cast<ViByte>((isAll && message.endsMessage ? 1 : 0) | (isAtTermChar ? 2 : 0));
    part.insert(part.end(), message.bytes.begin(), message.bytes.begin() + static_cast<std::ptrdiff_t>(size));
    part.resize((part.size() + 3) / 4 * 4);
    message.bytes.erase(0, size);
    if (isAll)
        output_.pop_front();
    return part;
}

Transfer UsbtmcDevice::bulkIn(std::span<ViByte> room, const visa::TransferLimit& limit) noexcept
{
    std::unique_lock lock(mutex_);
    largestRoom = std::max(largestRoom, room.size());
    check(!room.empty() && room.size() % usb.bulkInPacketSize == 0, "room of whole packets");
    const auto isCancelled = [&] { return (isBulkCancelled_ || isAllCancelled_) && limit.isCancellable; };
    if (isCancelled())
        return {TransferOutcome::Cancelled};
    if (const auto failed = fault())
        return *failed;
    if (!isSending_ && !leftOver.empty()) {
        sending_ = leftOver.front();
        leftOver.pop_front();
        isSending_ = true;
    }
    if (!isSending_ && waits)
        changed_.wait_for(lock, std::chrono::milliseconds(limit.milliseconds),
                          [&] { return isCancelled() || (asked_ && !output_.empty()); });
    if (isCancelled())
        return {TransferOutcome::Cancelled};
    if (!isSending_ && (!asked_ || output_.empty()))
        return {TransferOutcome::TimedOut};
    if (!isSending_) {
        sending_ = takePart();
        asked_.reset();
        isSending_ = true;
        if (mangle)
            mangle(sending_);
    }
    const std::size_t count = std::min(room.size(), sending_.size());
    std::copy_n(sending_.begin(), count, room.begin());
    sending_.erase(sending_.begin(), sending_.begin() + static_cast<std::ptrdiff_t>(count));
    // A short packet is the end of the transfer.
    isSending_ = count == room.size();
    return {bulkInEnds, count};
}

Transfer UsbtmcDevice::interruptIn(std::span<ViByte> room, const visa::TransferLimit& limit) noexcept
{
    std::unique_lock lock(mutex_);
    if (isAllCancelled_ && limit.isCancellable)
        return {TransferOutcome::Cancelled};
    if (const auto failed = fault())
        return *failed;
    check(room.size() >= usb.interruptInSize && usb.interruptInSize > 0, "room of a notification");
    if (waits)
        changed_.wait_for(lock, std::chrono::milliseconds(limit.milliseconds),
                          [&] { return isAllCancelled_ || !notifications_.empty(); });
    if (isAllCancelled_ && limit.isCancellable)
        return {TransferOutcome::Cancelled};
    if (notifications_.empty())
        return {TransferOutcome::TimedOut};
    const Bytes notification = notifications_.front();
    notifications_.pop_front();
    std::copy(notification.begin(), notification.end(), room.begin());
    return {TransferOutcome::Complete, notification.size()};
}

TransferOutcome UsbtmcDevice::clearHalt(std::uint8_t endpointAddress) noexcept
{
    const std::lock_guard guard(mutex_);
    log.push_back("clear halt " + hexadecimal(endpointAddress));
    const auto failed = fault();
    return failed ? failed->outcome : TransferOutcome::Complete;
}

void UsbtmcDevice::cancelBulk() noexcept
{
    const std::lock_guard guard(mutex_);
    isBulkCancelled_ = true;
    changed_.notify_all();
}

void UsbtmcDevice::resumeBulk() noexcept
{
    const std::lock_guard guard(mutex_);
    isBulkCancelled_ = false;
}

void UsbtmcDevice::cancelAll() noexcept
{
    const std::lock_guard guard(mutex_);
    isAllCancelled_ = true;
    changed_.notify_all();
}

void UsbtmcDevice::pause(int) noexcept
{
    const std::lock_guard guard(mutex_);
    ++pauses;
}

} // namespace kvxtest
