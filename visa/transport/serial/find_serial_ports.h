#pragma once

#include <string>
#include <vector>

namespace visa
{

/// Adds the serial ports that are there, by names that viOpen understands: those that variables VISA_ASRL<n> name,
/// then the host's own. No port is opened.
void findSerialPorts(std::vector<std::string>& names);

} // namespace visa
