#pragma once

#include <cstdint>

namespace kvxtest
{

/// The programs of VXI-11 and the procedures of the core channel, by their numbers.
constexpr std::uint32_t kCoreProgram = 0x0607AF;
constexpr std::uint32_t kAbortProgram = 0x0607B0;

enum Procedure : std::uint32_t
{
    kCreateLink = 10,
    kWrite = 11,
    kRead = 12,
    kReadStb = 13,
    kTrigger = 14,
    kClear = 15,
    kRemote = 16,
    kLocal = 17,
    kLock = 18,
    kUnlock = 19,
    kEnableSrq = 20,
    kDocmd = 22,
    kDestroyLink = 23,
    kCreateIntrChan = 25,
    kDestroyIntrChan = 26
};

} // namespace kvxtest
