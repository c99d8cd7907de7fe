#pragma once

#include <cstddef>
#include <string_view>

namespace config_server
{

/// Tells in one pass, without recursion, whether the elements of an XML text are closed and nest at most this deep, so
/// that a recursive parser can be let loose on it. Reads comments, CDATA, processing instructions, DOCTYPE and quoted
/// attributes the way RapidXML does: where the two differed, a file could hide its depth from this check.
bool nestsAtMost(std::string_view xml, std::size_t limit);

} // namespace config_server
