#pragma once

#include <cstdint>

namespace kvxvirtual
{

/// One way on which messages come in, as the server sees it.
class Connection
{
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    virtual ~Connection() = default;

    /// Ends it; a reply that has not left is lost. Harmless when it has ended already.
    virtual void close() = 0;

    /// How many bytes have been read so far.
    virtual std::uint64_t bytesRead() const = 0;

    /// How many bytes have come in that are not read yet; 0 when it has ended.
    virtual std::uint64_t bytesWaiting() = 0;

    /// Whether it has executed everything up to its first `bytes` bytes, or gets no further by itself because it has
    /// ended, waits to send a delayed reply or has a client that takes no replies.
    virtual bool hasReached(std::uint64_t bytes) = 0;
};

} // namespace kvxvirtual
