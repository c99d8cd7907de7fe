#pragma once

#include "tools/kvx2800t/command_line/console.h"

namespace command_line
{

/// The program: does what the command line asks for. @return one of exit_codes.h
int runTool(int argumentCount, const char* const* arguments, Console& console);

} // namespace command_line
