#pragma once

#include <IviVisaType.h>

#include <optional>
#include <string_view>

namespace config_server
{

// The values of a store file. Each gives 0 for an empty text, and nothing for one that it cannot read. None depends on
// the process's locale.

/// A flag: 0, 1, false or true.
std::optional<ViBoolean> parseFlag(std::string_view text);

/// A decimal number of 32 bits with an optional sign.
std::optional<ViInt32> parseInteger(std::string_view text);

/// A finite decimal number with an optional sign, fraction and exponent.
std::optional<ViReal64> parseReal(std::string_view text);

} // namespace config_server
