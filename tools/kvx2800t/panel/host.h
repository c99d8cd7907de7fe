#pragma once

#include <string>
#include <vector>

/// What the panel needs of the host.
namespace panel
{

/// Asks the desktop to show an address in a browser; where there is none, nothing happens. Does not wait for it.
void openBrowser(const std::string& address);

/// Reads and drops the standard input until its end. Past the C library, whose streams a waiting thread would hold
/// locked while the program ends.
void drainInput() noexcept;

/// The signals by which users end a program.
std::vector<int> stopSignals();

} // namespace panel
