#pragma once

#include "visa/transport/usb/usb_interface.h"

#include <libusb.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

namespace visa
{

template <auto release>
struct LibusbRelease
{
    template <class Object>
    void operator()(Object* object) const noexcept
    {
        release(object);
    }
};

using LibusbContext = std::unique_ptr<libusb_context, LibusbRelease<libusb_exit>>;
using LibusbHandle = std::unique_ptr<libusb_device_handle, LibusbRelease<libusb_close>>;

/// A USB interface through libusb. Each has a context of its own: its threads wait for its own transfers, and nothing
/// is left of it when it goes.
class LibusbInterface : public UsbInterface
{
public:
    /// @param handle of context's, which has claimed the interface. Throws std::bad_alloc.
    LibusbInterface(LibusbContext context, LibusbHandle handle, UsbDescription description);
    ~LibusbInterface() override;
    LibusbInterface(const LibusbInterface&) = delete;
    LibusbInterface& operator=(const LibusbInterface&) = delete;

    const UsbDescription& description() const noexcept override { return description_; }
    Transfer controlIn(const ControlRequest& request, std::span<ViByte> answer,
                       const TransferLimit& limit) noexcept override;
    Transfer bulkOut(std::span<const ViByte> bytes, const TransferLimit& limit) noexcept override;
    Transfer bulkIn(std::span<ViByte> room, const TransferLimit& limit) noexcept override;
    Transfer interruptIn(std::span<ViByte> room, const TransferLimit& limit) noexcept override;
    TransferOutcome clearHalt(std::uint8_t endpointAddress) noexcept override;
    void cancelBulk() noexcept override;
    void resumeBulk() noexcept override;
    void cancelAll() noexcept override;
    void pause(int milliseconds) noexcept override;

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t kLargestAnswer = 64;
    static constexpr std::size_t kLargestPacket = 1024;

    struct Pipe
    {
        Pipe();

        const std::unique_ptr<libusb_transfer, LibusbRelease<libusb_free_transfer>> transfer;
        std::mutex inUse;
        int isDone = 1; ///< as libusb wants it: set by whichever thread handles its events
        bool isUnderWay = false;
        bool isCancellable = true;
        bool* cancelled = nullptr; ///< what cancels it beside cancelAll()
    };

    Transfer run(Pipe& pipe, const TransferLimit& limit);
    std::optional<TransferOutcome> submit(Pipe& pipe, bool isCancellable);
    bool await(Pipe& pipe, Clock::time_point end);
    void awaitEnd(Pipe& pipe);
    void cancel(Pipe& pipe);
    Transfer bulk(Pipe& pipe, std::uint8_t address, ViByte* bytes, std::size_t size, const TransferLimit& limit);
    std::optional<TransferOutcome> listen();

    const LibusbContext context_;
    const LibusbHandle handle_;
    const UsbDescription description_;

    std::mutex stateMutex_; ///< guards isUnderWay, isCancellable and the two below
    std::condition_variable stateChanged_;
    bool isBulkCancelled_ = false;
    bool isAllCancelled_ = false;

    Pipe control_;
    Pipe bulkOut_;
    Pipe bulkIn_;
    Pipe interruptIn_;
    std::array<ViByte, LIBUSB_CONTROL_SETUP_SIZE + kLargestAnswer> controlBytes_{};
    std::array<ViByte, kLargestPacket> notification_{};
    bool isListening_ = false; ///< guarded by interruptIn_.inUse
};

} // namespace visa
