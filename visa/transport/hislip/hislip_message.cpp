#include "visa/transport/hislip/hislip_message.h"

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

constexpr ViByte kPrologue[]{'H', 'S'};

template <class Number>
void store(Number number, std::span<ViByte> bytes)
{
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number = static_cast<Number>(number >> 8U))
        *byte = static_cast<ViByte>(number & 0xFFU);
}

template <class Number>
Number load(std::span<const ViByte> bytes)
{
    Number number = 0;
    for (const ViByte byte : bytes)
        number = static_cast<Number>(number << 8U | byte);
    return number;
}

/// By the number of the type.
constexpr std::array<HislipSender, kHislipTypes> kSenders{{
    HislipSender::Nowhere,      // Initialize
    HislipSender::Synchronous,  // InitializeResponse
    HislipSender::Either,       // FatalError
    HislipSender::Either,       // Error
    HislipSender::Nowhere,      // AsyncLock
    HislipSender::Asynchronous, // AsyncLockResponse
    HislipSender::Synchronous,  // Data
    HislipSender::Synchronous,  // DataEND
    HislipSender::Nowhere,      // DeviceClearComplete
    HislipSender::Synchronous,  // DeviceClearAcknowledge
    HislipSender::Nowhere,      // AsyncRemoteLocalControl
    HislipSender::Asynchronous, // AsyncRemoteLocalResponse
    HislipSender::Nowhere,      // Trigger
    HislipSender::Synchronous,  // Interrupted
    HislipSender::Asynchronous, // AsyncInterrupted
    HislipSender::Nowhere,      // AsyncMaximumMessageSize
    HislipSender::Asynchronous, // AsyncMaximumMessageSizeResponse
    HislipSender::Nowhere,      // AsyncInitialize
    HislipSender::Asynchronous, // AsyncInitializeResponse
    HislipSender::Nowhere,      // AsyncDeviceClear
    HislipSender::Asynchronous, // AsyncServiceRequest
    HislipSender::Nowhere,      // AsyncStatusQuery
    HislipSender::Asynchronous, // AsyncStatusResponse
    HislipSender::Asynchronous, // AsyncDeviceClearAcknowledge
    HislipSender::Nowhere,      // AsyncLockInfo
    HislipSender::Asynchronous, // AsyncLockInfoResponse
}};

/// By the code; codes beyond these are the device's own, or of a later version.
constexpr std::array<ViStatus, 6> kFatalErrors{{
    VI_ERROR_IO,             // unidentified
    VI_ERROR_OUTP_PROT_VIOL, // poorly formed message header
    VI_ERROR_OUTP_PROT_VIOL, // a message before both channels were established
    VI_ERROR_RSRC_NFOUND,    // invalid initialization sequence: there is no such device
    VI_ERROR_RSRC_BUSY,      // too many clients
    VI_ERROR_INV_PROT,       // secure connection failed
}};
constexpr std::array<ViStatus, 6> kErrors{{
    VI_ERROR_IO,             // unidentified
    VI_ERROR_NSUP_OPER,      // unrecognized message type
    VI_ERROR_NSUP_OPER,      // unrecognized control code
    VI_ERROR_NSUP_OPER,      // unrecognized vendor defined message
    VI_ERROR_OUTP_PROT_VIOL, // message too large
    VI_ERROR_INV_PROT,       // authentication failed
}};
/// Failure, success, success with a shared lock, error: what has been asked for is held already, or is not held.
constexpr std::array<ViStatus, 4> kLocks{{VI_ERROR_TMO, VI_SUCCESS, VI_ERROR_IO, VI_ERROR_RSRC_LOCKED}};
constexpr std::array<ViStatus, 4> kUnlocks{{VI_ERROR_IO, VI_SUCCESS, VI_SUCCESS, VI_ERROR_SESN_NLOCKED}};

template <std::size_t size>
ViStatus statusIn(const std::array<ViStatus, size>& statuses, ViByte code)
{
    return code < size ? statuses[code] : VI_ERROR_IO;
}

} // namespace

void encode(const HislipHeader& header, std::span<ViByte, kHislipHeaderSize> bytes)
{
    std::copy(std::begin(kPrologue), std::end(kPrologue), bytes.begin());
    bytes[2] = static_cast<ViByte>(header.type);
    bytes[3] = header.control;
    store(header.parameter, bytes.subspan(4, 4));
    store(header.length, bytes.subspan(8, 8));
}

std::optional<HislipHeader> decode(std::span<const ViByte, kHislipHeaderSize> bytes)
{
    const HislipHeader header{static_cast<HislipType>(bytes[2]), bytes[3], load<std::uint32_t>(bytes.subspan(4, 4)),
                              load<std::uint64_t>(bytes.subspan(8, 8))};
    if (!std::equal(std::begin(kPrologue), std::end(kPrologue), bytes.begin()) || header.length > kLongestHislipPayload)
        return std::nullopt;
    return header;
}

void encodeSize(std::uint64_t size, std::span<ViByte, sizeof(std::uint64_t)> bytes)
{
    store(size, bytes);
}

std::uint64_t decodeSize(std::span<const ViByte, sizeof(std::uint64_t)> bytes)
{
    return load<std::uint64_t>(bytes);
}

HislipSender sentOn(HislipType type)
{
    const auto number = static_cast<std::size_t>(type);
    return number < kSenders.size() ? kSenders[number] : HislipSender::Nowhere;
}

ViStatus statusOfFatalError(ViByte code)
{
    return statusIn(kFatalErrors, code);
}

ViStatus statusOfError(ViByte code)
{
    return statusIn(kErrors, code);
}

ViStatus statusOfLock(ViByte control)
{
    return statusIn(kLocks, control);
}

ViStatus statusOfUnlock(ViByte control)
{
    return statusIn(kUnlocks, control);
}

} // namespace visa
