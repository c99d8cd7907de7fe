#include "virtual_instrument/transport/hislip/hislip_message.h"

#include <iterator>

namespace kvxvirtual::hislip
{
namespace
{

constexpr std::string_view kPrologue = "HS";

/// Where a client sends a message.
enum class From
{
    Nowhere, ///< only servers send it
    Synchronous,
    Asynchronous,
    Either,
};

enum class Payload
{
    None,
    Size, ///< eight bytes
    Text, ///< up to kLongestText
    Data, ///< up to kLongestData
};

struct Row
{
    std::string_view name;
    From from;
    std::uint8_t largestControl;
    Payload payload;
    std::uint16_t version = kVersion1;
    bool secure = false; ///< part of the secure connection capability, which this server has not
};

constexpr std::uint8_t kAnyControl = 255;
constexpr bool kSecure = true;

/// By the number of the type.
constexpr Row kRows[] = {
    {"Initialize", From::Synchronous, 0, Payload::Text},
    {"InitializeResponse", From::Nowhere, 0, Payload::None},
    {"FatalError", From::Either, kAnyControl, Payload::Text},
    {"Error", From::Either, kAnyControl, Payload::Text},
    {"AsyncLock", From::Asynchronous, 1, Payload::Text},
    {"AsyncLockResponse", From::Nowhere, 0, Payload::None},
    {"Data", From::Synchronous, 1, Payload::Data},
    {"DataEND", From::Synchronous, 1, Payload::Data},
    {"DeviceClearComplete", From::Synchronous, kAnyControl, Payload::Text},
    {"DeviceClearAcknowledge", From::Nowhere, 0, Payload::None},
    {"AsyncRemoteLocalControl", From::Asynchronous, 6, Payload::None},
    {"AsyncRemoteLocalResponse", From::Nowhere, 0, Payload::None},
    {"Trigger", From::Synchronous, 1, Payload::None},
    {"Interrupted", From::Nowhere, 0, Payload::None},
    {"AsyncInterrupted", From::Nowhere, 0, Payload::None},
    {"AsyncMaximumMessageSize", From::Asynchronous, 0, Payload::Size},
    {"AsyncMaximumMessageSizeResponse", From::Nowhere, 0, Payload::None},
    {"AsyncInitialize", From::Asynchronous, 0, Payload::None},
    {"AsyncInitializeResponse", From::Nowhere, 0, Payload::None},
    {"AsyncDeviceClear", From::Asynchronous, 0, Payload::None},
    {"AsyncServiceRequest", From::Nowhere, 0, Payload::None},
    {"AsyncStatusQuery", From::Asynchronous, 1, Payload::None},
    {"AsyncStatusResponse", From::Nowhere, 0, Payload::None},
    {"AsyncDeviceClearAcknowledge", From::Nowhere, 0, Payload::None},
    {"AsyncLockInfo", From::Asynchronous, 0, Payload::None},
    {"AsyncLockInfoResponse", From::Nowhere, 0, Payload::None},
    {"GetDescriptors", From::Either, 0, Payload::None, kVersion2},
    {"GetDescriptorsResponse", From::Nowhere, 0, Payload::None, kVersion2},
    {"StartTLS", From::Synchronous, 0, Payload::None, kVersion2, kSecure},
    {"AsyncStartTLS", From::Asynchronous, 1, Payload::Text, kVersion2, kSecure},
    {"AsyncStartTLSResponse", From::Nowhere, 0, Payload::None, kVersion2, kSecure},
    {"EndTLS", From::Synchronous, 0, Payload::None, kVersion2, kSecure},
    {"AsyncEndTLS", From::Asynchronous, 1, Payload::Text, kVersion2, kSecure},
    {"AsyncEndTLSResponse", From::Nowhere, 0, Payload::None, kVersion2, kSecure},
    {"GetSaslMechanismList", From::Synchronous, 0, Payload::None, kVersion2, kSecure},
    {"GetSaslMechanismListResponse", From::Nowhere, 0, Payload::None, kVersion2, kSecure},
    {"AuthenticationStart", From::Synchronous, 0, Payload::Text, kVersion2, kSecure},
    {"AuthenticationExchange", From::Synchronous, 0, Payload::Data, kVersion2, kSecure},
    {"AuthenticationResult", From::Nowhere, 0, Payload::None, kVersion2, kSecure},
};

constexpr std::string_view kFatalTexts[] = {
    "Unidentified error",
    "Poorly formed message header",
    "Attempt to use connection without both channels established",
    "Invalid initialization sequence",
    "Server refused connection due to maximum number of clients exceeded",
    "Secure connection failed",
};

constexpr std::string_view kComplaintTexts[] = {
    "Unidentified error",        "Unrecognized message type",
    "Unrecognized control code", "Unrecognized vendor defined message",
    "Message too large",         "Authentication failed",
};

const Row* rowOf(Type type)
{
    const auto number = static_cast<std::size_t>(type);
    return number < std::size(kRows) ? &kRows[number] : nullptr;
}

bool comesOn(From from, Channel channel)
{
    return from == From::Either || from == (channel == Channel::Synchronous ? From::Synchronous : From::Asynchronous);
}

bool known(const Row* row, Channel channel, std::uint16_t version)
{
    return row != nullptr && comesOn(row->from, channel) && row->version <= version && !row->secure;
}

Finding judgeLength(Payload payload, std::uint64_t length)
{
    switch (payload) {
    case Payload::None:
        return length == 0 ? Finding{} : Finding{Fatal::PoorlyFormedHeader, {}};
    case Payload::Size:
        return length == sizeof(std::uint64_t) ? Finding{} : Finding{Fatal::PoorlyFormedHeader, {}};
    case Payload::Text:
        return length <= kLongestText ? Finding{} : Finding{{}, Complaint::TooLarge};
    case Payload::Data:
        return length <= kLongestData ? Finding{} : Finding{{}, Complaint::TooLarge};
    }
    return {};
}

template <class Number>
Number bigEndian(const unsigned char* bytes)
{
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number = static_cast<Number>(number << 8U | bytes[i]);
    return number;
}

template <class Number>
void append(std::string& bytes, Number number)
{
    for (auto shift = sizeof(Number) * 8; shift > 0; shift -= 8)
        bytes += static_cast<char>(number >> (shift - 8));
}

} // namespace

std::string_view textOf(Fatal code)
{
    return kFatalTexts[static_cast<std::size_t>(code)];
}

std::string_view textOf(Complaint code)
{
    return kComplaintTexts[static_cast<std::size_t>(code)];
}

std::string_view nameOf(Type type)
{
    const auto* const row = rowOf(type);
    return row != nullptr ? row->name : "VendorSpecific";
}

std::optional<Header> parseHeader(const HeaderBytes& bytes)
{
    if (bytes[0] != kPrologue[0] || bytes[1] != kPrologue[1])
        return std::nullopt;
    return Header{static_cast<Type>(bytes[2]), bytes[3], bigEndian<std::uint32_t>(&bytes[4]),
                  bigEndian<std::uint64_t>(&bytes[8])};
}

std::string encode(Header header, std::string_view payload)
{
    std::string bytes;
    bytes.reserve(kHeaderSize + payload.size());
    bytes += kPrologue;
    bytes += static_cast<char>(header.type);
    bytes += static_cast<char>(header.control);
    append(bytes, header.parameter);
    append(bytes, std::uint64_t{payload.size()});
    bytes += payload;
    return bytes;
}

std::string encodeSize(std::uint64_t size)
{
    std::string bytes;
    append(bytes, size);
    return bytes;
}

std::uint64_t parseSize(std::string_view eightBytes)
{
    std::uint64_t size = 0;
    for (const char byte : eightBytes)
        size = size << 8U | static_cast<unsigned char>(byte);
    return size;
}

Finding judge(const Header& header, Channel channel, std::uint16_t version)
{
    if (header.length > kLongestBelievable)
        return {Fatal::PoorlyFormedHeader, {}};
    if (static_cast<std::uint8_t>(header.type) >= kFirstVendorType)
        return {{}, Complaint::UnrecognizedVendorMessage};
    const auto* const row = rowOf(header.type);
    if (!known(row, channel, version))
        return {{}, Complaint::UnrecognizedType};
    if (header.control > row->largestControl)
        return {{}, Complaint::UnrecognizedControlCode};
    return judgeLength(row->payload, header.length);
}

} // namespace kvxvirtual::hislip
