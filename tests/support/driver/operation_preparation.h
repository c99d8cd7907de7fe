#pragma once

#include <string>
#include <vector>

namespace kvxtest
{

/// The messages that an instrument after a reset needs before an operation of the table, by its name, makes sense to
/// it.
const std::vector<std::string>& preparationOf(const std::string& operation);

} // namespace kvxtest
