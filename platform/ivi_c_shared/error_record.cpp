#include "platform/ivi_c_shared/error_record.h"

#include "platform/common/string_output.h"

#include <new>
#include <stdexcept>

namespace ivi_c_shared
{
namespace
{

int severity(ViStatus code)
{
    if (code < 0)
        return 2;
    return code > 0 ? 1 : 0;
}

} // namespace

ViStatus ErrorRecord::update(ViStatus code, ViConstString description) noexcept
{
    const bool replaces = severity(code) > severity(code_);
    if (!replaces && (code != code_ || !text_.empty()))
        return IVI_SUCCESS;
    code_ = code;
    text_.clear();
    if (description == nullptr)
        return IVI_SUCCESS;
    try {
        text_ = description;
        return IVI_SUCCESS;
    } catch (const std::bad_alloc&) {
        return IVI_ERROR_OUT_OF_MEMORY;
    } catch (const std::length_error&) {
        return IVI_ERROR_OUT_OF_MEMORY;
    }
}

ViStatus ErrorRecord::take(ViInt32 bufferSize, ViStatus* code, ViChar* description) noexcept
{
    if (platform::lacksBuffer(bufferSize, description))
        return IVI_ERROR_NULL_POINTER;
    if (code != nullptr)
        *code = code_;
    const ViStatus status = platform::putString(text_, bufferSize, description);
    if (bufferSize != 0)
        clear();
    return status;
}

void ErrorRecord::clear() noexcept
{
    code_ = IVI_SUCCESS;
    text_.clear();
}

} // namespace ivi_c_shared
