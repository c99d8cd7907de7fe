#pragma once

#include <string>
#include <system_error>

namespace kvxvirtual
{

/// Why a transport could not be had, in the words of every host where they are known.
std::string messageOf(const std::error_code& error);

} // namespace kvxvirtual
