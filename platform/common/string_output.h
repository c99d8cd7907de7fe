#pragma once

#include <IviVisaType.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace platform
{

/// True when the caller gave no buffer although a size other than 0 promises one.
inline bool lacksBuffer(ViInt32 bufferSize, const ViChar* buffer)
{
    return bufferSize != 0 && buffer == nullptr;
}

/// Hands a text to a caller's buffer by the ViChar[] rules of IVI-3.2 section 3.1.2.1: size 0 asks for the size needed,
/// a negative size promises enough room, a short buffer receives the beginning of the text. The buffer is always
/// terminated.
/// @return VI_SUCCESS, or the size needed (terminator included) when the text did not fit
inline ViStatus putString(std::string_view text, ViInt32 bufferSize, ViChar* buffer)
{
    constexpr std::size_t kLargest = std::numeric_limits<ViInt32>::max();
    const std::size_t needed = text.size() + 1;
    const std::size_t room = bufferSize < 0 ? needed : static_cast<std::size_t>(bufferSize);
    if (room > 0)
        buffer[text.copy(buffer, room - 1)] = '\0';
    return room >= needed ? VI_SUCCESS : static_cast<ViStatus>(std::min(needed, kLargest));
}

} // namespace platform
