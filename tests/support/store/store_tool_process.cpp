#include "tests/support/store/store_tool_process.h"

#include "tests/support/processes/child_process.h"

namespace kvxtest
{

Outcome runStoreTool(const std::vector<std::string>& arguments)
{
    ChildProcess program(KVX_STORE_TOOL, arguments);
    std::string output;
    while (const auto line = program.readLine())
        output += *line + '\n';
    const int exitCode = program.wait();
    return {exitCode, output, program.errorOutput()};
}

} // namespace kvxtest
