#pragma once

#include <iosfwd>

namespace store_tool
{

/// The program: does what the command line asks for. @return one of exit_codes.h
int runTool(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& errors);

} // namespace store_tool
