#pragma once

#include "visa/resource/resource_name.h"
#include "visa/session/attributes.h"
#include "visa/session/end_finder.h"
#include "visa/session/resource_lock.h"
#include "visa/session/session.h"
#include "visa/transport/stream.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace visa
{

/// A session to a serial port or a socket: VISA's rules for attributes and for the end of reads and writes, on top of a
/// stream of bytes.
class InstrumentSession : public Session
{
public:
    struct Identity
    {
        ViSession self;
        ViSession manager;
        ResourceName name;
    };

    /// @param lock the resource's lock; what this session holds of it is given back at the end
    InstrumentSession(Identity identity, std::unique_ptr<Stream> stream, std::shared_ptr<ResourceLock> lock);
    ~InstrumentSession() override;
    InstrumentSession(const InstrumentSession&) = delete;
    InstrumentSession& operator=(const InstrumentSession&) = delete;

    ViSession manager() const override { return identity_.manager; }
    ViStatus getAttribute(ViAttr attribute, void* value) override;
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override;
    ViStatus read(std::span<ViByte> buffer, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, std::size_t& count) override;
    ViStatus setBuffer(ViUInt16 mask, ViUInt32 size) override;
    ViStatus clear() override;
    void interrupt() noexcept override;

    /// Brings the initial values of the connection's own attributes into force.
    ViStatus applyInitialAttributes();

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

    bool isSerial() const { return identity_.name.kind == ResourceKind::Serial; }
    SessionClass sessionClass() const { return isSerial() ? kSerial : kSocket; }
    EndRule endRule() const;
    ViUInt32 numberFact(const AttributeRow& row);
    std::string textFact(ViAttr attribute) const;
    ViUInt32 waitingBytes();

    ViStatus refill(const Deadline& deadline);
    ViStatus readMessage(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count);
    bool mayHaveStaleInput() const;
    ViStatus writeWithLastBit(std::span<const ViByte> bytes, ViByte bit, const Deadline& deadline, std::size_t& count);
    ViStatus writeEnd(const Deadline& deadline);
    ViStatus discardInput();

    const Identity identity_;
    const std::unique_ptr<Stream> stream_;
    const std::shared_ptr<ResourceLock> lock_;

    std::mutex settingMutex_; ///< held by the one change of values_ under way
    AttributeValues values_;

    std::mutex readMutex_; ///< held by the one read under way; guards carryOver_
    CarryOver carryOver_;
    std::atomic<bool> lastReadFailed_ = false;
    std::mutex writeMutex_; ///< held by the one write under way
};

} // namespace visa
