#include "tools/kvx2800t/command_line/program_files.h"

#include "tools/kvx2800t/command_line/csv.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/units.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace command_line
{
namespace
{

/// Where a row stands, for messages.
struct Place
{
    const std::string& file;
    std::size_t line;

    [[noreturn]] void fail(const std::string& text) const
    {
        throw Failure(ExitCode::File, file + ":" + std::to_string(line) + ": " + text);
    }
};

std::string joined(const std::vector<std::string>& cells)
{
    std::string text;
    for (const std::string& cell : cells)
        text += (text.empty() ? "" : ",") + cell;
    return text;
}

double number(const Place& place, const std::string& cell, Quantity quantity)
{
    const auto value = parseQuantity(cell, quantity);
    if (!value)
        place.fail("not " + std::string(example(quantity)) + ": " + cell);
    return *value;
}

bool switched(const Place& place, const std::string& cell)
{
    if (cell != "on" && cell != "off")
        place.fail("neither on nor off: " + cell);
    return cell == "on";
}

/// Makes a group of each row with as many cells as there are columns.
template <class Group, class Make>
std::vector<Group> groupsOf(std::string_view text, const std::string& name, std::string_view columns, std::size_t count,
                            Make make)
{
    std::vector<Group> groups;
    bool isFirst = true;
    for (const CsvRow& row : parseCsv(text)) {
        const bool isTitle = isFirst && joined(row.cells) == columns;
        isFirst = false;
        if (isTitle)
            continue;
        const Place place{name, row.line};
        if (row.cells.size() != count)
            place.fail("not " + std::to_string(count) + " cells (" + std::string(columns) + "): " + joined(row.cells));
        groups.push_back(make(place, row.cells));
    }
    if (groups.empty())
        throw Failure(ExitCode::File, name + ": has no groups (" + std::string(columns) + ")");
    return groups;
}

std::string bytesOf(std::istream& stream)
{
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace

std::vector<kvx2800t::ListGroup> parseList(std::string_view text, const std::string& name)
{
    return groupsOf<kvx2800t::ListGroup>(text, name, kListColumns, 3,
                                         [](const Place& place, const std::vector<std::string>& cells) {
                                             return kvx2800t::ListGroup{number(place, cells[0], Quantity::Voltage),
                                                                        number(place, cells[1], Quantity::Current),
                                                                        number(place, cells[2], Quantity::Time)};
                                         });
}

std::vector<kvx2800t::DelayGroup> parseDelay(std::string_view text, const std::string& name)
{
    return groupsOf<kvx2800t::DelayGroup>(
        text, name, kDelayColumns, 2, [](const Place& place, const std::vector<std::string>& cells) {
            return kvx2800t::DelayGroup{switched(place, cells[0]), number(place, cells[1], Quantity::Time)};
        });
}

std::string csvText(const kvx2800t::ListGroup& group)
{
    return decimalText(group.volts, 3) + ',' + decimalText(group.amperes, 3) + ',' + decimalText(group.seconds, 3);
}

std::string csvText(const kvx2800t::DelayGroup& group)
{
    return (group.on ? "on," : "off,") + decimalText(group.seconds, 3);
}

std::string readFile(const std::string& path, std::istream& standardInput)
{
    if (path == "-")
        return bytesOf(standardInput);
    // The path is UTF-8 on every host.
    const std::filesystem::path file(std::u8string(path.begin(), path.end()));
    std::ifstream stream(file, std::ios::binary);
    std::error_code ignored;
    if (!stream || std::filesystem::is_directory(file, ignored))
        throw Failure(ExitCode::File, path + ": cannot be read");
    return bytesOf(stream);
}

} // namespace command_line
