#include "visa/transport/end_finder.h"

#include <algorithm>
#include <cstring>

namespace visa
{
namespace
{

/// Index of the byte, or the size when there is none.
std::size_t indexOf(std::span<const ViByte> bytes, std::optional<ViByte> wanted)
{
    if (!wanted || bytes.empty())
        return bytes.size();
    const void* const found = std::memchr(bytes.data(), *wanted, bytes.size());
    return found == nullptr ? bytes.size() : static_cast<std::size_t>(static_cast<const ViByte*>(found) - bytes.data());
}

std::size_t indexOfMasked(std::span<const ViByte> bytes, ViByte mask)
{
    if (mask == 0)
        return bytes.size();
    const auto found = std::find_if(bytes.begin(), bytes.end(), [mask](ViByte byte) { return (byte & mask) != 0; });
    return static_cast<std::size_t>(found - bytes.begin());
}

} // namespace

std::optional<EndPoint> findEnd(std::span<const ViByte> bytes, const EndRule& rule)
{
    const std::size_t end = std::min(indexOf(bytes, rule.endByte), indexOfMasked(bytes, rule.endMask));
    const std::size_t term = indexOf(bytes, rule.termByte);
    if (std::min(end, term) == bytes.size())
        return std::nullopt;
    return end <= term ? EndPoint{end + 1, VI_SUCCESS} : EndPoint{term + 1, VI_SUCCESS_TERM_CHAR};
}

} // namespace visa
