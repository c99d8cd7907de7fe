#include "runtime/selector_grammar.h"

#include "base/ascii.h"
#include "instrument/reply_parsing.h"

#include <algorithm>
#include <charconv>

namespace drivekit::selector
{
namespace
{

constexpr bool isNameCharacter(char c)
{
    return base::ascii::isWord(c) || c == '!';
}

bool endsInDigit(std::string_view text)
{
    return !text.empty() && base::ascii::isDigit(text.back());
}

bool isNumber(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), base::ascii::isDigit);
}

/// A place in a selector, moving forward.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    /// Takes blanks and `wanted`; takes nothing when that is not what follows.
    bool take(char wanted)
    {
        const std::string_view ahead = base::ascii::skipBlanks(rest_);
        if (ahead.empty() || ahead.front() != wanted)
            return false;
        rest_ = ahead.substr(1);
        return true;
    }

    /// Takes blanks and a name; empty when there is none.
    std::string_view takeName()
    {
        const std::string_view ahead = base::ascii::skipBlanks(rest_);
        const auto end = std::find_if_not(ahead.begin(), ahead.end(), isNameCharacter);
        const std::string_view name = ahead.substr(0, static_cast<std::size_t>(end - ahead.begin()));
        rest_ = ahead.substr(name.size());
        return name;
    }

    void skipBlanks() { rest_ = base::ascii::skipBlanks(rest_); }

private:
    std::string_view rest_;
};

bool takeItem(Scanner& scanner)
{
    const std::string_view name = scanner.takeName();
    if (name.empty())
        return false;
    return !scanner.take('-') || (endsInDigit(name) && endsInDigit(scanner.takeName()));
}

bool takeLevel(Scanner& scanner)
{
    scanner.take('[');
    do {
        if (!takeItem(scanner))
            return false;
    } while (scanner.take(','));
    // Blanks may end a selector, but not behind a bracket.
    if (!scanner.take(']'))
        scanner.skipBlanks();
    return true;
}

std::string_view withoutBlanksAndBrackets(std::string_view item)
{
    const auto isSurround = [](char c) { return base::ascii::isBlank(c) || c == '[' || c == ']'; };
    while (!item.empty() && isSurround(item.front()))
        item.remove_prefix(1);
    while (!item.empty() && isSurround(item.back()))
        item.remove_suffix(1);
    return item;
}

/// A name, split in front of the digits it ends with.
struct NumberedName
{
    std::string_view base;
    std::string_view digits;
};

NumberedName splitNumber(std::string_view name)
{
    const auto lastOfBase = std::find_if_not(name.rbegin(), name.rend(), base::ascii::isDigit);
    const auto baseLength = static_cast<std::size_t>(name.rend() - lastOfBase);
    return {name.substr(0, baseLength), name.substr(baseLength)};
}

/// The number behind `base` in the second name of a range; empty when that name has another base.
std::string_view numberOfSecond(std::string_view name, std::string_view base)
{
    if (isNumber(name))
        return name;
    const bool sameBase = base::ascii::equalIgnoringCase(name.substr(0, base.size()), base);
    const std::string_view digits = sameBase ? name.substr(base.size()) : std::string_view();
    return isNumber(digits) ? digits : std::string_view();
}

} // namespace

bool isWellFormed(std::string_view text)
{
    Scanner scanner(text);
    do {
        if (!takeLevel(scanner))
            return false;
    } while (scanner.take(':'));
    return scanner.atEnd();
}

bool isBlank(std::string_view text)
{
    return base::ascii::skipBlanks(text).empty();
}

std::size_t levelCount(std::string_view text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), ':')) + 1;
}

std::optional<std::string_view> nextItem(std::string_view& level)
{
    if (level.empty())
        return std::nullopt;
    const std::string_view item = level.substr(0, level.find(','));
    level.remove_prefix(std::min(item.size() + 1, level.size()));
    return withoutBlanksAndBrackets(item);
}

bool isRange(std::string_view item)
{
    return item.find('-') != std::string_view::npos;
}

std::optional<NameRange> parseRange(std::string_view item)
{
    const std::size_t dash = item.find('-');
    const NumberedName first = splitNumber(withoutBlanksAndBrackets(item.substr(0, dash)));
    const std::string_view last = numberOfSecond(withoutBlanksAndBrackets(item.substr(dash + 1)), first.base);
    if (last.empty())
        return std::nullopt;
    return NameRange{first.base, TSRO::parseInt(first.digits), TSRO::parseInt(last)};
}

std::optional<NameRange> asRange(std::string_view name)
{
    const NumberedName parts = splitNumber(name);
    const auto number = plainDecimal(parts.digits);
    return number ? std::optional<NameRange>({parts.base, *number, *number}) : std::nullopt;
}

std::optional<ViInt32> plainDecimal(std::string_view digits)
{
    if (!isNumber(digits) || (digits.size() > 1 && digits.front() == '0'))
        return std::nullopt;
    ViInt32 number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

std::string_view nextToken(std::string_view& text)
{
    const auto first = std::find_if(text.begin(), text.end(), isNameCharacter);
    const auto last = std::find_if_not(first, text.end(), isNameCharacter);
    const std::string_view token(first, last);
    text = std::string_view(last, text.end());
    return token;
}

} // namespace drivekit::selector
