#include "instrument/command_text.h"

#include "instrument/fixed_point.h"

#include <algorithm>
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

/// Text put together in the room behind what a line has, which is one growth of the line instead of one for each piece.
class Piecewise
{
public:
    Piecewise(std::string& line, std::size_t room) : line_(line)
    {
        const std::size_t begin = line.size();
        line.resize(begin + room);
        end_ = line.data() + begin;
    }
    ~Piecewise() { line_.resize(static_cast<std::size_t>(end_ - line_.data())); }
    Piecewise(const Piecewise&) = delete;
    Piecewise& operator=(const Piecewise&) = delete;

    void put(char character) { *end_++ = character; }
    void put(std::string_view text) { end_ = std::copy(text.begin(), text.end(), end_); }
    void put(ViInt32 number) { end_ = std::to_chars(end_, line_.data() + line_.size(), number).ptr; }

private:
    std::string& line_;
    char* end_ = nullptr;
};

/// Without the empty ones: a colon in front of another one, or of nothing, begins no node.
void putNodes(Piecewise& pieces, std::string_view nodes)
{
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const bool beginsNoNode = nodes[at] == ':' && (at + 1 == nodes.size() || nodes[at + 1] == ':');
        if (!beginsNoNode)
            pieces.put(nodes[at]);
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
    constexpr std::size_t kMostInFront = 2 + kSourceNode.size() + std::numeric_limits<ViInt32>::digits10 + 2;
    Piecewise pieces(line, kMostInFront + text_.size());
    pieces.put(':');
    pieces.put(kSourceNode);
    pieces.put(channel_);
    if (!first.starts_with(kSourceNode)) {
        pieces.put(':');
        pieces.put(first);
    }
    putNodes(pieces, rest);
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
