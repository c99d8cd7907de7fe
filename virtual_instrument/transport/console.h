#pragma once

#include <vector>

namespace kvxvirtual
{

/// The signals that ask a program to end: Ctrl-C and what this host's service managers and consoles send.
std::vector<int> stopSignals();

/// Lets the standard outputs have line feeds alone, whatever this host puts at the end of a line.
void writePlainLineFeeds();

} // namespace kvxvirtual
