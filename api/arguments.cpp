#include "api/arguments.h"

#include "runtime/error_messages.h"
#include "runtime/text_list.h"

namespace api
{

void copyText(ViChar buffer[], std::size_t bufferSize, std::string_view text)
{
    const std::string_view shown = text.substr(0, text.find('\0'));
    const std::size_t count = shown.copy(buffer, bufferSize - 1);
    buffer[count] = '\0';
}

ViStatus reportNullPointer(ViSession vi, std::string_view function, std::string_view parameters, std::size_t position)
{
    const std::string_view parameter = drivekit::listEntry(parameters, position).value_or("<unknown parameter>");
    return drivekit::ReportError(vi, base::kErrorNullPointer, {function, parameter});
}

} // namespace api
