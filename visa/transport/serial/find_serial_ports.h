#pragma once

#include <string>
#include <vector>

namespace visa
{

/// The serial ports that are there, by names that viOpen understands: those that variables VISA_ASRL<n> name,
/// then the host's own. No port is opened.
std::vector<std::string> findSerialPorts();

} // namespace visa
