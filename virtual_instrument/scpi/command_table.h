#pragma once

#include "virtual_instrument/scpi/command.h"

#include <string>
#include <vector>

namespace kvxvirtual
{

/// Every command of the instrument, in the order in which the list shows them.
const std::vector<Command>& commandTable();

/// The table as Markdown, one row for each command.
std::string commandTableAsMarkdown();

} // namespace kvxvirtual
