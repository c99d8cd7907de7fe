#pragma once

#include "tools/kvx2800t/command_line/command.h"

/// What the commands of the table do. Each writes its result to the console and fails as Command::run says.
namespace command_line::commands
{

void identify(const Arguments& arguments, Console& console);

void get(const Arguments& arguments, Console& console);
void set(const Arguments& arguments, Console& console);
void off(const Arguments& arguments, Console& console);
void measure(const Arguments& arguments, Console& console);
void protect(const Arguments& arguments, Console& console);

} // namespace command_line::commands
