#include "tools/common/tool_main.h"

#include "tools/kvx2800t/command_line/platform/terminal.h"
#include "tools/kvx2800t/command_line/tool.h"

#include <iostream>

int toolMain(int argumentCount, const char* const* arguments)
{
    command_line::Console console{std::cin, std::cout, std::cerr, command_line::inputIsTerminal(),
                                  command_line::outputIsTerminal()};
    return command_line::runTool(argumentCount, arguments, console);
}
