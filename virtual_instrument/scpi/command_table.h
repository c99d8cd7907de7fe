#pragma once

#include "virtual_instrument/scpi/command.h"

#include <array>
#include <span>
#include <string>

namespace kvxvirtual
{

/// The table of the commands in its parts, all of them constants.
using CommandTable = std::array<std::span<const Command>, 5>;

/// Every command of the instrument, in the order in which the list shows them.
CommandTable commandTable();

/// The table as Markdown, one row for each command.
std::string commandTableAsMarkdown();

} // namespace kvxvirtual
