#pragma once

#include "visa/transport/usb/usb_interface.h"
#include "visa/transport/usb/usbtmc_messages.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kvxtest
{

/// A USB488 instrument behind its pipes, packet by packet, with faults that a test asks for. It writes down what it is
/// sent, and whatever of that breaks USBTMC's rules. Its own code shares only the names of requests with what it tests.
class UsbtmcDevice : public visa::UsbInterface
{
public:
    using Bytes = std::vector<ViByte>;
    using Request = visa::usbtmc::Request;
    using Status = visa::usbtmc::Status;

    static constexpr std::uint8_t kBulkOut = 0x02;
    static constexpr std::uint8_t kBulkIn = 0x81;
    static constexpr std::uint8_t kInterruptIn = 0x83;
    static constexpr std::uint8_t kInterfaceNumber = 1;

    UsbtmcDevice();

    /// A message that waits to be read. Without END the rest of it is to come.
    void answer(const std::string& bytes, bool endsMessage = true);
    /// What the device tells on its interrupt pipe.
    void notify(const Bytes& notification);
    void addInterruptPipe();

    const visa::UsbDescription& description() const noexcept override { return usb; }
    visa::Transfer controlIn(const visa::ControlRequest& request, std::span<ViByte> answer,
                             const visa::TransferLimit& limit) noexcept override;
    visa::Transfer bulkOut(std::span<const ViByte> bytes, const visa::TransferLimit& limit) noexcept override;
    visa::Transfer bulkIn(std::span<ViByte> room, const visa::TransferLimit& limit) noexcept override;
    visa::Transfer interruptIn(std::span<ViByte> room, const visa::TransferLimit& limit) noexcept override;
    visa::TransferOutcome clearHalt(std::uint8_t endpointAddress) noexcept override;
    void cancelBulk() noexcept override;
    void resumeBulk() noexcept override;
    void cancelAll() noexcept override;
    void pause(int milliseconds) noexcept override;

    /// What was sent, in order: "out 1 'abc' END", "ask 2 for 10", "ask 2 for 10 to 0x0A", "trigger 3",
    /// "InitiateClear 0", "clear halt 0x02". The number is the tag or the value.
    std::vector<std::string> log;
    std::vector<std::string> violations;
    int transfers = 0; ///< of all pipes
    int pauses = 0;
    std::size_t largestRoom = 0; ///< that bulkIn was given

    visa::UsbDescription usb;
    Bytes capabilities = Bytes(24, 0);
    ViByte statusByte = 0;

    // Faults.
    std::optional<int> failsAt; ///< the number of the transfer that fails
    visa::TransferOutcome failure = visa::TransferOutcome::Gone;
    bool failsFromThenOn = false;
    std::map<Request, Bytes> answers;                  ///< instead of the device's own
    std::map<Request, visa::TransferOutcome> outcomes; ///< of requests that do not come through
    int pendingPolls = 0;                              ///< until the device is done with what it was told
    bool hasMoreWhilePending = false;                  ///< it says that something waits in its pipe
    std::vector<Bytes> beforeAnswer; ///< notifications in front of the one that answers a request for the status byte
    int busyNotifications = 0;       ///< requests for a status byte that are turned down
    std::function<void(Bytes&)> mangle;                      ///< changes what the device sends
    std::size_t bulkOutTakes = static_cast<std::size_t>(-1); ///< bytes of a message before it ends
    visa::TransferOutcome bulkOutEnds = visa::TransferOutcome::Complete;
    visa::TransferOutcome bulkInEnds = visa::TransferOutcome::Complete; ///< behind what there is
    std::size_t mostInOnePart = static_cast<std::size_t>(-1);
    bool heedsTermChar = true;
    std::deque<Bytes> leftOver; ///< transfers that come before anything else
    bool waits = false;         ///< for what does not come, until it is cancelled

private:
    struct Message
    {
        std::string bytes;
        bool endsMessage;
    };
    struct Asked
    {
        ViByte tag;
        std::size_t size;
        std::optional<ViByte> termChar;
    };

    std::optional<visa::Transfer> fault();
    void check(bool holds, const std::string& rule);
    void take(std::span<const ViByte> message);
    Bytes takePart();
    Bytes replyTo(const visa::ControlRequest& request);
    Bytes whenDone(std::size_t size);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isBulkCancelled_ = false;
    bool isAllCancelled_ = false;
    ViByte lastTag_ = 0;
    std::deque<Message> output_;
    std::optional<Asked> asked_;
    Bytes sending_; ///< of a transfer, what no bulkIn has taken yet
    bool isSending_ = false;
    int polls_ = 0;
    std::deque<Bytes> notifications_;
};

} // namespace kvxtest
