#include "instrument/command_text.h"

#include "instrument/fixed_point.h"

#include <array>
#include <charconv>
#include <limits>

namespace TSRO
{
namespace
{

constexpr std::string_view kSourceNode = "SOUR";
constexpr std::string_view kSuffixPlace = "{}";
// Sign, integral digits of the largest double, point, decimals.
constexpr std::size_t kLongestNumber = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + kDecimals;

template <class Number, class... Format>
void appendNumber(std::string& line, Number number, Format... format)
{
    std::array<char, kLongestNumber> digits; // NOLINT(cppcoreguidelines-pro-type-member-init): written by to_chars
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, format...).ptr;
    line.append(digits.data(), end);
}

void appendChannel(std::string& line, ViInt32 channel)
{
    if (channel >= 0 && channel <= 9)
        line += static_cast<char>('0' + channel);
    else
        appendNumber(line, channel);
}

/// Takes the next non-empty node off `header`; empty when there is none left.
std::string_view takeNode(std::string_view& header)
{
    const std::size_t first = header.find_first_not_of(':');
    if (first == std::string_view::npos)
        return header = {};
    header.remove_prefix(first);
    const std::string_view node = header.substr(0, header.find(':'));
    header.remove_prefix(node.size());
    return node;
}

void appendNode(std::string& line, std::string_view node)
{
    line += ':';
    line += node;
}

/// Without the empty ones: a colon in front of another one, or of nothing, begins no node.
void appendNodes(std::string& line, std::string_view nodes)
{
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const bool beginsNoNode = nodes[at] == ':' && (at + 1 == nodes.size() || nodes[at + 1] == ':');
        if (!beginsNoNode)
            line += nodes[at];
    }
}

} // namespace

void Header::appendTo(std::string& line) const
{
    switch (form_) {
    case Form::Plain:
        line += text_;
        break;
    case Form::Source:
        appendSource(line);
        break;
    case Form::Suffix:
        appendSuffixed(line);
        break;
    }
}

void Header::appendQueryTo(std::string& line) const
{
    appendTo(line);
    if (text_.find('?') == std::string_view::npos)
        line += '?';
}

void Header::appendSource(std::string& line) const
{
    std::string_view rest = text_;
    const std::string_view first = takeNode(rest);
    if (first.empty())
        return;
    appendNode(line, kSourceNode);
    appendChannel(line, channel_);
    if (!first.starts_with(kSourceNode))
        appendNode(line, first);
    appendNodes(line, rest);
}

void Header::appendSuffixed(std::string& line) const
{
    const std::size_t place = text_.find(kSuffixPlace);
    line += text_.substr(0, place);
    if (place == std::string_view::npos)
        return;
    appendChannel(line, channel_);
    line += text_.substr(place + kSuffixPlace.size());
}

void appendArgument(std::string& line, std::string_view text)
{
    line += text;
}

void appendArgument(std::string& line, double number)
{
    if (isFixedPoint(number))
        appendFixedPoint(line, number);
    else
        appendNumber(line, number, std::chars_format::fixed, kDecimals);
}

void appendArgument(std::string& line, ViInt32 number)
{
    appendNumber(line, number);
}

void appendArgument(std::string& line, ChannelName name)
{
    line += kChannelNames.keyword(name.channel);
}

} // namespace TSRO
