#pragma once

#include <visa.h>

#include <cstddef>
#include <cstdint>

namespace visa
{

/// The bytes of a number in XDR and in the marks of records.
inline constexpr std::size_t kWordBytes = 4;

inline std::uint32_t wordAt(const ViByte* bytes)
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < kWordBytes; ++i)
        word = word << 8U | bytes[i];
    return word;
}

inline void putWord(ViByte* bytes, std::uint32_t word)
{
    for (std::size_t i = 0; i < kWordBytes; ++i)
        bytes[i] = static_cast<ViByte>(word >> (8 * (kWordBytes - 1 - i)));
}

} // namespace visa
