#pragma once

#include "tools/kvx2800t/command_line/document.h"

#include <iosfwd>
#include <string>

namespace command_line
{

/// Where a command reads and writes.
struct Console
{
    std::istream& in;
    std::ostream& out;
    std::ostream& errors;
    bool inIsTerminal = false;
    bool outIsTerminal = false;
    bool json = false; ///< the command's --json
};

/// Writes the result of a command: the document with --json, the text without. A text that is not empty has its line's
/// end.
void show(Console& console, const Document& document, const std::string& text);

/// Writes one of many results, each on a line of its own and at once.
void showLine(Console& console, const Document& document, const std::string& text);

/// A line that shows how far something has come, where a person looks at the output: each replaces the one before, the
/// last is wiped out.
class Progress
{
public:
    explicit Progress(Console& console) : console_(console) {}
    ~Progress() { wipe(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(const std::string& text);
    /// To be called before anything else is written.
    void wipe();

private:
    Console& console_;
    std::size_t width_ = 0;
};

/// "1 reading", "2 readings".
std::string counted(std::int64_t count, const std::string& word);

/// Rows with their cells in columns, two blanks apart; nothing behind the last cell of a row.
std::string columns(const std::vector<std::vector<std::string>>& rows);

} // namespace command_line
