#include "visa/transport/usb/libusb_interface.h"

#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <thread>
#include <utility>

namespace visa
{
namespace
{

constexpr std::chrono::milliseconds kMoment{1};

struct StatusRow
{
    int status;
    TransferOutcome outcome;
};

constexpr std::array<StatusRow, 7> kTransferStatuses{{
    {LIBUSB_TRANSFER_COMPLETED, TransferOutcome::Complete},
    {LIBUSB_TRANSFER_TIMED_OUT, TransferOutcome::TimedOut},
    {LIBUSB_TRANSFER_CANCELLED, TransferOutcome::Cancelled},
    {LIBUSB_TRANSFER_STALL, TransferOutcome::Stalled},
    {LIBUSB_TRANSFER_NO_DEVICE, TransferOutcome::Gone},
    {LIBUSB_TRANSFER_OVERFLOW, TransferOutcome::Overflow},
    {LIBUSB_TRANSFER_ERROR, TransferOutcome::Failed},
}};

constexpr std::array<StatusRow, 5> kErrors{{
    {LIBUSB_SUCCESS, TransferOutcome::Complete},
    {LIBUSB_ERROR_NO_DEVICE, TransferOutcome::Gone},
    {LIBUSB_ERROR_NOT_FOUND, TransferOutcome::Gone},
    {LIBUSB_ERROR_PIPE, TransferOutcome::Stalled},
    {LIBUSB_ERROR_TIMEOUT, TransferOutcome::TimedOut},
}};

template <class Rows>
TransferOutcome outcomeIn(const Rows& rows, int status)
{
    const auto* const row = std::find_if(rows.begin(), rows.end(),
                                         [status](const StatusRow& candidate) { return candidate.status == status; });
    return row == rows.end() ? TransferOutcome::Failed : row->outcome;
}

Transfer resultOf(const libusb_transfer& transfer)
{
    return {outcomeIn(kTransferStatuses, transfer.status),
            static_cast<std::size_t>(std::max(transfer.actual_length, 0))};
}

bool isSet(int& flag)
{
    return std::atomic_ref<int>(flag).load() != 0;
}

void LIBUSB_CALL finish(libusb_transfer* transfer)
{
    std::atomic_ref<int>(*static_cast<int*>(transfer->user_data)).store(1);
}

timeval timeUntil(std::chrono::steady_clock::time_point end)
{
    constexpr std::chrono::microseconds kLongest = std::chrono::minutes(1);
    const auto left = std::chrono::ceil<std::chrono::microseconds>(end - std::chrono::steady_clock::now());
    const auto bounded = std::clamp(left, std::chrono::microseconds(0), kLongest);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(bounded);
    return {static_cast<decltype(timeval::tv_sec)>(seconds.count()),
            static_cast<decltype(timeval::tv_usec)>((bounded - seconds).count())};
}

} // namespace

LibusbInterface::Pipe::Pipe() : transfer(libusb_alloc_transfer(0))
{
    if (transfer == nullptr)
        throw std::bad_alloc();
}

LibusbInterface::LibusbInterface(LibusbContext context, LibusbHandle handle, UsbDescription description)
    : context_(std::move(context)), handle_(std::move(handle)), description_(std::move(description))
{
    bulkOut_.cancelled = bulkIn_.cancelled = &isBulkCancelled_;
    control_.cancelled = interruptIn_.cancelled = &isAllCancelled_;
    if (description_.interruptInSize > 0)
        listen();
}

LibusbInterface::~LibusbInterface()
{
    if (isListening_) {
        cancel(interruptIn_);
        awaitEnd(interruptIn_);
    }
    // Gives the interface back to the host's own driver, too.
    libusb_release_interface(handle_.get(), description_.interfaceNumber);
}

/// @return why it is not under way
std::optional<TransferOutcome> LibusbInterface::submit(Pipe& pipe, bool isCancellable)
{
    const std::lock_guard guard(stateMutex_);
    if (isCancellable && (isAllCancelled_ || *pipe.cancelled))
        return TransferOutcome::Cancelled;
    pipe.isDone = 0;
    pipe.isCancellable = isCancellable;
    const int error = libusb_submit_transfer(pipe.transfer.get());
    pipe.isUnderWay = error == LIBUSB_SUCCESS;
    return pipe.isUnderWay ? std::nullopt : std::optional(outcomeIn(kErrors, error));
}

/// @return whether the transfer has ended by then
bool LibusbInterface::await(Pipe& pipe, Clock::time_point end)
{
    while (!isSet(pipe.isDone)) {
        timeval left = timeUntil(end);
        const int error = libusb_handle_events_timeout_completed(context_.get(), &left, &pipe.isDone);
        if (isSet(pipe.isDone))
            break;
        if (Clock::now() >= end)
            return false;
        if (error != LIBUSB_SUCCESS)
            std::this_thread::sleep_for(kMoment);
    }
    const std::lock_guard guard(stateMutex_);
    pipe.isUnderWay = false;
    return true;
}

/// Waits for what the host is bound to end: until then the transfer's memory is its own.
void LibusbInterface::awaitEnd(Pipe& pipe)
{
    while (!await(pipe, Clock::now() + std::chrono::seconds(1))) {
    }
}

void LibusbInterface::cancel(Pipe& pipe)
{
    const std::lock_guard guard(stateMutex_);
    libusb_cancel_transfer(pipe.transfer.get());
}

Transfer LibusbInterface::run(Pipe& pipe, const TransferLimit& limit)
{
    if (const auto refused = submit(pipe, limit.isCancellable))
        return {*refused};
    const bool isInTime = await(pipe, Clock::now() + std::chrono::milliseconds(limit.milliseconds));
    if (!isInTime) {
        cancel(pipe);
        awaitEnd(pipe);
    }
    Transfer result = resultOf(*pipe.transfer);
    if (!isInTime && result.outcome == TransferOutcome::Cancelled)
        result.outcome = TransferOutcome::TimedOut;
    return result;
}

Transfer LibusbInterface::controlIn(const ControlRequest& request, std::span<ViByte> answer,
                                    const TransferLimit& limit) noexcept
{
    const std::lock_guard guard(control_.inUse);
    const auto size = static_cast<std::uint16_t>(std::min(answer.size(), kLargestAnswer));
    libusb_fill_control_setup(controlBytes_.data(), request.requestType, request.request, request.value, request.index,
                              size);
    libusb_fill_control_transfer(control_.transfer.get(), handle_.get(), controlBytes_.data(), finish, &control_.isDone,
                                 0);
    Transfer result = run(control_, limit);
    result.count = std::min<std::size_t>(result.count, size);
    std::copy_n(controlBytes_.begin() + LIBUSB_CONTROL_SETUP_SIZE, result.count, answer.begin());
    return result;
}

Transfer LibusbInterface::bulk(Pipe& pipe, std::uint8_t address, ViByte* bytes, std::size_t size,
                               const TransferLimit& limit)
{
    const std::lock_guard guard(pipe.inUse);
    libusb_fill_bulk_transfer(pipe.transfer.get(), handle_.get(), address, bytes, static_cast<int>(size), finish,
                              &pipe.isDone, 0);
    return run(pipe, limit);
}

Transfer LibusbInterface::bulkOut(std::span<const ViByte> bytes, const TransferLimit& limit) noexcept
{
    // libusb takes what it only reads by the same pointer as what it writes.
    return bulk(bulkOut_, description_.bulkOutAddress, const_cast<ViByte*>(bytes.data()), bytes.size(), limit);
}

Transfer LibusbInterface::bulkIn(std::span<ViByte> room, const TransferLimit& limit) noexcept
{
    return bulk(bulkIn_, description_.bulkInAddress, room.data(), room.size(), limit);
}

/// @return why it does not listen
std::optional<TransferOutcome> LibusbInterface::listen()
{
    libusb_fill_interrupt_transfer(interruptIn_.transfer.get(), handle_.get(), description_.interruptInAddress,
                                   notification_.data(), static_cast<int>(description_.interruptInSize), finish,
                                   &interruptIn_.isDone, 0);
    const auto refused = submit(interruptIn_, true);
    isListening_ = !refused;
    return refused;
}

Transfer LibusbInterface::interruptIn(std::span<ViByte> room, const TransferLimit& limit) noexcept
{
    const std::lock_guard guard(interruptIn_.inUse);
    if (const auto refused = isListening_ ? std::nullopt : listen())
        return {*refused};
    if (!await(interruptIn_, Clock::now() + std::chrono::milliseconds(limit.milliseconds)))
        return {TransferOutcome::TimedOut};
    isListening_ = false;
    Transfer result = resultOf(*interruptIn_.transfer);
    result.count = std::min(result.count, room.size());
    std::copy_n(notification_.begin(), result.count, room.begin());
    if (result.outcome == TransferOutcome::Complete)
        listen();
    return result;
}

TransferOutcome LibusbInterface::clearHalt(std::uint8_t endpointAddress) noexcept
{
    return outcomeIn(kErrors, libusb_clear_halt(handle_.get(), endpointAddress));
}

void LibusbInterface::cancelBulk() noexcept
{
    const std::lock_guard guard(stateMutex_);
    isBulkCancelled_ = true;
    for (Pipe* const pipe : {&bulkOut_, &bulkIn_}) {
        if (pipe->isUnderWay && pipe->isCancellable)
            libusb_cancel_transfer(pipe->transfer.get());
    }
}

void LibusbInterface::resumeBulk() noexcept
{
    const std::lock_guard guard(stateMutex_);
    isBulkCancelled_ = false;
}

void LibusbInterface::cancelAll() noexcept
{
    const std::lock_guard guard(stateMutex_);
    isAllCancelled_ = true;
    for (Pipe* const pipe : {&control_, &bulkOut_, &bulkIn_, &interruptIn_}) {
        if (pipe->isUnderWay && pipe->isCancellable)
            libusb_cancel_transfer(pipe->transfer.get());
    }
    stateChanged_.notify_all();
}

void LibusbInterface::pause(int milliseconds) noexcept
{
    std::unique_lock lock(stateMutex_);
    stateChanged_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return isAllCancelled_; });
}

} // namespace visa
