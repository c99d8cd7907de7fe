#include "tools/kvx2800t/command_line/line_reader.h"

namespace command_line
{

std::optional<std::string> readLine(Console& console, const std::string& prompt)
{
    return readPlainLine(console, prompt);
}

} // namespace command_line
