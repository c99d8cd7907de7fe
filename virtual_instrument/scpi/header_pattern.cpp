#include "virtual_instrument/scpi/header_pattern.h"

#include "virtual_instrument/common/channel_limits.h"
#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <optional>

namespace kvxvirtual
{
namespace
{

constexpr std::string_view kSuffixMark = "<n>";

/// The pieces of a text one after the other.
class Pieces
{
public:
    constexpr Pieces(std::string_view text, char separator) : rest_(text), separator_(separator) {}

    /// Nothing behind the last.
    std::optional<std::string_view> next()
    {
        if (!rest_)
            return std::nullopt;
        const auto end = std::min(rest_->find(separator_), rest_->size());
        const auto piece = rest_->substr(0, end);
        rest_ = end < rest_->size() ? std::optional(rest_->substr(end + 1)) : std::nullopt;
        return piece;
    }

private:
    std::optional<std::string_view> rest_;
    char separator_;
};

/// Whether `name` is the capitals of `spelling`, which are its short form.
bool isShortFormOf(std::string_view spelling, std::string_view name)
{
    for (const char c : spelling) {
        if (c != toUpper(c))
            continue;
        if (name.empty() || toUpper(name.front()) != c)
            return false;
        name.remove_prefix(1);
    }
    return name.empty();
}

bool accepts(std::string_view node, std::string_view name)
{
    Pieces spellings(node, '|');
    while (const auto spelling = spellings.next())
        if (equalIgnoringCase(name, *spelling) || isShortFormOf(*spelling, name))
            return true;
    return false;
}

bool isChannel(std::optional<int> number)
{
    return number && *number >= 1 && *number <= kChannelCount;
}

} // namespace

HeaderMatch HeaderPattern::match(const MessageUnit& unit) const
{
    if (unit.isQuery != pattern_.ends_with('?'))
        return {};
    HeaderMatch match{HeaderMatch::Kind::Full, kDefaultSuffix};
    Pieces nodes(pattern_.substr(0, pattern_.size() - (unit.isQuery ? 1 : 0)), ':');
    for (const HeaderNode& sent : unit.header) {
        auto node = nodes.next();
        const bool takesSuffix = node && node->ends_with(kSuffixMark);
        if (takesSuffix)
            node->remove_suffix(kSuffixMark.size());
        if (!node || !accepts(*node, sent.name))
            return {};
        if (sent.suffix.empty())
            continue;
        const auto number = integerIn(sent.suffix);
        if (takesSuffix && isChannel(number))
            match.suffix = *number;
        else
            match.kind = HeaderMatch::Kind::BadSuffix;
    }
    return nodes.next() ? HeaderMatch() : match;
}

} // namespace kvxvirtual
