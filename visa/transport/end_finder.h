#pragma once

#include <visa.h>

#include <cstddef>
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

/// Finds the first byte that ends a read. END wins over the termination character (VPP-4.3 rules 6.1.1 to 6.1.7).
std::optional<EndPoint> findEnd(std::span<const ViByte> bytes, const EndRule& rule);

} // namespace visa
