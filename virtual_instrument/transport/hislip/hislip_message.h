#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual::hislip
{

// What the protocol says of its messages (IVI-6.1, HiSLIP 2.0). Numbers are big endian.

inline constexpr std::uint16_t kVersion1 = 0x0100;
inline constexpr std::uint16_t kVersion2 = 0x0200;

enum class Type : std::uint8_t
{
    Initialize = 0,
    InitializeResponse = 1,
    FatalError = 2,
    Error = 3,
    AsyncLock = 4,
    AsyncLockResponse = 5,
    Data = 6,
    DataEnd = 7,
    DeviceClearComplete = 8,
    DeviceClearAcknowledge = 9,
    AsyncRemoteLocalControl = 10,
    AsyncRemoteLocalResponse = 11,
    Trigger = 12,
    Interrupted = 13,
    AsyncInterrupted = 14,
    AsyncMaximumMessageSize = 15,
    AsyncMaximumMessageSizeResponse = 16,
    AsyncInitialize = 17,
    AsyncInitializeResponse = 18,
    AsyncDeviceClear = 19,
    AsyncServiceRequest = 20,
    AsyncStatusQuery = 21,
    AsyncStatusResponse = 22,
    AsyncDeviceClearAcknowledge = 23,
    AsyncLockInfo = 24,
    AsyncLockInfoResponse = 25,
    GetDescriptors = 26,
    GetDescriptorsResponse = 27,
    StartTls = 28,
    AsyncStartTls = 29,
    AsyncStartTlsResponse = 30,
    EndTls = 31,
    AsyncEndTls = 32,
    AsyncEndTlsResponse = 33,
    GetSaslMechanismList = 34,
    GetSaslMechanismListResponse = 35,
    AuthenticationStart = 36,
    AuthenticationExchange = 37,
    AuthenticationResult = 38,
};

/// Types from here on are the vendors'.
inline constexpr std::uint8_t kFirstVendorType = 128;

/// After a fatal error the connection ends.
enum class Fatal : std::uint8_t
{
    Unidentified = 0,
    PoorlyFormedHeader = 1,
    ChannelsNotEstablished = 2,
    InvalidInitialization = 3,
    TooManyClients = 4,
    SecureConnectionFailed = 5,
};

/// The message is dropped, and all goes on.
enum class Complaint : std::uint8_t
{
    Unidentified = 0,
    UnrecognizedType = 1,
    UnrecognizedControlCode = 2,
    UnrecognizedVendorMessage = 3,
    TooLarge = 4,
    AuthenticationFailed = 5,
};

std::string_view textOf(Fatal code);
std::string_view textOf(Complaint code);

struct Header
{
    Type type{};
    std::uint8_t control = 0;
    std::uint32_t parameter = 0;
    std::uint64_t length = 0; ///< of the payload
};

inline constexpr std::size_t kHeaderSize = 16;
using HeaderBytes = std::array<unsigned char, kHeaderSize>;

/// Nothing when it does not begin with "HS".
std::optional<Header> parseHeader(const HeaderBytes& bytes);

/// The whole message; the header's length becomes that of `payload`.
std::string encode(Header header, std::string_view payload = {});

/// Eight bytes.
std::string encodeSize(std::uint64_t size);
std::uint64_t parseSize(std::string_view eightBytes);

// Which messages a server takes --------------------------------------------------------------------------------------

enum class Channel
{
    Synchronous,
    Asynchronous,
};

/// A client's payload of these types is bounded; asynchronous ones must fit into a buffer of this size.
inline constexpr std::uint64_t kLongestText = 256;
/// What the server says that it takes of data in one message.
inline constexpr std::uint64_t kLongestData = std::uint64_t{1} << 20;
/// A longer message is taken for a stream that is out of step rather than for a message.
inline constexpr std::uint64_t kLongestBelievable = std::uint64_t{1} << 32;

/// What is wrong with a message, going by its header.
struct Finding
{
    std::optional<Fatal> fatal;
    std::optional<Complaint> complaint;

    bool good() const { return !fatal && !complaint; }
};

/// Judges a client's message that has come in on `channel` of a connection of this version.
Finding judge(const Header& header, Channel channel, std::uint16_t version);

/// "Initialize" and so on.
std::string_view nameOf(Type type);

} // namespace kvxvirtual::hislip
