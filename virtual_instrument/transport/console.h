#pragma once

#include <string_view>
#include <vector>

namespace kvxvirtual
{

/// The signals that ask a program to end: Ctrl-C and what this host's service managers and consoles send.
std::vector<int> stopSignals();

/// Lets the standard outputs have line feeds alone, whatever this host puts at the end of a line.
void writePlainLineFeeds();

/// Lets a standard output whose reader has gone lose what is written, and not end the program.
void outliveReaders();

enum class StandardOutput
{
    Output,
    Errors
};

/// Writes all of the bytes, for as long as that takes; drops them when that is not possible any more.
void writeTo(StandardOutput output, std::string_view bytes);

} // namespace kvxvirtual
