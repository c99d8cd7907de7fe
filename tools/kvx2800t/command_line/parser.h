#pragma once

#include "tools/kvx2800t/command_line/command.h"

#include <iosfwd>

namespace command_line
{

/// The command that was asked for, or none when the program has said all (help, version, a complaint).
struct ParsedCommandLine
{
    const Command* command = nullptr;
    Arguments arguments;
    bool isComplaint = false;
};

/// Reads a command line by the table of commands. Its own output is help and version, to `out`, and complaints, to
/// `errors`.
ParsedCommandLine parseCommandLine(int argumentCount, const char* const* arguments, std::ostream& out,
                                   std::ostream& errors);

} // namespace command_line
