#pragma once

#include <kvx2800t.hpp>

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

/// Lists and delay programs as texts. A first row with the names of the columns may be there. Numbers may have units.
namespace command_line
{

inline constexpr std::string_view kListColumns = "voltage,current,duration";
inline constexpr std::string_view kDelayColumns = "output,duration";

/// The groups of a list: "5V, 500mA, 100ms". `name` is that of the file in messages. A Failure names the line.
std::vector<kvx2800t::ListGroup> parseList(std::string_view text, const std::string& name);

/// The groups of a delay program: "on, 2s".
std::vector<kvx2800t::DelayGroup> parseDelay(std::string_view text, const std::string& name);

std::string csvText(const kvx2800t::ListGroup& group);
std::string csvText(const kvx2800t::DelayGroup& group);

/// All of a file, of `standardInput` for "-". A Failure says why it cannot be read.
std::string readFile(const std::string& path, std::istream& standardInput);

} // namespace command_line
