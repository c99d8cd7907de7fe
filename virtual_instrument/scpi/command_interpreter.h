#pragma once

#include "virtual_instrument/scpi/command.h"
#include "virtual_instrument/scpi/message_parser.h"

#include <optional>
#include <string>
#include <vector>

namespace kvxvirtual
{

/// Executes every unit in turn by the command table; one that fails is reported in the error queue and does not keep
/// the others from being executed. Returns the replies of the queries that succeeded, joined by ";" (IEEE 488.2),
/// without a line end, or nothing when there is none.
std::optional<std::string> execute(const std::vector<MessageUnit>& units, InstrumentState& state);

} // namespace kvxvirtual
