#pragma once

#include <cstddef>
#include <cstdint>

namespace kvxvirtual::vxi11
{

// What the protocol says (VXI-11), with its numbers.

inline constexpr std::uint32_t kCoreProgram = 0x0607AF;
inline constexpr std::uint32_t kAbortProgram = 0x0607B0;
inline constexpr std::uint32_t kVersion = 1;

enum class CoreProcedure : std::uint32_t
{
    CreateLink = 10,
    DeviceWrite = 11,
    DeviceRead = 12,
    DeviceReadStb = 13,
    DeviceTrigger = 14,
    DeviceClear = 15,
    DeviceRemote = 16,
    DeviceLocal = 17,
    DeviceLock = 18,
    DeviceUnlock = 19,
    DeviceEnableSrq = 20,
    DeviceDocmd = 22,
    DestroyLink = 23,
    CreateIntrChan = 25,
    DestroyIntrChan = 26,
};

inline constexpr std::uint32_t kDeviceAbort = 1;
inline constexpr std::uint32_t kDeviceIntrSrq = 30;

enum class DeviceError : std::uint32_t
{
    None = 0,
    Syntax = 1,
    NotAccessible = 3,
    InvalidLink = 4,
    Parameter = 5,
    ChannelNotEstablished = 6,
    NotSupported = 8,
    OutOfResources = 9,
    Locked = 11,
    NoLockHeld = 12,
    Timeout = 15,
    InputOutput = 17,
    InvalidAddress = 21,
    Abort = 23,
    ChannelAlreadyEstablished = 29,
};

namespace flag
{
inline constexpr std::uint32_t kWaitLock = 0x01;
inline constexpr std::uint32_t kEnd = 0x08;
inline constexpr std::uint32_t kTermChar = 0x80;
} // namespace flag

namespace reason
{
inline constexpr std::uint32_t kCount = 1;
inline constexpr std::uint32_t kTermChar = 2;
inline constexpr std::uint32_t kEnd = 4;
} // namespace reason

inline constexpr std::uint32_t kInternetTcp = 0;

inline constexpr std::size_t kLongestDevice = 256;
inline constexpr std::size_t kLongestHandle = 40;
/// What the server says that it takes of data in one write.
inline constexpr std::size_t kMostReceived = std::size_t{1} << 20;

} // namespace kvxvirtual::vxi11
