#pragma once

#include "visa/host/quick_mutex.h"
#include "visa/transport/end_finder.h"
#include "visa/transport/stream.h"
#include "visa/transport/transport.h"

#include <atomic>
#include <memory>
#include <vector>

namespace visa
{

/// What a stream has beside its bytes.
enum class Framing
{
    None,
    SerialLine ///< characters of some bits, and breaks
};

/// Messages on a stream of bytes, a serial line or a socket: what ends a read and a write is a matter of attributes.
class StreamTransport : public Transport
{
public:
    StreamTransport(std::unique_ptr<Stream> stream, Framing framing);

    ViStatus read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count) override;
    ViStatus clear(const Terms& terms) override;
    ViStatus discardInput(const Terms& terms) override;
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override;
    ViUInt32 numberFact(ViAttr attribute) override;
    std::string textFact(ViAttr attribute) override;
    void interrupt() noexcept override;

private:
    /// Bytes received beyond the end of the last read, or by one that failed; they belong to the next one.
    class CarryOver
    {
    public:
        std::span<const ViByte> bytes() const { return {storage_.data() + begin_, end_ - begin_}; }
        void consume(std::size_t count) { begin_ += count; }
        void clear();
        /// Room for new bytes; only while nothing is carried over.
        std::span<ViByte> room() { return std::span(storage_).first(kCapacity); }
        void filled(std::size_t count)
        {
            begin_ = 0;
            end_ = count;
        }
        /// Puts bytes that were consumed in front of the others again. It grows as far as a caller's buffer was large,
        /// until it is cleared.
        void putBack(std::span<const ViByte> bytes);

    private:
        static constexpr std::size_t kCapacity = 16384;
        std::vector<ViByte> storage_ = std::vector<ViByte>(kCapacity);
        std::size_t begin_ = 0;
        std::size_t end_ = 0;
    };

    ViUInt32 waitingBytes();
    ViStatus refill(const Deadline& deadline);
    ViStatus readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count);
    bool mayHaveStaleInput(const AttributeValues& attributes) const;
    ViStatus writeWithLastBit(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count);
    ViStatus writeEnd(const Terms& terms, ViUInt32 endOut);

    const std::unique_ptr<Stream> stream_;
    const Framing framing_;
    QuickMutex readMutex_; ///< held by the one read under way; guards carryOver_
    CarryOver carryOver_;
    std::atomic<bool> lastReadFailed_ = false;
    QuickMutex writeMutex_; ///< held by the one write under way
};

} // namespace visa
