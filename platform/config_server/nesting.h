#pragma once

#include <cstddef>
#include <string_view>

namespace config_server
{

struct ElementLimits
{
    std::size_t deepest; ///< nesting of elements
    std::size_t most;    ///< elements, attributes, comments and other pieces of markup in all
};

/// Tells in one pass, without recursion or memory of its own, whether the elements of an XML text are closed and it
/// stays within the limits, so that a recursive parser that makes objects of it can be let loose on it. Reads comments,
/// CDATA, processing instructions, DOCTYPE and quoted attributes the way RapidXML does: where the two differed, a file
/// could hide elements from this check.
bool staysWithin(std::string_view xml, const ElementLimits& limits);

} // namespace config_server
