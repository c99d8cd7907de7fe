#pragma once

#include <visa.h>

#include <string_view>

namespace visa
{

/// The meaning of a status code in English; empty for a code that VISA does not define.
std::string_view statusText(ViStatus status);

} // namespace visa
