#pragma once

#include "virtual_instrument/scpi/command.h"

#include <span>

namespace kvxvirtual
{

// The commands of the list and delay programs, which all act on the selected channel.
std::span<const Command> listProgramCommands();
std::span<const Command> listTemplateCommands();
std::span<const Command> delayProgramCommands();
std::span<const Command> delayGeneratorCommands();

} // namespace kvxvirtual
