#include "platform/config_server/nesting.h"

#include <algorithm>
#include <array>

namespace config_server
{
namespace
{

/// A look-up table, as every character of a large file is asked about.
class CharacterSet
{
public:
    constexpr explicit CharacterSet(std::string_view members)
    {
        for (const char member : members)
            isMember_[static_cast<unsigned char>(member)] = true;
    }

    constexpr bool contains(char c) const { return isMember_[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> isMember_{};
};

constexpr CharacterSet kSpace(" \t\r\n");
constexpr CharacterSet kElementNameEnd(" \t\r\n/>?");
constexpr CharacterSet kAttributeNameEnd(" \t\r\n/<>=?!");

/// Finds the ends of tokens where RapidXML 1.13 finds them; another version needs another look at each rule here.
class NestingScanner
{
public:
    NestingScanner(std::string_view xml, const ElementLimits& limits) : rest_(xml), limits_(limits) {}

    bool scan()
    {
        while (skipText()) {
            if (!(take("/") ? scanEndTag() : count() && scanMarkup()))
                return false;
        }
        return depth_ == 0;
    }

private:
    /// Whatever stands between two texts makes the parser keep them apart, and each piece costs it an object.
    bool count() { return ++pieces_ <= limits_.most; }

    bool skipText()
    {
        const std::size_t markup = rest_.find('<');
        rest_.remove_prefix(markup == std::string_view::npos ? rest_.size() : markup + 1);
        return markup != std::string_view::npos;
    }

    bool scanMarkup()
    {
        if (take("!--"))
            return skipPast("-->");
        if (take("![CDATA["))
            return skipPast("]]>");
        if (atDoctype())
            return skipDoctype();
        if (take("!"))
            return skipPast(">");
        if (take("?"))
            return skipPast("?>");
        return scanStartTag();
    }

    bool scanEndTag()
    {
        skipWhile(kElementNameEnd, false);
        skipWhile(kSpace, true);
        if (depth_ == 0 || !take(">"))
            return false;
        --depth_;
        return true;
    }

    bool scanStartTag()
    {
        skipWhile(kElementNameEnd, false);
        for (;;) {
            skipWhile(kSpace, true);
            if (take("/>"))
                return depth_ < limits_.deepest;
            if (take(">"))
                return ++depth_ <= limits_.deepest;
            if (!skipAttribute())
                return false;
        }
    }

    bool skipAttribute()
    {
        if (!count() || !skipWhile(kAttributeNameEnd, false))
            return false;
        skipWhile(kSpace, true);
        if (!take("="))
            return false;
        skipWhile(kSpace, true);
        if (take("\""))
            return skipPast("\"");
        return take("'") && skipPast("'");
    }

    bool atDoctype() const
    {
        constexpr std::string_view kDoctype = "!DOCTYPE";
        return rest_.size() > kDoctype.size() && rest_.starts_with(kDoctype) && kSpace.contains(rest_[kDoctype.size()]);
    }

    /// The internal subset is in brackets, which may nest; quotes do not count.
    bool skipDoctype()
    {
        std::size_t brackets = 0;
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == '>' && brackets == 0)
                return true;
            if (c == '[')
                ++brackets;
            else if (c == ']' && brackets-- == 0)
                return false;
        }
        return false;
    }

    bool take(std::string_view token)
    {
        if (!rest_.starts_with(token))
            return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    bool skipPast(std::string_view token)
    {
        const std::size_t found = rest_.find(token);
        if (found == std::string_view::npos)
            return false;
        rest_.remove_prefix(found + token.size());
        return true;
    }

    /// Skips the characters that are (or, with inSet false, are not) of the set. @return whether there were any
    bool skipWhile(const CharacterSet& set, bool inSet)
    {
        const auto* const end = std::ranges::find_if(rest_, [&set, inSet](char c) { return set.contains(c) != inSet; });
        const auto skipped = static_cast<std::size_t>(end - rest_.begin());
        rest_.remove_prefix(skipped);
        return skipped > 0;
    }

    std::string_view rest_;
    ElementLimits limits_;
    std::size_t depth_ = 0;
    std::size_t pieces_ = 0;
};

} // namespace

bool staysWithin(std::string_view xml, const ElementLimits& limits)
{
    return NestingScanner(xml, limits).scan();
}

} // namespace config_server
