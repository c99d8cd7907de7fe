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

/// The nodes, each behind one colon.
std::string withoutEmptyNodes(std::string_view nodes)
{
    std::string separated;
    bool beginsNode = true;
    for (const char character : nodes) {
        const bool isColon = character == ':';
        if (!isColon && beginsNode)
            separated += ':';
        if (!isColon)
            separated += character;
        beginsNode = isColon;
    }
    return separated;
}

} // namespace

void Header::appendTo(std::string& line) const
{
    switch (form_) {
    case Form::Plain:
        line += text_;
        break;
    case Form::Source:
    case Form::SourceWithColons:
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
    if (!isQuery_)
        line += '?';
}

void Header::appendSource(std::string& line) const
{
    // One growth of the line for both.
    constexpr std::size_t kSize = kSourceNode.size() + 1;
    static constexpr auto kNodes = [] {
        std::array<std::array<char, kSize>, 10> nodes{};
        for (std::size_t channel = 0; channel < nodes.size(); ++channel)
            *std::copy(kSourceNode.begin(), kSourceNode.end(), nodes[channel].begin()) =
                static_cast<char>('0' + channel);
        return nodes;
    }();
    if (channel_ >= 0 && static_cast<std::size_t>(channel_) < kNodes.size()) [[likely]]
        line.append(kNodes[static_cast<std::size_t>(channel_)].data(), kSize);
    else
        appendNumber(line += kSourceNode, channel_);
    if (form_ == Form::Source)
        line += text_;
    else
        line += withoutEmptyNodes(text_);
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
