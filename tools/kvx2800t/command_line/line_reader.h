#pragma once

#include "tools/kvx2800t/command_line/console.h"

#include <optional>
#include <string>

namespace command_line
{

/// Reads a line from the console, without its end; nothing at the end of the input. Where a person types, `prompt` is
/// shown, and what was typed before can be had again, if the host has a library for that.
std::optional<std::string> readLine(Console& console, const std::string& prompt);

/// The same without any library.
std::optional<std::string> readPlainLine(Console& console, const std::string& prompt);

} // namespace command_line
