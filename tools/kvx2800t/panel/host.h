#pragma once

#include <string>
#include <vector>

/// What the panel needs of the host.
namespace panel
{

/// Asks the desktop to show an address in a browser; where there is none, nothing happens. Does not wait for it.
void openBrowser(const std::string& address);

/// The signals by which users end a program.
std::vector<int> stopSignals();

} // namespace panel
