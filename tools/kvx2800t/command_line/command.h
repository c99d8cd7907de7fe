#pragma once

#include "tools/kvx2800t/command_line/arguments.h"
#include "tools/kvx2800t/command_line/console.h"

#include <span>
#include <string_view>

namespace command_line
{

/// An option of a command. One without the name of a value is a switch.
struct Option
{
    std::string_view name; ///< "--cycles", with a short name "-r,--resource"
    std::string_view value;
    std::string_view meaning;
    const char* environment = nullptr; ///< the variable that stands for it
};

/// How often a positional argument is given.
enum class Occurrence
{
    Once,
    AtMostOnce,
    OnceOrMore,
    AnyTimes
};

struct Positional
{
    std::string_view name;
    std::string_view meaning;
    Occurrence occurrence = Occurrence::Once;
};

/// A command of the program. Parser, help, manual page and completion are made of the table of these.
struct Command
{
    std::string_view name; ///< "list run" is the command `run` of the group `list`
    std::string_view summary;
    std::span<const Positional> positionals;
    std::span<const std::span<const Option>> options; ///< several lists, so that commands can share some
    void (*run)(const Arguments& arguments, Console& console) = nullptr; ///< fails with a Failure or a kvx2800t::Error
};

/// Commands that have something in common: those of a group have its name in front.
struct Group
{
    std::string_view name;
    std::string_view summary;
};

std::span<const Command> commandTable();
std::span<const Group> groupTable();

} // namespace command_line
