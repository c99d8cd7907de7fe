#pragma once

#include "visa/host/quick_mutex.h"
#include "visa/transport/hislip/hislip_message.h"
#include "visa/transport/stream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace visa
{

/// One of the two connections to a device: whole messages out, headers and payloads in. A small message leaves in one
/// transfer, and comes in with one. However long a payload claims to be, no memory is kept for it.
///
/// One thread may send while another receives.
class HislipChannel
{
public:
    /// The memory of what comes in is that of two small messages at least.
    HislipChannel(std::unique_ptr<Stream> stream, std::size_t inputSize);

    // Sending --------------------------------------------------------------------------------------------------------

    /// Sends a message; the header's length becomes that of the payload.
    /// @param count bytes of the payload handed over, on an error as well
    ViStatus send(const HislipHeader& header, std::span<const ViByte> payload, const Deadline& deadline,
                  std::size_t& count);

    /// Whether a message has been sent in part: another one would be taken for its rest.
    bool owesOutput();
    /// Sends the rest of that message with blanks for its bytes, for a device that will not look at them.
    ViStatus sendOwed(const Deadline& deadline);

    /// Sends a message without a payload if that is possible at once, whatever becomes of it. The rest of one that has
    /// gone in part is sent in front of the next message.
    void tell(const HislipHeader& header);

    // Receiving ------------------------------------------------------------------------------------------------------

    /// Drops what is left of the message before and waits for a header. After an error it goes on where it was.
    /// @return VI_ERROR_INP_PROT_VIOL for what is no message
    ViStatus receiveHeader(HislipHeader& header, const Deadline& deadline);

    /// Bytes of the message's payload that have not been taken.
    std::uint64_t payloadLeft() const { return payloadLeft_; }

    /// Waits for some bytes of the payload, of which there are some left, and takes them.
    ViStatus receive(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count);

    /// Waits for some bytes of the payload, of which there are some left, and shows those that have arrived.
    ViStatus look(const Deadline& deadline, std::span<const ViByte>& arrived);
    /// Takes some of those.
    void take(std::size_t count);

    /// Whether something has arrived that nobody has asked for yet.
    bool hasInput() const { return begin_ < end_; }

    Stream& stream() { return *stream_; }

private:
    static constexpr std::size_t kSmallMessage = 4096;

    bool owes() const { return owedPayload_ > 0 || owedBegin_ < owedEnd_; }
    std::span<const ViByte> owedBytes() const { return std::span(output_).subspan(owedBegin_, owedEnd_ - owedBegin_); }
    ViStatus sendOwedBytes(const Deadline& deadline);
    ViStatus refill(const Deadline& deadline);
    std::span<const ViByte> payloadArrived() const;
    ViStatus dropPayload(const Deadline& deadline);

    const std::unique_ptr<Stream> stream_;

    std::array<ViByte, kSmallMessage> output_{};
    std::size_t owedBegin_ = 0;
    std::size_t owedEnd_ = 0;
    std::uint64_t owedPayload_ = 0; ///< behind those
    bool isTold_ = false;           ///< they are tell()'s
    QuickMutex sending_;            ///< held while something is sent; guards what is owed

    std::vector<ViByte> input_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::uint64_t payloadLeft_ = 0;
};

} // namespace visa
