#include "visa/transport/vxi11/record_reader.h"

#include "visa/transport/vxi11/big_endian.h"

#include <algorithm>

namespace visa
{

ViStatus RecordReader::next(const Deadline& deadline) noexcept
{
    std::size_t available = 0;
    do {
        ViStatus status = reachBytes(deadline, available);
        if (status == VI_SUCCESS)
            status = skip(available, deadline);
        if (status < 0)
            return status;
    } while (available > 0);
    return beginFragment(deadline);
}

ViStatus RecordReader::gather(std::span<ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
{
    count = 0;
    while (count < bytes.size()) {
        std::size_t available = 0;
        ViStatus status = reachBytes(deadline, available);
        if (status == VI_SUCCESS && available == 0)
            return VI_ERROR_INP_PROT_VIOL;
        const auto wanted = bytes.subspan(count, std::min(available, bytes.size() - count));
        std::size_t taken = take(wanted);
        if (status == VI_SUCCESS && taken == 0) {
            const bool isWorthwhile = wanted.size() >= buffer_.size();
            status = isWorthwhile ? receive(wanted, deadline, taken) : fillBuffer(deadline);
            taken = std::min(taken, wanted.size());
        }
        fragmentLeft_ -= taken;
        count += taken;
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus RecordReader::skipArriving(std::size_t count, const Deadline& deadline) noexcept
{
    while (count > 0) {
        std::size_t available = 0;
        ViStatus status = reachBytes(deadline, available);
        if (status == VI_SUCCESS && available == 0)
            return VI_ERROR_INP_PROT_VIOL;
        if (status == VI_SUCCESS && buffered() == 0)
            status = fillBuffer(deadline);
        if (status < 0)
            return status;
        const std::size_t skipped = std::min({count, available, buffered()});
        advance(skipped);
        count -= skipped;
    }
    return VI_SUCCESS;
}

ViStatus RecordReader::reachBytes(const Deadline& deadline, std::size_t& available) noexcept
{
    while (fragmentLeft_ == 0 && !isLastFragment_) {
        if (const ViStatus status = beginFragment(deadline); status < 0)
            return status;
    }
    available = fragmentLeft_;
    return VI_SUCCESS;
}

ViStatus RecordReader::beginFragment(const Deadline& deadline) noexcept
{
    while (buffered() < kWordBytes) {
        if (const ViStatus status = fillBuffer(deadline); status < 0)
            return status;
    }
    const std::uint32_t mark = wordAt(buffer_.data() + begin_);
    begin_ += kWordBytes;
    fragmentLeft_ = mark & ~kLastFragment;
    isLastFragment_ = (mark & kLastFragment) != 0;
    return VI_SUCCESS;
}

ViStatus RecordReader::fillBuffer(const Deadline& deadline) noexcept
{
    std::memmove(buffer_.data(), buffer_.data() + begin_, buffered());
    end_ = buffered();
    begin_ = 0;
    std::size_t received = 0;
    const auto room = std::span(buffer_).subspan(end_);
    const ViStatus status = receive(room, deadline, received);
    end_ += std::min(received, room.size());
    return status;
}

ViStatus RecordReader::receive(std::span<ViByte> room, const Deadline& deadline, std::size_t& count) noexcept
{
    // A stream need not look at the clock while there is input, and there may be no end of that.
    if (deadline.remainingMs(1) == 0)
        return VI_ERROR_TMO;
    return stream_.readSome(room, deadline, count);
}

std::size_t RecordReader::take(std::span<ViByte> bytes) noexcept
{
    const std::size_t taken = std::min(bytes.size(), buffered());
    std::memcpy(bytes.data(), buffer_.data() + begin_, taken);
    begin_ += taken;
    return taken;
}

} // namespace visa
