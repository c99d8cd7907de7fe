#pragma once

#include "tools/kvx2800t/command_line/command.h"

/// What the commands of the table do. Each writes its result to the console and fails as Command::run says.
namespace command_line::commands
{

void find(const Arguments& arguments, Console& console);
void identify(const Arguments& arguments, Console& console);
void doctor(const Arguments& arguments, Console& console);

void get(const Arguments& arguments, Console& console);
void set(const Arguments& arguments, Console& console);
void off(const Arguments& arguments, Console& console);
void measure(const Arguments& arguments, Console& console);
void protect(const Arguments& arguments, Console& console);

void loadList(const Arguments& arguments, Console& console);
void showList(const Arguments& arguments, Console& console);
void runList(const Arguments& arguments, Console& console);
void watchList(const Arguments& arguments, Console& console);
void pauseList(const Arguments& arguments, Console& console);
void stopList(const Arguments& arguments, Console& console);

void loadDelay(const Arguments& arguments, Console& console);
void showDelay(const Arguments& arguments, Console& console);
void runDelay(const Arguments& arguments, Console& console);
void watchDelay(const Arguments& arguments, Console& console);
void stopDelay(const Arguments& arguments, Console& console);

void log(const Arguments& arguments, Console& console);
void scpi(const Arguments& arguments, Console& console);
void panel(const Arguments& arguments, Console& console);

} // namespace command_line::commands
