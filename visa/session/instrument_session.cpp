#include "visa/session/instrument_session.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace visa
{
namespace
{

constexpr ViUInt32 kMomentMs = 100;

ViByte topDataBit(const AttributeValues& values)
{
    return static_cast<ViByte>(1U << (values.get<VI_ATTR_ASRL_DATA_BITS>() - 1));
}

ViByte termChar(const AttributeValues& values)
{
    return static_cast<ViByte>(values.get<VI_ATTR_TERMCHAR>());
}

} // namespace

void InstrumentSession::CarryOver::clear()
{
    begin_ = end_ = 0;
    if (storage_.size() > kCapacity) {
        storage_.resize(kCapacity);
        storage_.shrink_to_fit();
    }
}

void InstrumentSession::CarryOver::putBack(std::span<const ViByte> bytes)
{
    if (bytes.empty())
        return;
    const std::size_t others = end_ - begin_;
    storage_.resize(std::max(storage_.size(), bytes.size() + others));
    std::memmove(storage_.data() + bytes.size(), storage_.data() + begin_, others);
    std::memcpy(storage_.data(), bytes.data(), bytes.size());
    begin_ = 0;
    end_ = bytes.size() + others;
}

InstrumentSession::InstrumentSession(Identity identity, std::unique_ptr<Stream> stream,
                                     std::shared_ptr<ResourceLock> lock)
    : identity_(std::move(identity)), stream_(std::move(stream)), lock_(std::move(lock))
{
}

InstrumentSession::~InstrumentSession()
{
    lock_->release(identity_.self);
}

ViStatus InstrumentSession::applyInitialAttributes()
{
    for (const AttributeRow& row : kAttributeRows) {
        if (row.holder != Holder::Connection || (row.classes & sessionClass()) == 0)
            continue;
        const ViStatus status = stream_->setAttribute(row.attribute, row.initial);
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus InstrumentSession::getAttribute(ViAttr attribute, void* value)
{
    const AttributeRow* const row = findAttribute(attribute, sessionClass());
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    if (row->type == ValueType::Text)
        storeText(textFact(attribute), value);
    else
        storeNumber(row->holder == Holder::Fact ? numberFact(*row) : values_.get(attribute), row->type, value);
    return VI_SUCCESS;
}

ViUInt32 InstrumentSession::numberFact(const AttributeRow& row)
{
    switch (row.attribute) {
    case VI_ATTR_ASRL_AVAIL_NUM:
        return waitingBytes();
    case VI_ATTR_TCPIP_PORT:
        return identity_.name.port;
    case VI_ATTR_RM_SESSION:
        return identity_.manager;
    case VI_ATTR_INTF_TYPE:
        return isSerial() ? VI_INTF_ASRL : VI_INTF_TCPIP;
    case VI_ATTR_INTF_NUM:
        return identity_.name.board;
    default:
        return values_.get(row.attribute);
    }
}

std::string InstrumentSession::textFact(ViAttr attribute) const
{
    switch (attribute) {
    case VI_ATTR_TCPIP_ADDR:
        return stream_->address();
    case VI_ATTR_TCPIP_HOSTNAME:
        return identity_.name.address;
    case VI_ATTR_RSRC_CLASS:
        return isSerial() ? "INSTR" : "SOCKET";
    default:
        return identity_.name.canonical;
    }
}

ViUInt32 InstrumentSession::waitingBytes()
{
    // A read under way takes what arrives, so nothing is waiting for another.
    const std::unique_lock reading(readMutex_, std::try_to_lock);
    return reading ? static_cast<ViUInt32>(carryOver_.bytes().size()) + stream_->available() : 0;
}

ViStatus InstrumentSession::setAttribute(ViAttr attribute, ViAttrState value)
{
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const AttributeRow* const row = findAttribute(attribute, sessionClass());
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    if (row->holder == Holder::Fact)
        return VI_ERROR_ATTR_READONLY;
    const ViUInt32 wanted = reduced(value, row->type);
    if (!row->allowed.contains(wanted))
        return VI_ERROR_NSUP_ATTR_STATE;
    const std::lock_guard guard(settingMutex_);
    const ViStatus status = row->holder == Holder::Connection ? stream_->setAttribute(attribute, wanted) : VI_SUCCESS;
    if (status == VI_SUCCESS)
        values_.set(attribute, wanted);
    return status;
}

EndRule InstrumentSession::endRule() const
{
    EndRule rule;
    if (values_.get<VI_ATTR_TERMCHAR_EN>() == VI_TRUE)
        rule.termByte = termChar(values_);
    if (!isSerial() || values_.get<VI_ATTR_SUPPRESS_END_EN>() == VI_TRUE)
        return rule;
    const ViUInt32 endIn = values_.get<VI_ATTR_ASRL_END_IN>();
    if (endIn == VI_ASRL_END_TERMCHAR)
        rule.endByte = termChar(values_);
    if (endIn == VI_ASRL_END_LAST_BIT)
        rule.endMask = topDataBit(values_);
    return rule;
}

ViStatus InstrumentSession::refill(const Deadline& deadline)
{
    std::size_t received = 0;
    const auto room = carryOver_.room();
    const ViStatus status = stream_->readSome(room, deadline, received);
    carryOver_.filled(std::min(received, room.size()));
    return status;
}

ViStatus InstrumentSession::read(std::span<ViByte> buffer, std::size_t& count)
{
    count = 0;
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const std::lock_guard reading(readMutex_);
    const ViStatus status = readMessage(buffer, Deadline(values_.get<VI_ATTR_TMO_VALUE>()), count);
    lastReadFailed_.store(status < 0, std::memory_order_relaxed);
    // The caller may well drop what a read has stored that then failed; the next one gives the message whole.
    if (status < 0)
        carryOver_.putBack(buffer.first(count));
    return status;
}

ViStatus InstrumentSession::readMessage(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count)
{
    const EndRule rule = endRule();
    while (count < buffer.size()) {
        const ViStatus status = carryOver_.bytes().empty() ? refill(deadline) : VI_SUCCESS;
        if (status < 0)
            return status;
        const auto ready = carryOver_.bytes();
        const auto wanted = ready.first(std::min(ready.size(), buffer.size() - count));
        const auto end = findEnd(wanted, rule);
        const std::size_t taken = end ? end->length : wanted.size();
        std::memcpy(buffer.data() + count, wanted.data(), taken);
        carryOver_.consume(taken);
        count += taken;
        if (end)
            return end->completion;
    }
    return VI_SUCCESS_MAX_CNT;
}

ViStatus InstrumentSession::write(std::span<const ViByte> bytes, std::size_t& count)
{
    count = 0;
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const std::lock_guard writing(writeMutex_);
    if (mayHaveStaleInput()) {
        if (const ViStatus discarded = discardInput(); discarded < 0)
            return discarded;
    }
    const Deadline deadline(values_.get<VI_ATTR_TMO_VALUE>());
    const bool marksLastBit = values_.get<VI_ATTR_ASRL_END_OUT>() == VI_ASRL_END_LAST_BIT;
    const ViStatus status = marksLastBit ? writeWithLastBit(bytes, topDataBit(values_), deadline, count)
                                         : stream_->writeAll(bytes, deadline, count);
    return status < 0 ? status : writeEnd(deadline);
}

ViStatus InstrumentSession::writeWithLastBit(std::span<const ViByte> bytes, ViByte bit, const Deadline& deadline,
                                             std::size_t& count)
{
    std::array<ViByte, 512> marked{};
    while (count < bytes.size()) {
        const auto part = bytes.subspan(count, std::min(marked.size(), bytes.size() - count));
        std::transform(part.begin(), part.end(), marked.begin(),
                       [bit](ViByte byte) { return static_cast<ViByte>(byte & ~bit); });
        if (count + part.size() == bytes.size())
            marked[part.size() - 1] = static_cast<ViByte>(marked[part.size() - 1] | bit);
        std::size_t written = 0;
        const ViStatus status = stream_->writeAll(std::span(marked).first(part.size()), deadline, written);
        count += std::min(written, part.size());
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus InstrumentSession::writeEnd(const Deadline& deadline)
{
    const ViUInt32 endOut = values_.get<VI_ATTR_ASRL_END_OUT>();
    if (endOut == VI_ASRL_END_BREAK)
        return stream_->sendBreak(deadline);
    if (endOut != VI_ASRL_END_TERMCHAR)
        return VI_SUCCESS;
    const ViByte end = termChar(values_);
    std::size_t written = 0;
    return stream_->writeAll({&end, 1}, deadline, written);
}

ViStatus InstrumentSession::setBuffer(ViUInt16 mask, ViUInt32 size)
{
    constexpr unsigned kTransferBuffers = VI_IO_IN_BUF | VI_IO_OUT_BUF;
    constexpr unsigned kKnown = VI_READ_BUF | VI_WRITE_BUF | kTransferBuffers;
    if (mask == 0 || (mask & ~kKnown) != 0)
        return VI_ERROR_INV_MASK;
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    // Output leaves with viWrite and there is no formatted input, so only received bytes can be waiting to be flushed.
    if ((mask & VI_IO_IN_BUF) != 0) {
        if (const ViStatus discarded = discardInput(); discarded < 0)
            return discarded;
    }
    const std::lock_guard guard(settingMutex_);
    if ((mask & VI_READ_BUF) != 0)
        values_.set(VI_ATTR_RD_BUF_SIZE, size);
    if ((mask & VI_WRITE_BUF) != 0)
        values_.set(VI_ATTR_WR_BUF_SIZE, size);
    return (mask & kTransferBuffers) != 0 ? VI_WARN_NSUP_BUF : VI_SUCCESS;
}

ViStatus InstrumentSession::clear()
{
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const std::lock_guard writing(writeMutex_);
    const ViStatus cleared = stream_->clearDevice(Deadline(values_.get<VI_ATTR_TMO_VALUE>()));
    const ViStatus discarded = discardInput();
    return cleared < 0 ? cleared : discarded;
}

/// Whether the answer to what is written next could be mistaken for one that a read has given up.
bool InstrumentSession::mayHaveStaleInput() const
{
    return lastReadFailed_.load(std::memory_order_relaxed) && values_.get<VI_ATTR_KVX_DISCARD_STALE_INPUT>() == VI_TRUE;
}

ViStatus InstrumentSession::discardInput()
{
    // A read under way has the input to itself; flushing must not wait for it.
    const std::unique_lock reading(readMutex_, std::try_to_lock);
    if (!reading)
        return VI_SUCCESS;
    carryOver_.clear();
    // What has arrived is dropped without a wait, which takes a moment even where none is left.
    const ViStatus status = stream_->discardInput(Deadline(std::max(values_.get<VI_ATTR_TMO_VALUE>(), kMomentMs)));
    lastReadFailed_.store(status < 0, std::memory_order_relaxed);
    return status;
}

void InstrumentSession::interrupt() noexcept
{
    stream_->interrupt();
}

} // namespace visa
