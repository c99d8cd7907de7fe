#include "visa/transport/hislip/hislip_channel.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace visa
{

HislipChannel::HislipChannel(std::unique_ptr<Stream> stream, std::size_t inputSize)
    : stream_(std::move(stream)), input_(inputSize)
{
}

// Sending ------------------------------------------------------------------------------------------------------------

ViStatus HislipChannel::send(const HislipHeader& header, std::span<const ViByte> payload, const Deadline& deadline,
                             std::size_t& count)
{
    count = 0;
    const std::lock_guard sending(sending_);
    if (isTold_ && owes()) {
        if (const ViStatus told = sendOwedBytes(deadline); told < 0)
            return told;
    }
    isTold_ = false;
    HislipHeader whole = header;
    whole.length = payload.size();
    encode(whole, std::span(output_).first<kHislipHeaderSize>());
    const std::size_t first = std::min(payload.size(), output_.size() - kHislipHeaderSize);
    std::copy_n(payload.begin(), first, output_.begin() + kHislipHeaderSize);
    const std::size_t size = kHislipHeaderSize + first;
    owedBegin_ = 0;
    owedEnd_ = size;
    owedPayload_ = payload.size() - first;
    ViStatus status = sendOwedBytes(deadline);
    count = owedBegin_ > kHislipHeaderSize ? owedBegin_ - kHislipHeaderSize : 0;
    if (status >= 0 && owedPayload_ > 0) {
        std::size_t rest = 0;
        status = stream_->writeAll(payload.subspan(first), deadline, rest);
        count += rest;
        owedPayload_ -= rest;
    }
    // Of this message the device has seen nothing.
    if (status < 0 && owedBegin_ == 0) {
        owedEnd_ = 0;
        owedPayload_ = 0;
    }
    return status;
}

bool HislipChannel::owesOutput()
{
    const std::lock_guard sending(sending_);
    return owes() && !isTold_;
}

ViStatus HislipChannel::sendOwedBytes(const Deadline& deadline)
{
    std::size_t sent = 0;
    const ViStatus status = stream_->writeAll(owedBytes(), deadline, sent);
    owedBegin_ += sent;
    return status;
}

ViStatus HislipChannel::sendOwed(const Deadline& deadline)
{
    const std::lock_guard sending(sending_);
    ViStatus status = sendOwedBytes(deadline);
    while (status >= 0 && owedPayload_ > 0) {
        owedBegin_ = 0;
        owedEnd_ = static_cast<std::size_t>(std::min<std::uint64_t>(owedPayload_, output_.size()));
        owedPayload_ -= owedEnd_;
        std::fill_n(output_.begin(), owedEnd_, static_cast<ViByte>(' '));
        status = sendOwedBytes(deadline);
    }
    return status;
}

void HislipChannel::tell(const HislipHeader& header)
{
    const std::unique_lock sending(sending_, std::try_to_lock);
    if (!sending || owes())
        return;
    encode(header, std::span(output_).first<kHislipHeaderSize>());
    owedBegin_ = 0;
    owedEnd_ = kHislipHeaderSize;
    isTold_ = true;
    sendOwedBytes(Deadline(VI_TMO_IMMEDIATE));
    if (owedBegin_ == 0)
        owedEnd_ = 0;
}

// Receiving ----------------------------------------------------------------------------------------------------------

/// Gets more behind what there is, for which there is room.
ViStatus HislipChannel::refill(const Deadline& deadline)
{
    if (begin_ > 0) {
        std::memmove(input_.data(), input_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    std::size_t received = 0;
    const auto room = std::span(input_).subspan(end_);
    const ViStatus status = stream_->readSome(room, deadline, received);
    end_ += std::min(received, room.size());
    return status;
}

ViStatus HislipChannel::receiveHeader(HislipHeader& header, const Deadline& deadline)
{
    ViStatus status = dropPayload(deadline);
    while (status >= 0 && end_ - begin_ < kHislipHeaderSize)
        status = refill(deadline);
    if (status < 0)
        return status;
    const auto decoded = decode(std::span<const ViByte, kHislipHeaderSize>(input_.data() + begin_, kHislipHeaderSize));
    if (!decoded)
        return VI_ERROR_INP_PROT_VIOL;
    header = *decoded;
    begin_ += kHislipHeaderSize;
    payloadLeft_ = header.length;
    return VI_SUCCESS;
}

std::span<const ViByte> HislipChannel::payloadArrived() const
{
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(end_ - begin_, payloadLeft_));
    return std::span(input_).subspan(begin_, count);
}

ViStatus HislipChannel::look(const Deadline& deadline, std::span<const ViByte>& arrived)
{
    ViStatus status = VI_SUCCESS;
    while (status >= 0 && payloadArrived().empty())
        status = refill(deadline);
    arrived = payloadArrived();
    return arrived.empty() ? status : VI_SUCCESS;
}

void HislipChannel::take(std::size_t count)
{
    begin_ += count;
    payloadLeft_ -= count;
}

ViStatus HislipChannel::receive(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count)
{
    count = 0;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), payloadLeft_));
    // Much is not copied twice.
    if (!hasInput() && wanted >= input_.size()) {
        const ViStatus status = stream_->readSome(buffer.first(wanted), deadline, count);
        payloadLeft_ -= count;
        return status;
    }
    std::span<const ViByte> arrived;
    const ViStatus status = look(deadline, arrived);
    count = std::min(wanted, arrived.size());
    std::copy_n(arrived.begin(), count, buffer.begin());
    take(count);
    return status;
}

ViStatus HislipChannel::dropPayload(const Deadline& deadline)
{
    while (payloadLeft_ > 0) {
        std::span<const ViByte> arrived;
        const ViStatus status = look(deadline, arrived);
        if (status < 0)
            return status;
        take(arrived.size());
    }
    return VI_SUCCESS;
}

} // namespace visa
