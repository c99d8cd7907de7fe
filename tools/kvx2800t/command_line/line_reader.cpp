#include "tools/kvx2800t/command_line/line_reader.h"

#include <istream>
#include <ostream>

namespace command_line
{

std::optional<std::string> readPlainLine(Console& console, const std::string& prompt)
{
    if (console.inIsTerminal)
        console.out << prompt << std::flush;
    std::string line;
    if (!std::getline(console.in, line))
        return std::nullopt;
    if (line.ends_with('\r'))
        line.pop_back();
    return line;
}

} // namespace command_line
