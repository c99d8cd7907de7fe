#pragma once

#include <IviVisaType.h>

#include <string>
#include <string_view>

namespace command_line
{

/// The name of a status in the driver's header, in VISA's or in the configuration server's; empty when it has none
/// there.
std::string_view statusName(ViStatus status);

/// "0xBFFA4214".
std::string statusNumber(ViStatus status);

/// "0xBFFA4214 KVX2800T_ERROR_IO", or the number alone.
std::string statusText(ViStatus status);

} // namespace command_line
