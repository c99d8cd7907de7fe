#include "tools/common/tool_main.h"

#include "tools/store/tool.h"

#include <iostream>

int toolMain(int argumentCount, const char* const* arguments)
{
    return store_tool::runTool(argumentCount, arguments, std::cout, std::cerr);
}
