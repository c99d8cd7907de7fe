#pragma once

/// What a program of ours does with its arguments, which are UTF-8 on every host; each has its own, and main() of
/// main_posix.cpp or main_windows.cpp. Standard streams are there, whatever it was started with. @return the exit code
int toolMain(int argumentCount, const char* const* arguments);
