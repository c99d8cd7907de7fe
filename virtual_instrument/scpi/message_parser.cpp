#include "virtual_instrument/scpi/message_parser.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <optional>

namespace kvxvirtual
{
namespace
{

/// More than any header has; keeps a message of relative headers that go ever deeper from growing.
constexpr std::size_t kDeepestHeader = 8;

using Header = std::vector<HeaderNode>;

constexpr bool isNameCharacter(char c)
{
    return isLetter(c) || isDigit(c) || c == '_';
}

constexpr bool isHeaderCharacter(char c)
{
    return isNameCharacter(c) || c == ':' || c == '*' || c == '?';
}

/// Splits at `separator`, except within a string in single or double quotes.
std::vector<std::string_view> splitOutsideStrings(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    std::size_t begin = 0;
    char quote = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != '\0')
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == separator) {
            pieces.push_back(text.substr(begin, i - begin));
            begin = i + 1;
        }
    }
    pieces.push_back(text.substr(begin));
    return pieces;
}

std::optional<HeaderNode> parseNode(std::string_view text)
{
    if (text.empty() || !isLetter(text.front()) || !std::all_of(text.begin(), text.end(), isNameCharacter))
        return std::nullopt;
    const auto nameLength = text.find_last_not_of("0123456789") + 1;
    return HeaderNode{text.substr(0, nameLength), text.substr(nameLength)};
}

/// The nodes of `text`, which has no leading ":"; nothing when one of them is no name.
std::optional<Header> parseNodes(std::string_view text)
{
    Header nodes;
    for (const auto piece : splitOutsideStrings(text, ':')) {
        const auto node = parseNode(piece);
        if (!node)
            return std::nullopt;
        nodes.push_back(*node);
    }
    return nodes;
}

/// A common command is one node with its asterisk: `*IDN`.
std::optional<Header> parseCommonHeader(std::string_view text)
{
    const auto name = text.substr(1);
    if (name.empty() || !std::all_of(name.begin(), name.end(), isLetter))
        return std::nullopt;
    return Header{HeaderNode{text, {}}};
}

/// A string is one whole parameter: what begins with a quote ends with its partner.
bool isWellFormedParameter(std::string_view text)
{
    const auto quote = text.find_first_of("\"'");
    if (text.empty())
        return false;
    if (quote == std::string_view::npos)
        return true;
    const auto quotes = std::count(text.begin(), text.end(), text[quote]);
    return quote == 0 && text.size() > 1 && text.back() == text.front() && quotes % 2 == 0;
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x7F; });
}

ErrorCode parseParameters(std::string_view text, std::vector<std::string_view>& parameters)
{
    if (text.empty())
        return ErrorCode::None;
    for (const auto piece : splitOutsideStrings(text, ',')) {
        const auto parameter = trimmed(piece);
        if (!isWellFormedParameter(parameter))
            return ErrorCode::SyntaxError;
        if (!isAscii(parameter))
            return ErrorCode::InvalidCharacter;
        parameters.push_back(parameter);
    }
    return ErrorCode::None;
}

/// Completes a header from `path` and moves the path on to the header's parent.
std::optional<Header> resolveHeader(std::string_view text, Header& path)
{
    if (text.starts_with('*'))
        return parseCommonHeader(text);
    const bool fromRoot = text.starts_with(':');
    const auto nodes = parseNodes(text.substr(fromRoot ? 1 : 0));
    if (!nodes)
        return std::nullopt;
    Header header = fromRoot ? Header() : path;
    header.insert(header.end(), nodes->begin(), nodes->end());
    if (header.size() > kDeepestHeader)
        return header;
    path.assign(header.begin(), header.end() - 1);
    return header;
}

MessageUnit failedUnit(ErrorCode error)
{
    MessageUnit unit;
    unit.error = error;
    return unit;
}

MessageUnit parseUnit(std::string_view text, Header& path)
{
    auto [headerText, rest] = splitWord(text);
    if (!std::all_of(headerText.begin(), headerText.end(), isHeaderCharacter))
        return failedUnit(ErrorCode::InvalidCharacter);

    MessageUnit unit;
    unit.isQuery = headerText.ends_with('?');
    if (unit.isQuery)
        headerText.remove_suffix(1);
    auto header = resolveHeader(headerText, path);
    if (!header)
        return failedUnit(ErrorCode::SyntaxError);
    unit.header = std::move(*header);
    unit.error = parseParameters(rest, unit.parameters);
    return unit;
}

} // namespace

std::vector<MessageUnit> parseMessage(std::string_view message)
{
    std::vector<MessageUnit> units;
    Header path;
    for (const auto piece : splitOutsideStrings(message, ';')) {
        const auto text = trimmed(piece);
        if (!text.empty())
            units.push_back(parseUnit(text, path));
    }
    return units;
}

bool holdsQuery(const std::vector<MessageUnit>& units)
{
    return std::any_of(units.begin(), units.end(), [](const MessageUnit& unit) { return unit.isQuery; });
}

} // namespace kvxvirtual
