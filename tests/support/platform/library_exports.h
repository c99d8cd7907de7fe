#pragma once

#include <string>
#include <vector>

namespace kvxtest
{

/// The names that a shared library exports, of functions and of anything else; none when it cannot be read.
std::vector<std::string> exportsOf(const std::string& library);

} // namespace kvxtest
