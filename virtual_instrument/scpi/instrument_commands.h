#pragma once

#include "virtual_instrument/scpi/command.h"

#include <vector>

namespace kvxvirtual
{

/// The commands of the instrument, its channels and their outputs.
std::vector<Command> instrumentCommands();

} // namespace kvxvirtual
