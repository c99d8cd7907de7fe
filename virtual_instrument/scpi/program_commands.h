#pragma once

#include "virtual_instrument/scpi/command.h"

#include <vector>

namespace kvxvirtual
{

/// The commands of the list and delay programs, which all act on the selected channel.
std::vector<Command> programCommands();

} // namespace kvxvirtual
