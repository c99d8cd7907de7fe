#pragma once

#include <string>
#include <vector>

namespace command_line
{

/// What the system makes of the name of a host.
struct Resolution
{
    std::vector<std::string> addresses; ///< as numbers; none when the name is not known
    std::string reason;                 ///< why there is none, in the system's words
};

/// Asks the system, which may take as long as its name servers do.
Resolution resolveHost(const std::string& name);

} // namespace command_line
