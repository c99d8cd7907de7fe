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

ViStatus giveText(std::string_view text, ViInt32 bufferSize, ViChar buffer[])
{
    const std::size_t needed = text.size() + 1;
    const std::size_t room = bufferSize < 0 ? needed : static_cast<std::size_t>(bufferSize);
    if (room > 0)
        copyText(buffer, room, text);
    return room < needed ? static_cast<ViStatus>(needed) : VI_SUCCESS;
}

ViStatus reportNullPointer(ViSession vi, std::string_view function, std::string_view parameters, std::size_t position)
{
    const std::string_view parameter = drivekit::listEntry(parameters, position).value_or("<unknown parameter>");
    return drivekit::ReportError(vi, base::kErrorNullPointer, {function, parameter});
}

} // namespace api
