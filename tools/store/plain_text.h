#pragma once

#include <string>
#include <string_view>

namespace store_tool
{

/// The text without white space at both ends.
std::string_view trimmed(std::string_view text);

/// True for UTF-8 without control characters, which is what a person can type and every reader of a store can show.
bool isPlainText(std::string_view text);

/// The text for a terminal or a log: control characters and bytes that are not UTF-8 as \xNN.
std::string printable(std::string_view text);

/// The same of the beginning of a text, so that messages and listings stay short whatever the file has.
std::string abridged(std::string_view text, std::size_t longest = 100);

/// The abridged text between single quotes.
std::string inQuotes(std::string_view text);

/// The text as XML, for an element or between double quotes. Blanks at its ends become references, which no parser
/// drops.
std::string xmlEscaped(std::string_view text);

} // namespace store_tool
