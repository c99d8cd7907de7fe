#include "tools/kvx2800t/command_line/console.h"

#include <algorithm>
#include <ostream>

namespace command_line
{

void show(Console& console, const Document& document, const std::string& text)
{
    if (console.json)
        console.out << jsonText(document, Layout::Lines) << '\n';
    else
        console.out << text;
}

void showLine(Console& console, const Document& document, const std::string& text)
{
    console.out << (console.json ? jsonText(document, Layout::OneLine) : text) << '\n' << std::flush;
}

void Progress::show(const std::string& text)
{
    if (!console_.outIsTerminal || console_.json)
        return;
    const std::size_t rest = width_ > text.size() ? width_ - text.size() : 0;
    console_.out << '\r' << text << std::string(rest, ' ') << std::string(rest, '\b') << std::flush;
    width_ = text.size();
}

void Progress::wipe()
{
    if (width_ > 0)
        console_.out << '\r' << std::string(width_, ' ') << '\r' << std::flush;
    width_ = 0;
}

std::string counted(std::int64_t count, const std::string& word)
{
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

std::string columns(const std::vector<std::vector<std::string>>& rows)
{
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            text += row[i] + (i + 1 < row.size() ? std::string(widths[i] - row[i].size() + 2, ' ') : "\n");
    }
    return text;
}

} // namespace command_line
