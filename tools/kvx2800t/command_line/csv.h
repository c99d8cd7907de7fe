#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace command_line
{

struct CsvRow
{
    std::size_t line = 0; ///< in the file, from 1
    std::vector<std::string> cells;
};

/// The rows of a text with commas or, where a line has one, semicolons between its cells. Blanks and double quotes
/// around a cell are no part of it. Empty lines, and those that begin with '#', are no rows; lines end as on any host.
std::vector<CsvRow> parseCsv(std::string_view text);

} // namespace command_line
