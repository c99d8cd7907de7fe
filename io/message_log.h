#pragma once

#include <visatype.h>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace InstLink
{

/// The last messages of a connection, as records that a person reads: "> text" was sent, "< text" was received, "!
/// text" tells what failed and how many records have been lost. Bytes that do not print are "\xHH".
///
/// It never stands in the way of a transfer: what there is no memory for is lost, and counted. Not thread-safe: its
/// caller serialises the calls.
class MessageLog
{
public:
    /// Records are at most this long; of a message that would make a longer one the beginning is kept, and "..." ends
    /// it.
    static constexpr std::size_t kLongestRecord = 1023;

    /// @param mostRecords  how many it remembers, 1 or more; beyond these the oldest are lost
    explicit MessageLog(std::size_t mostRecords) : mostRecords_(mostRecords) {}

    /// Messages without their termination character.
    void sent(std::string_view message) noexcept;
    void received(std::string_view message) noexcept;

    void sendingFailed(ViStatus status) noexcept;
    void receivingFailed(ViStatus status) noexcept;

    /// The oldest record; where records have been lost, one that tells how many. "" when there is none.
    std::string oldest() const;

    /// Forgets the record that oldest() gives.
    void removeOldest() noexcept;

private:
    struct Record
    {
        std::string text;
        /// How many records between this one and the one before have been lost.
        std::size_t lostBefore;
    };

    template <class Compose>
    void add(Compose compose) noexcept;

    std::size_t lost() const { return records_.empty() ? lostLast_ : records_.front().lostBefore; }

    std::size_t mostRecords_;
    std::deque<Record> records_;
    /// How many have been lost since the newest record.
    std::size_t lostLast_ = 0;
};

} // namespace InstLink
