#include "tools/kvx2800t/command_line/platform/terminal.h"

#include <io.h>

#include <cstdio>

namespace command_line
{

bool inputIsTerminal()
{
    return _isatty(_fileno(stdin)) != 0;
}

bool outputIsTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

} // namespace command_line
