#pragma once

#include <visa.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace visa
{

// The messages of HiSLIP (IVI-6.1) as a client without encryption knows them.

enum class HislipType : ViByte
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
};
inline constexpr std::size_t kHislipTypes = 26;

struct HislipHeader
{
    HislipType type{};
    ViByte control = 0;
    std::uint32_t parameter = 0;
    std::uint64_t length = 0; ///< of the payload
};

inline constexpr std::size_t kHislipHeaderSize = 16;

/// A longer payload is that of a stream which is out of step, or of a device that lies.
inline constexpr std::uint64_t kLongestHislipPayload = std::uint64_t{1} << 32;

void encode(const HislipHeader& header, std::span<ViByte, kHislipHeaderSize> bytes);

/// @return nothing when these bytes begin no message
std::optional<HislipHeader> decode(std::span<const ViByte, kHislipHeaderSize> bytes);

void encodeSize(std::uint64_t size, std::span<ViByte, sizeof(std::uint64_t)> bytes);
std::uint64_t decodeSize(std::span<const ViByte, sizeof(std::uint64_t)> bytes);

/// Where a device sends a message.
enum class HislipSender
{
    Nowhere, ///< a client's message, or none of the protocol's
    Synchronous,
    Asynchronous,
    Either
};
HislipSender sentOn(HislipType type);

/// What the device complains of.
inline constexpr ViByte kPoorlyFormedHeader = 1;     ///< FatalError
inline constexpr ViByte kUnrecognizedType = 1;       ///< Error
inline constexpr ViByte kUnrecognizedVendorType = 3; ///< Error
inline constexpr ViByte kFirstVendorType = 128;

/// What the device's FatalError and Error mean to VISA, by their code.
ViStatus statusOfFatalError(ViByte code);
ViStatus statusOfError(ViByte code);

/// The answer to a lock's request and release, by its control code.
ViStatus statusOfLock(ViByte control);
ViStatus statusOfUnlock(ViByte control);

} // namespace visa
