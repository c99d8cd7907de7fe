#pragma once

#include "tools/store/session_entry.h"

#include <iosfwd>
#include <optional>
#include <string>

namespace store_tool
{

enum class Command
{
    List,
    Add,
    Remove,
    RemoveLogicalName,
    Check,
    Register,
    Unregister
};

/// What the command line asks for.
struct Request
{
    Command command = Command::List;
    std::optional<std::string> store; ///< path; without one, that of the configuration server
    std::string name;                 ///< to be removed
    SessionEntry entry;               ///< to be added
    bool replaces = false;
    bool creates = false;
};

/// The request, or nothing when the program has said all (help, version, a complaint) and is to end with `exitCode`.
struct CommandLine
{
    std::optional<Request> request;
    int exitCode = 0;
};

CommandLine parseCommandLine(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& errors);

} // namespace store_tool
