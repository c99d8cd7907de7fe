#include "tools/store/tool.h"

#include <iostream>

int main(int argumentCount, char** arguments)
{
    return store_tool::runTool(argumentCount, arguments, std::cout, std::cerr);
}
