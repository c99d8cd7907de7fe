#pragma once

#include <string>
#include <vector>

namespace visa
{

/// Where a host tells of its serial ports.
struct SerialPlaces
{
    std::string devices = "/dev";
    std::string facts = "/sys/class/tty"; ///< a folder for each device
    const char* const* environment = nullptr;
};

/// The ports of these places:
///     ASRL<n>::INSTR            the device of VISA_ASRL<n>
///     ASRL<n+1>::INSTR          ttyS<n>, unless VISA_ASRL<n+1> is set
///     ASRL/dev/<name>::INSTR    other ports
/// A device has one name. Left out are variables whose device is not there, and ttyS<n> that have no hardware, of which
/// Linux has some ready.
std::vector<std::string> serialPortNames(const SerialPlaces& places);

} // namespace visa
