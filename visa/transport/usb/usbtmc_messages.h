#pragma once

#include "visa/transport/usb/usb_interface.h"

#include <visa.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// The messages and requests of USBTMC 1.0 and USB488 as bytes.
namespace visa::usbtmc
{

inline constexpr std::uint8_t kInterfaceClass = 0xFE;
inline constexpr std::uint8_t kInterfaceSubclass = 0x03;
inline constexpr std::uint8_t kUsb488Protocol = 1;

inline constexpr std::size_t kHeaderSize = 12;
inline constexpr std::size_t kAlignment = 4;

enum class MessageId : std::uint8_t
{
    DeviceDependentOut = 1,
    RequestDeviceDependentIn = 2,
    DeviceDependentIn = 2,
    Trigger = 128
};

enum class Request : std::uint8_t
{
    InitiateAbortBulkOut = 1,
    CheckAbortBulkOutStatus = 2,
    InitiateAbortBulkIn = 3,
    CheckAbortBulkInStatus = 4,
    InitiateClear = 5,
    CheckClearStatus = 6,
    GetCapabilities = 7,
    ReadStatusByte = 128,
    RenControl = 160,
    GoToLocal = 161,
    LocalLockout = 162
};

/// The first byte of what a device answers to a request.
enum class Status : std::uint8_t
{
    Success = 0x01,
    Pending = 0x02,
    InterruptInBusy = 0x20,
    Failed = 0x80,
    TransferNotInProgress = 0x81,
    SplitNotInProgress = 0x82,
    SplitInProgress = 0x83
};

/// @return VI_ERROR_IO for any status of failure, VI_ERROR_INP_PROT_VIOL for one that means nothing
ViStatus visaStatus(Status status);
ViStatus visaStatus(TransferOutcome outcome);

using Header = std::array<ViByte, kHeaderSize>;

/// Tags mark the messages in turn, 1 to 255; those of status bytes go from 2 to 127.
ViByte nextMessageTag(ViByte tag);
ViByte nextStatusTag(ViByte tag);

Header deviceDependentOut(ViByte tag, std::uint32_t size, bool endsMessage);
Header requestDeviceDependentIn(ViByte tag, std::uint32_t size, std::optional<ViByte> termChar);
Header trigger(ViByte tag);

/// The size of a message with so much data, padded.
std::size_t paddedSize(std::size_t dataSize);

/// What a transfer from the device holds.
struct Reply
{
    ViStatus status = VI_SUCCESS; ///< VI_ERROR_INP_PROT_VIOL where it is no answer to the request
    std::span<const ViByte> data{};
    bool endsMessage = false;
};

/// Takes a transfer apart that answers the request with this tag for so many bytes. Of one that breaks the rules the
/// data is what can be told from it: none without a valid header, otherwise what has come of it.
Reply parseReply(std::span<const ViByte> transfer, ViByte tag, std::size_t asked);

/// The tag of the request that a transfer answers; nothing without a valid header.
std::optional<ViByte> tagOf(std::span<const ViByte> transfer);

/// What the device can do beyond moving messages.
struct Capabilities
{
    bool endsAtTermChar = false;
    bool is4882 = false;
    bool hasRemoteLocal = false;
    bool hasTrigger = false;
};

/// @param answer that of GetCapabilities, possibly too short
/// @param protocol of the interface: only USB488 has the last three
Capabilities parseCapabilities(std::span<const ViByte> answer, std::uint8_t protocol);

} // namespace visa::usbtmc
