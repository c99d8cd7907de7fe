#pragma once

#include <visa.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>

namespace visa
{

/// What ends a read before its count is reached, for one operation.
struct EndRule
{
    std::optional<ViByte> endByte;  ///< this byte carries END
    ViByte endMask = 0;             ///< a byte with any of these bits carries END
    std::optional<ViByte> termByte; ///< the termination character
};

struct EndPoint
{
    std::size_t length;  ///< bytes up to and including the one that ends the read
    ViStatus completion; ///< VI_SUCCESS for END, VI_SUCCESS_TERM_CHAR for the termination character
};

/// Index of the byte, or the size when there is none.
inline std::size_t indexOf(std::span<const ViByte> bytes, std::optional<ViByte> wanted)
{
    if (!wanted || bytes.empty())
        return bytes.size();
    const void* const found = std::memchr(bytes.data(), *wanted, bytes.size());
    return found == nullptr ? bytes.size() : static_cast<std::size_t>(static_cast<const ViByte*>(found) - bytes.data());
}

inline std::size_t indexOfMasked(std::span<const ViByte> bytes, ViByte mask)
{
    if (mask == 0)
        return bytes.size();
    const auto found = std::find_if(bytes.begin(), bytes.end(), [mask](ViByte byte) { return (byte & mask) != 0; });
    return static_cast<std::size_t>(found - bytes.begin());
}

/// Finds the first byte that ends a read. END wins over the termination character (VPP-4.3 rules 6.1.1 to 6.1.7).
inline std::optional<EndPoint> findEnd(std::span<const ViByte> bytes, const EndRule& rule)
{
    const std::size_t term = indexOf(bytes, rule.termByte);
    if (rule.endByte || rule.endMask != 0) [[unlikely]] {
        const std::size_t end = std::min(indexOf(bytes, rule.endByte), indexOfMasked(bytes, rule.endMask));
        if (end < bytes.size() && end <= term)
            return EndPoint{end + 1, VI_SUCCESS};
    }
    if (term == bytes.size())
        return std::nullopt;
    return EndPoint{term + 1, VI_SUCCESS_TERM_CHAR};
}

} // namespace visa
