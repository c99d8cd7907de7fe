#include "tests/support/store/store_tool_process.h"

#include "tests/support/processes/child_process.h"

namespace kvxtest
{
namespace
{

Outcome run(const std::string& path, const std::vector<std::string>& arguments)
{
    ChildProcess program(path, arguments);
    std::string output;
    while (const auto line = program.readLine())
        output += *line + '\n';
    const int exitCode = program.wait();
    return {exitCode, output, program.errorOutput()};
}

} // namespace

std::string storeToolPath()
{
    return KVX_STORE_TOOL;
}

Outcome runStoreTool(const std::vector<std::string>& arguments)
{
    return run(KVX_STORE_TOOL, arguments);
}

Outcome runStoreToolInShell(const std::vector<std::string>& arguments, const std::string& redirections)
{
    // Of a pipeline, the exit code of the program.
    std::vector<std::string> all{"-c", R"(set -o pipefail; "$0" "$@" )" + redirections, KVX_STORE_TOOL};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return run("/bin/bash", all);
}

} // namespace kvxtest
