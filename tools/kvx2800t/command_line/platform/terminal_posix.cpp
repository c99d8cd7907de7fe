#include "tools/kvx2800t/command_line/platform/terminal.h"

#include <unistd.h>

namespace command_line
{

bool inputIsTerminal()
{
    return ::isatty(STDIN_FILENO) == 1;
}

bool outputIsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

} // namespace command_line
