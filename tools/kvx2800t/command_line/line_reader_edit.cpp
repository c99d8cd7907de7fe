#include "tools/kvx2800t/command_line/line_reader.h"

#include <cstdlib>
#include <editline/readline.h>
#include <memory>

namespace command_line
{

std::optional<std::string> readLine(Console& console, const std::string& prompt)
{
    // The library reads and writes the terminal itself.
    if (!console.inIsTerminal || !console.outIsTerminal)
        return readPlainLine(console, prompt);
    const std::unique_ptr<char, decltype(&std::free)> line(readline(prompt.c_str()), &std::free);
    if (line == nullptr)
        return std::nullopt;
    if (*line != '\0')
        add_history(line.get());
    return line.get();
}

} // namespace command_line
