#pragma once

#include <string_view>

namespace store_tool
{

/// True for a text that is meant as a VISA resource name, but fits none of their forms. Anything else may be an alias.
bool isMalformedDescriptor(std::string_view text);

} // namespace store_tool
