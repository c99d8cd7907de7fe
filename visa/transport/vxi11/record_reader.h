#pragma once

#include "visa/transport/stream.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace visa
{

/// The bit in the mark of a fragment that ends a record; the others are its length.
inline constexpr std::uint32_t kLastFragment = 0x80000000U;

/// The records that arrive on a stream (RFC 5531 section 11), whose fragments are put together here.
///
/// An operation that fails for lack of time or because it was interrupted has lost nothing: the next begins where it
/// ended. Nothing is kept but a fixed buffer, whatever lengths the other end announces.
class RecordReader
{
public:
    explicit RecordReader(Stream& stream) : stream_(stream) {}

    /// Goes to the beginning of the next record; what is left of the present one is skipped.
    /// @return the stream's error, or VI_ERROR_TMO where the other end sends faster than can be skipped
    ViStatus next(const Deadline& deadline) noexcept;

    /// Fills the bytes from the present record; many go straight where they are wanted.
    /// @param count bytes stored, on an error as well
    /// @return VI_ERROR_INP_PROT_VIOL when the record ends first
    ViStatus read(std::span<ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
    {
        if (!holds(bytes.size()))
            return gather(bytes, deadline, count);
        std::copy_n(buffer_.data() + begin_, bytes.size(), bytes.data());
        advance(bytes.size());
        count = bytes.size();
        return VI_SUCCESS;
    }

    ViStatus skip(std::size_t count, const Deadline& deadline) noexcept
    {
        if (!holds(count))
            return skipArriving(count, deadline);
        advance(count);
        return VI_SUCCESS;
    }

private:
    /// Whether so much of the present fragment has arrived: nearly always, so that a reply's words cost no call each.
    bool holds(std::size_t count) const { return count <= fragmentLeft_ && count <= buffered(); }
    void advance(std::size_t count)
    {
        begin_ += count;
        fragmentLeft_ -= count;
    }
    ViStatus gather(std::span<ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept;
    ViStatus skipArriving(std::size_t count, const Deadline& deadline) noexcept;
    ViStatus receive(std::span<ViByte> room, const Deadline& deadline, std::size_t& count) noexcept;
    ViStatus beginFragment(const Deadline& deadline) noexcept;
    /// Goes on until something of the record is there to be taken.
    /// @param available how much of the fragment is left; 0 at the end of the record
    ViStatus reachBytes(const Deadline& deadline, std::size_t& available) noexcept;
    ViStatus fillBuffer(const Deadline& deadline) noexcept;
    std::size_t take(std::span<ViByte> bytes) noexcept;
    std::size_t buffered() const { return end_ - begin_; }

    Stream& stream_;
    std::array<ViByte, 16384> buffer_{};
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::size_t fragmentLeft_ = 0;
    bool isLastFragment_ = true;
};

} // namespace visa
