#pragma once

#include <IviVisaType.h>

#include <cstddef>
#include <string_view>

/// What exported functions do with the pointers they are given.
namespace api
{

/// The size that callers give a text buffer whose size is no argument (IVI-3.2 section 3.1.2.1).
inline constexpr std::size_t kTextBufferSize = 256;

/// Copies as much of `text` as the buffer holds in front of a NUL, up to a NUL of its own; writes no byte behind the
/// NUL.
void copyText(ViChar buffer[], std::size_t bufferSize, std::string_view text);

/// Hands a text to a caller's buffer (IVI-3.2 section 3.1.2.1): size 0 asks for the size that is needed, a negative
/// size promises enough room, a text that does not fit is cut. 0, or the size needed for the text and its NUL when it
/// did not fit.
ViStatus giveText(std::string_view text, ViInt32 bufferSize, ViChar buffer[]);

/// Records that the pointer at `position` of a function's `parameters`, a comma-separated list of names, is null.
ViStatus reportNullPointer(ViSession vi, std::string_view function, std::string_view parameters, std::size_t position);

/// Checks the pointers of a function in the order of its list of parameter names. 0, or the recorded status.
template <class... Pointers>
ViStatus checkPointers(ViSession vi, std::string_view function, std::string_view parameters,
                       const Pointers*... pointers)
{
    std::size_t position = 0;
    const bool allThere = ((pointers != nullptr && ++position != 0) && ...);
    return allThere ? VI_SUCCESS : reportNullPointer(vi, function, parameters, position);
}

} // namespace api
