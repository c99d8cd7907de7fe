#include "virtual_instrument/scpi/header_pattern.h"

#include "virtual_instrument/common/channel_limits.h"
#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <iterator>

namespace kvxvirtual
{
namespace
{

constexpr std::string_view kSuffixMark = "<n>";

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    for (auto end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    pieces.push_back(text);
    return pieces;
}

std::string capitalsOf(std::string_view text)
{
    std::string capitals;
    std::copy_if(text.begin(), text.end(), std::back_inserter(capitals), [](char c) { return c == toUpper(c); });
    return capitals;
}

} // namespace

HeaderPattern::HeaderPattern(std::string_view pattern) : isQuery_(pattern.ends_with('?'))
{
    for (const auto node : split(pattern.substr(0, pattern.size() - (isQuery_ ? 1 : 0)), ':'))
        nodes_.push_back(compile(node));
}

HeaderPattern::Node HeaderPattern::compile(std::string_view text)
{
    Node node;
    node.takesSuffix = text.ends_with(kSuffixMark);
    if (node.takesSuffix)
        text.remove_suffix(kSuffixMark.size());
    for (const auto spelling : split(text, '|')) {
        node.spellings.emplace_back(spelling);
        node.spellings.push_back(capitalsOf(spelling));
    }
    return node;
}

bool HeaderPattern::Node::accepts(std::string_view name) const
{
    return std::any_of(spellings.begin(), spellings.end(),
                       [name](const std::string& spelling) { return equalIgnoringCase(name, spelling); });
}

HeaderMatch HeaderPattern::match(const MessageUnit& unit) const
{
    if (unit.isQuery != isQuery_ ||
        !std::equal(nodes_.begin(), nodes_.end(), unit.header.begin(), unit.header.end(),
                    [](const Node& node, const HeaderNode& sent) { return node.accepts(sent.name); }))
        return {};

    HeaderMatch match{HeaderMatch::Kind::Full, kDefaultSuffix};
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        const auto sent = unit.header[i].suffix;
        if (sent.empty())
            continue;
        const auto number = integerIn(sent);
        if (!nodes_[i].takesSuffix || !number || *number < 1 || *number > kChannelCount)
            return {HeaderMatch::Kind::BadSuffix, kDefaultSuffix};
        match.suffix = *number;
    }
    return match;
}

} // namespace kvxvirtual
