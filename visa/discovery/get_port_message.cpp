#include "visa/discovery/get_port_message.h"

#include <cstddef>

namespace visa
{
namespace
{

// RPC
constexpr std::uint32_t kCall = 0;
constexpr std::uint32_t kReply = 1;
constexpr std::uint32_t kRpcVersion = 2;
constexpr std::uint32_t kAccepted = 0;
constexpr std::uint32_t kSuccess = 0;
constexpr std::uint32_t kLongestVerifier = 400;
// The portmapper
constexpr std::uint32_t kPortmapper = 100000;
constexpr std::uint32_t kPortmapperVersion = 2;
constexpr std::uint32_t kGetPort = 3;
// What it is asked for
constexpr std::uint32_t kDeviceCore = 0x0607AF;
constexpr std::uint32_t kDeviceCoreVersion = 1;
constexpr std::uint32_t kTcp = 6;

constexpr std::size_t kWordSize = 4;

/// Words from front to back; 0xFFFFFFFF, which no answer has, behind the end.
class Words
{
public:
    explicit Words(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

    std::uint32_t next()
    {
        if (rest_.size() < kWordSize)
            return 0xFFFFFFFF;
        std::uint32_t word = 0;
        for (const std::uint8_t byte : rest_.first(kWordSize))
            word = word << 8 | byte;
        rest_ = rest_.subspan(kWordSize);
        return word;
    }

    /// Passes over opaque bytes, which whole words are kept for.
    void skip(std::uint32_t bytes)
    {
        const std::size_t padded = (bytes + kWordSize - 1) / kWordSize * kWordSize;
        rest_ = rest_.subspan(padded < rest_.size() ? padded : rest_.size());
    }

private:
    std::span<const std::uint8_t> rest_;
};

} // namespace

GetPortCall getPortCall(std::uint32_t identifier)
{
    GetPortCall message{};
    std::size_t at = 0;
    // Neither credentials nor a verifier: two words each.
    for (const std::uint32_t word : {identifier, kCall, kRpcVersion, kPortmapper, kPortmapperVersion, kGetPort, 0U, 0U,
                                     0U, 0U, kDeviceCore, kDeviceCoreVersion, kTcp, 0U})
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            message[at++] = static_cast<std::uint8_t>(word >> shift & 0xFF);
    }
    return message;
}

std::optional<std::uint16_t> readGetPortReply(std::span<const std::uint8_t> message, std::uint32_t identifier)
{
    Words words(message);
    if (words.next() != identifier || words.next() != kReply || words.next() != kAccepted)
        return std::nullopt;
    words.next();
    const std::uint32_t verifierSize = words.next();
    if (verifierSize > kLongestVerifier)
        return std::nullopt;
    words.skip(verifierSize);
    if (words.next() != kSuccess)
        return std::nullopt;
    const std::uint32_t port = words.next();
    return port == 0 || port > 0xFFFF ? std::nullopt : std::optional(static_cast<std::uint16_t>(port));
}

} // namespace visa
