#include "visa/transport/stream_transport.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>

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

EndRule endRule(const AttributeValues& values, Framing framing)
{
    EndRule rule;
    if (values.get<VI_ATTR_TERMCHAR_EN>() == VI_TRUE)
        rule.termByte = termChar(values);
    if (framing != Framing::SerialLine || values.get<VI_ATTR_SUPPRESS_END_EN>() == VI_TRUE)
        return rule;
    const ViUInt32 endIn = values.get<VI_ATTR_ASRL_END_IN>();
    if (endIn == VI_ASRL_END_TERMCHAR)
        rule.endByte = termChar(values);
    if (endIn == VI_ASRL_END_LAST_BIT)
        rule.endMask = topDataBit(values);
    return rule;
}

} // namespace

void StreamTransport::CarryOver::clear()
{
    begin_ = end_ = 0;
    if (storage_.size() > kCapacity) {
        storage_.resize(kCapacity);
        storage_.shrink_to_fit();
    }
}

void StreamTransport::CarryOver::putBack(std::span<const ViByte> bytes)
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

StreamTransport::StreamTransport(std::unique_ptr<Stream> stream, Framing framing)
    : stream_(std::move(stream)), framing_(framing)
{
}

ViStatus StreamTransport::refill(const Deadline& deadline)
{
    std::size_t received = 0;
    const auto room = carryOver_.room();
    const ViStatus status = stream_->readSome(room, deadline, received);
    carryOver_.filled(std::min(received, room.size()));
    return status;
}

ViStatus StreamTransport::read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    count = 0;
    const std::lock_guard reading(readMutex_);
    const ViStatus status = readMessage(buffer, terms, count);
    lastReadFailed_.store(status < 0, std::memory_order_relaxed);
    // The caller may well drop what a read has stored that then failed; the next one gives the message whole.
    if (status < 0)
        carryOver_.putBack(buffer.first(count));
    return status;
}

ViStatus StreamTransport::readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    const EndRule rule = endRule(terms.attributes, framing_);
    while (count < buffer.size()) {
        const ViStatus status = carryOver_.bytes().empty() ? refill(terms.deadline) : VI_SUCCESS;
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

ViStatus StreamTransport::write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    count = 0;
    const std::lock_guard writing(writeMutex_);
    if (mayHaveStaleInput(terms.attributes)) {
        if (const ViStatus discarded = discardInput(terms); discarded < 0)
            return discarded;
    }
    const ViUInt32 endOut = terms.attributes.get<VI_ATTR_ASRL_END_OUT>();
    if (endOut == VI_ASRL_END_NONE)
        return stream_->writeAll(bytes, terms.deadline, count);
    const ViStatus status = endOut == VI_ASRL_END_LAST_BIT ? writeWithLastBit(bytes, terms, count)
                                                           : stream_->writeAll(bytes, terms.deadline, count);
    return status < 0 ? status : writeEnd(terms, endOut);
}

ViStatus StreamTransport::writeWithLastBit(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    const ViByte bit = topDataBit(terms.attributes);
    std::array<ViByte, 512> marked{};
    while (count < bytes.size()) {
        const auto part = bytes.subspan(count, std::min(marked.size(), bytes.size() - count));
        std::transform(part.begin(), part.end(), marked.begin(),
                       [bit](ViByte byte) { return static_cast<ViByte>(byte & ~bit); });
        if (count + part.size() == bytes.size())
            marked[part.size() - 1] = static_cast<ViByte>(marked[part.size() - 1] | bit);
        std::size_t written = 0;
        const ViStatus status = stream_->writeAll(std::span(marked).first(part.size()), terms.deadline, written);
        count += std::min(written, part.size());
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus StreamTransport::writeEnd(const Terms& terms, ViUInt32 endOut)
{
    if (endOut == VI_ASRL_END_BREAK)
        return stream_->sendBreak(terms.deadline);
    if (endOut != VI_ASRL_END_TERMCHAR)
        return VI_SUCCESS;
    const ViByte end = termChar(terms.attributes);
    std::size_t written = 0;
    return stream_->writeAll({&end, 1}, terms.deadline, written);
}

ViStatus StreamTransport::clear(const Terms& terms)
{
    const std::lock_guard writing(writeMutex_);
    const ViStatus cleared = stream_->clearDevice(terms.deadline);
    const ViStatus discarded = discardInput(terms);
    return cleared < 0 ? cleared : discarded;
}

/// Whether the answer to what is written next could be mistaken for one that a read has given up.
bool StreamTransport::mayHaveStaleInput(const AttributeValues& attributes) const
{
    return lastReadFailed_.load(std::memory_order_relaxed) &&
           attributes.get<VI_ATTR_KVX_DISCARD_STALE_INPUT>() == VI_TRUE;
}

ViStatus StreamTransport::discardInput(const Terms& terms)
{
    // A read under way has the input to itself; flushing must not wait for it.
    const std::unique_lock reading(readMutex_, std::try_to_lock);
    if (!reading)
        return VI_SUCCESS;
    carryOver_.clear();
    // What has arrived is dropped without a wait, which takes a moment even where none is left.
    const ViStatus status =
        stream_->discardInput(Deadline(std::max(terms.attributes.get<VI_ATTR_TMO_VALUE>(), kMomentMs)));
    lastReadFailed_.store(status < 0, std::memory_order_relaxed);
    return status;
}

ViUInt32 StreamTransport::waitingBytes()
{
    // A read under way takes what arrives, so nothing is waiting for another.
    const std::unique_lock reading(readMutex_, std::try_to_lock);
    return reading ? static_cast<ViUInt32>(carryOver_.bytes().size()) + stream_->available() : 0;
}

ViStatus StreamTransport::setAttribute(ViAttr attribute, ViAttrState value)
{
    return stream_->setAttribute(attribute, static_cast<ViUInt32>(value));
}

ViUInt32 StreamTransport::numberFact(ViAttr attribute)
{
    return attribute == VI_ATTR_ASRL_AVAIL_NUM ? waitingBytes() : stream_->numberFact(attribute);
}

std::string StreamTransport::textFact(ViAttr)
{
    return stream_->address();
}

void StreamTransport::interrupt() noexcept
{
    stream_->interrupt();
}

} // namespace visa
