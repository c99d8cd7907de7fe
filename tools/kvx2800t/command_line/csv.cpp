#include "tools/kvx2800t/command_line/csv.h"

namespace command_line
{
namespace
{

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string_view withoutQuotes(std::string_view cell)
{
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"')
        cell = cell.substr(1, cell.size() - 2);
    return cell;
}

std::vector<std::string> cellsOf(std::string_view line)
{
    const char separator = line.find(';') == std::string_view::npos ? ',' : ';';
    std::vector<std::string> cells;
    while (true) {
        const std::size_t end = line.find(separator);
        cells.emplace_back(withoutQuotes(withoutBlanks(line.substr(0, end))));
        if (end == std::string_view::npos)
            return cells;
        line.remove_prefix(end + 1);
    }
}

} // namespace

std::vector<CsvRow> parseCsv(std::string_view text)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    std::vector<CsvRow> rows;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = withoutBlanks(text.substr(0, end));
        if (!line.empty() && line.front() != '#')
            rows.push_back({number, cellsOf(line)});
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return rows;
}

} // namespace command_line
