#pragma once

#include <string>
#include <string_view>

namespace store_tool
{

/// What keeps a text that a virtual name maps to from naming channels of the driver, as the driver's selectors take
/// them: "'OutputChannel9', which is no channel". Empty when nothing does.
std::string problemOfChannels(std::string_view text);

} // namespace store_tool
