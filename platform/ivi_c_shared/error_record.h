#pragma once

#include <IviCShared.h>

#include <string>

namespace ivi_c_shared
{

/// One status with its text, kept for a session or for a thread. Its owner serialises access.
class ErrorRecord
{
public:
    /// Takes the status when it is more severe than the one kept (error over warning over success); the text of an
    /// equal status fills an empty text in. The first error wins.
    /// @param description may be null: no text
    /// @return IVI_ERROR_OUT_OF_MEMORY when the status was kept without its text
    ViStatus update(ViStatus code, ViConstString description) noexcept;

    /// Hands out status and text by the ViChar[] rules and clears the record unless bufferSize is 0.
    /// @param code may be null
    ViStatus take(ViInt32 bufferSize, ViStatus* code, ViChar* description) noexcept;

    void clear() noexcept;

private:
    ViStatus code_ = IVI_SUCCESS;
    std::string text_;
};

} // namespace ivi_c_shared
