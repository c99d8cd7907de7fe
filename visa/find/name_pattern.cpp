#include "visa/find/name_pattern.h"

#include "visa/resource/name_text.h"

#include <utility>

namespace visa
{
namespace
{

constexpr std::size_t index(char c)
{
    return static_cast<unsigned char>(c);
}

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

/// Builds the places of an expression while it reads it, once, from left to right.
class NamePatternParser
{
public:
    explicit NamePatternParser(std::string_view text) : text_(text) {}

    std::optional<NamePattern> parse()
    {
        openGroup();
        while (isGood_ && at_ < text_.size())
            readOne(text_[at_++]);
        endAlternative();
        if (!isGood_ || groups_.size() != 1)
            return std::nullopt;
        pattern_.end_ = groups_.back().end;
        return std::move(pattern_);
    }

private:
    using Characters = NamePattern::Characters;

    /// Alternatives, of which the last is being read up to `tail`.
    struct Group
    {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::size_t tail = 0;
    };
    /// The character or group that an operator would repeat, and the place it was put behind.
    struct Item
    {
        bool exists = false;
        std::size_t before = 0;
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    void readOne(char c)
    {
        switch (c) {
        case '(':
            return openGroup();
        case ')':
            return closeGroup();
        case '|':
            return endAlternative();
        case '*':
            return repeat(true);
        case '+':
            return repeat(false);
        case '?':
            return addCharacters(~Characters());
        case '[':
            return addCharacters(readList());
        case '\\':
            return addCharacters(only(takeEscaped()));
        default:
            return addCharacters(only(c));
        }
    }

    std::size_t newPlace()
    {
        pattern_.places_.emplace_back();
        return pattern_.places_.size() - 1;
    }

    void addPassage(std::size_t from, std::size_t to) { pattern_.places_[from].passages.push_back(to); }

    void openGroup()
    {
        const std::size_t begin = newPlace();
        const std::size_t end = newPlace();
        groups_.push_back({begin, end, begin});
        item_ = {};
    }

    void closeGroup()
    {
        endAlternative();
        // The first one is the whole expression.
        isGood_ = isGood_ && groups_.size() > 1;
        if (!isGood_)
            return;
        const Group closed = groups_.back();
        groups_.pop_back();
        addItem(closed.begin, closed.end);
    }

    void addItem(std::size_t begin, std::size_t end)
    {
        Group& group = groups_.back();
        addPassage(group.tail, begin);
        item_ = {true, group.tail, begin, end};
        group.tail = end;
    }

    void endAlternative()
    {
        isGood_ = isGood_ && item_.exists;
        Group& group = groups_.back();
        addPassage(group.tail, group.end);
        group.tail = group.begin;
        item_ = {};
    }

    void repeat(bool mayBeAbsent)
    {
        isGood_ = isGood_ && item_.exists;
        addPassage(item_.end, item_.begin);
        if (mayBeAbsent)
            addPassage(item_.before, item_.end);
    }

    void addCharacters(const Characters& characters)
    {
        const std::size_t begin = newPlace();
        const std::size_t end = newPlace();
        pattern_.places_[begin].consumed = characters;
        pattern_.places_[begin].next = end;
        addItem(begin, end);
    }

    static Characters only(char c)
    {
        Characters characters;
        characters.set(index(upper(c)));
        characters.set(index(lower(c)));
        return characters;
    }

    char takeEscaped()
    {
        isGood_ = isGood_ && at_ < text_.size();
        return isGood_ ? text_[at_++] : '\0';
    }

    bool isAt(char c) const { return at_ < text_.size() && text_[at_] == c; }

    char takeListed()
    {
        const char c = takeEscaped();
        return c == '\\' ? takeEscaped() : c;
    }

    /// What stands between "[" and "]". A hyphen at either end of it is a character like others.
    Characters readList()
    {
        Characters characters;
        const bool isExcluding = isAt('^');
        if (isExcluding)
            ++at_;
        isGood_ = isGood_ && !isAt(']');
        while (isGood_ && !isAt(']')) {
            const char first = takeListed();
            const bool isRange = isAt('-') && at_ + 1 < text_.size() && text_[at_ + 1] != ']';
            if (isRange)
                ++at_;
            const char last = isRange ? takeListed() : first;
            isGood_ = isGood_ && index(first) <= index(last);
            for (std::size_t c = index(first); c <= index(last); ++c)
                characters |= only(static_cast<char>(c));
        }
        ++at_;
        return isExcluding ? ~characters : characters;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool isGood_ = true;
    NamePattern pattern_{};
    std::vector<Group> groups_{};
    Item item_{};
};

std::optional<NamePattern> NamePattern::parse(std::string_view text)
{
    return NamePatternParser(text).parse();
}

/// Adds a place, and those that can be reached from it without a character.
void NamePattern::reach(Front& front, std::size_t place) const
{
    const auto add = [&front](std::size_t reached) {
        if (front.has[reached])
            return;
        front.has[reached] = true;
        front.places.push_back(reached);
    };
    std::size_t looked = front.places.size();
    add(place);
    for (; looked < front.places.size(); ++looked) {
        for (const std::size_t passage : places_[front.places[looked]].passages)
            add(passage);
    }
}

NamePattern::Front NamePattern::after(std::string_view text) const
{
    const auto none = [this] { return Front{{}, std::vector<bool>(places_.size())}; };
    Front front = none();
    reach(front, 0);
    for (const char c : text) {
        Front next = none();
        for (const std::size_t place : front.places) {
            if (places_[place].consumed[index(c)])
                reach(next, places_[place].next);
        }
        front = std::move(next);
    }
    return front;
}

bool NamePattern::fits(std::string_view name) const
{
    return after(name).has[end_];
}

bool NamePattern::fitsBeginning(std::string_view beginning) const
{
    // From every place the end can be reached, except through a list that excludes everything.
    return !after(beginning).places.empty();
}

} // namespace visa
