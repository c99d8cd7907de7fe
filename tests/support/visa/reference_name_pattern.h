#pragma once

#include <cctype>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{

/// A plain reader of expressions over resource names: recursive, slow, and following the grammar word for word. Every
/// part of an expression is a function from a place in the text to the places where it may end.
class ReferenceNamePattern
{
public:
    /// @return nothing when the expression is not well formed, otherwise whether it fits all of the text
    static std::optional<bool> fits(const std::string& expression, const std::string& text)
    {
        ReferenceNamePattern reader(expression, text);
        try {
            const Part whole = reader.readAlternatives();
            if (reader.at_ != expression.size())
                return std::nullopt;
            return whole(0).contains(text.size());
        } catch (const std::invalid_argument&) {
            return std::nullopt;
        }
    }

private:
    using Places = std::set<std::size_t>;
    using Part = std::function<Places(std::size_t)>;

    ReferenceNamePattern(const std::string& expression, const std::string& text) : expression_(expression), text_(text)
    {
    }

    bool isAt(char c) const { return at_ < expression_.size() && expression_[at_] == c; }

    char take()
    {
        if (at_ == expression_.size())
            throw std::invalid_argument("ends too early");
        return expression_[at_++];
    }

    static Places endsFrom(const Part& part, const Places& places)
    {
        Places ends;
        for (const std::size_t place : places)
            ends.merge(part(place));
        return ends;
    }

    Part readAlternatives()
    {
        Part first = readSequence();
        if (!isAt('|'))
            return first;
        take();
        Part others = readAlternatives();
        return [first, others](std::size_t at) {
            Places ends = first(at);
            ends.merge(others(at));
            return ends;
        };
    }

    Part readSequence()
    {
        Part all = readRepeated();
        while (at_ < expression_.size() && !isAt('|') && !isAt(')'))
            all = [all, next = readRepeated()](std::size_t at) { return endsFrom(next, all(at)); };
        return all;
    }

    Part readRepeated()
    {
        Part one = readItem();
        while (isAt('*') || isAt('+'))
            one = repeated(one, take() == '*');
        return one;
    }

    static Part repeated(const Part& one, bool orNever)
    {
        return remembered([one, orNever](std::size_t at) {
            Places ends = one(at);
            for (std::size_t size = 0; size != ends.size();) {
                size = ends.size();
                ends.merge(endsFrom(one, ends));
            }
            if (orNever)
                ends.insert(at);
            return ends;
        });
    }

    /// Asks a part for each place once: repetitions of repetitions would ask it without end.
    static Part remembered(Part part)
    {
        return [part = std::move(part), known = std::make_shared<std::map<std::size_t, Places>>()](std::size_t at) {
            auto found = known->find(at);
            if (found == known->end())
                found = known->emplace(at, part(at)).first;
            return found->second;
        };
    }

    Part readItem()
    {
        const char c = take();
        switch (c) {
        case '(': {
            Part group = readAlternatives();
            if (take() != ')')
                throw std::invalid_argument("group is not closed");
            return group;
        }
        case '*':
        case '+':
        case '|':
        case ')':
            throw std::invalid_argument("nothing in front of it");
        case '?':
            return one([](char) { return true; });
        case '[':
            return readList();
        case '\\':
            return one([wanted = take()](char found) { return isSame(wanted, found); });
        default:
            return one([c](char found) { return isSame(c, found); });
        }
    }

    Part readList()
    {
        const bool excludes = isAt('^');
        if (excludes)
            take();
        std::vector<std::pair<char, char>> ranges;
        do {
            if (ranges.empty() && isAt(']'))
                throw std::invalid_argument("empty list");
            const char first = takeListed();
            const bool isRange = isAt('-') && at_ + 1 < expression_.size() && expression_[at_ + 1] != ']';
            if (isRange)
                take();
            ranges.emplace_back(first, isRange ? takeListed() : first);
            if (static_cast<unsigned char>(ranges.back().first) > static_cast<unsigned char>(ranges.back().second))
                throw std::invalid_argument("range goes down");
        } while (!isAt(']'));
        take();
        return one([ranges, excludes](char found) { return isListed(ranges, found) != excludes; });
    }

    char takeListed()
    {
        const char c = take();
        return c == '\\' ? take() : c;
    }

    static bool isListed(const std::vector<std::pair<char, char>>& ranges, char found)
    {
        for (const auto& [first, last] : ranges) {
            for (int c = static_cast<unsigned char>(first); c <= static_cast<unsigned char>(last); ++c) {
                if (isSame(static_cast<char>(c), found))
                    return true;
            }
        }
        return false;
    }

    static bool isSame(char a, char b)
    {
        return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
    }

    Part one(std::function<bool(char)> isWanted) const
    {
        return [this, isWanted = std::move(isWanted)](std::size_t at) {
            return at < text_.size() && isWanted(text_[at]) ? Places{at + 1} : Places{};
        };
    }

    const std::string& expression_;
    const std::string& text_;
    std::size_t at_ = 0;
};

} // namespace kvxtest
