#pragma once

#include <visa.h>

#include <cstddef>
#include <cstdint>

namespace visa
{

/// The bytes of a number in XDR and in the marks of records.
inline constexpr std::size_t kWordBytes = 4;

// Written out, as compilers make one instruction of each only so.

inline std::uint32_t wordAt(const ViByte* bytes)
{
    return std::uint32_t{bytes[0]} << 24U | std::uint32_t{bytes[1]} << 16U | std::uint32_t{bytes[2]} << 8U |
           std::uint32_t{bytes[3]};
}

inline void putWord(ViByte* bytes, std::uint32_t word)
{
    bytes[0] = static_cast<ViByte>(word >> 24U);
    bytes[1] = static_cast<ViByte>(word >> 16U);
    bytes[2] = static_cast<ViByte>(word >> 8U);
    bytes[3] = static_cast<ViByte>(word);
}

} // namespace visa
