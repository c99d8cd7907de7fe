#pragma once

#include <string>
#include <vector>

namespace kvxtest
{

/// What the program has said and how it ended.
struct Outcome
{
    int exitCode;
    std::string output;
    std::string errors;
};

/// Where kvx2800t-store is.
std::string storeToolPath();

/// Runs kvx2800t-store to its end.
Outcome runStoreTool(const std::vector<std::string>& arguments);

/// The same from the shell of POSIX, with redirections such as `>/dev/full`.
Outcome runStoreToolInShell(const std::vector<std::string>& arguments, const std::string& redirections);

} // namespace kvxtest
