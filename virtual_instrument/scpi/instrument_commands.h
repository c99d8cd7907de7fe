#pragma once

#include "virtual_instrument/scpi/command.h"

#include <span>

namespace kvxvirtual
{

/// The commands of the instrument, its channels and their outputs.
std::span<const Command> instrumentCommands();

} // namespace kvxvirtual
