#pragma once

#include <visa.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace visa
{

enum class TransferOutcome : std::uint8_t
{
    Complete, ///< all bytes, or on a bulk-in pipe fewer with a short packet behind them
    TimedOut,
    Stalled, ///< the pipe is halted, or the device does not know the request
    Cancelled,
    Overflow, ///< the device sent more than there was room for
    Gone,     ///< the device is no longer there
    Failed
};

/// How a transfer ended, and the bytes that it moved before that.
struct Transfer
{
    TransferOutcome outcome = TransferOutcome::Complete;
    std::size_t count = 0;
};

/// How long a transfer may take.
struct TransferLimit
{
    int milliseconds = 0;
    bool isCancellable = true; ///< not so what brings a device back to order after a cancellation
};

/// A request on the control pipe. What the device answers is as long as the caller's buffer, at most.
struct ControlRequest
{
    std::uint8_t requestType = 0;
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
};

/// What a device and its interface say of themselves.
struct UsbDescription
{
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    std::string vendorName{};
    std::string productName{};
    std::string serialNumber{};
    std::uint8_t interfaceNumber = 0;
    std::uint8_t protocol = 0;
    std::uint8_t bulkOutAddress = 0;
    std::uint8_t bulkInAddress = 0;
    std::size_t bulkInPacketSize = 64; ///< 1 to 1024
    std::uint8_t interruptInAddress = 0;
    std::size_t interruptInSize = 0; ///< largest packet, up to 1024; 0 without such a pipe
};

/// The pipes of one USB interface, and nothing of what the bytes mean.
///
/// Calls come from any thread. Each pipe has one transfer at a time; others on it wait. The destructor runs when no
/// call is under way. Nothing throws.
class UsbInterface
{
public:
    UsbInterface() = default;
    virtual ~UsbInterface() = default;
    UsbInterface(const UsbInterface&) = delete;
    UsbInterface& operator=(const UsbInterface&) = delete;

    virtual const UsbDescription& description() const noexcept = 0;

    virtual Transfer controlIn(const ControlRequest& request, std::span<ViByte> answer,
                               const TransferLimit& limit) noexcept = 0;
    virtual Transfer bulkOut(std::span<const ViByte> bytes, const TransferLimit& limit) noexcept = 0;

    /// @param room a multiple of the largest packet
    virtual Transfer bulkIn(std::span<ViByte> room, const TransferLimit& limit) noexcept = 0;

    /// Takes the next notification. The pipe listens all the time, so that one which has come already is there at once;
    /// none is lost when the time is over.
    virtual Transfer interruptIn(std::span<ViByte> room, const TransferLimit& limit) noexcept = 0;

    /// Ends the halt of one of the bulk pipes.
    virtual TransferOutcome clearHalt(std::uint8_t endpointAddress) noexcept = 0;

    /// Ends the bulk transfers under way, and those to come until resumeBulk().
    virtual void cancelBulk() noexcept = 0;
    virtual void resumeBulk() noexcept = 0;

    /// Ends all transfers under way and to come, for good.
    virtual void cancelAll() noexcept = 0;

    /// Waits before a device that is not ready is asked again.
    virtual void pause(int milliseconds) noexcept = 0;
};

} // namespace visa
