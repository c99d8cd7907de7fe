#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace visa
{

/// A regular expression over resource names (VPP-4.3 Table 4.4.3): ? \ [list] [^list] * + | ( ). Letter case is
/// ignored.
///
/// All places where a match may have come to are followed beside each other, so that the time is at most the product of
/// the lengths of name and expression. Nothing recurses. Any thread.
class NamePattern
{
public:
    /// @return nothing for what is not well formed: operators with nothing to work on, empty groups, lists and
    ///         alternatives, ranges that go down, brackets that are not closed, a backslash at the end
    static std::optional<NamePattern> parse(std::string_view text);

    /// Whether the whole of the name fits.
    bool fits(std::string_view name) const;

    /// Whether a name that begins with this text may fit.
    bool fitsBeginning(std::string_view beginning) const;

private:
    friend class NamePatternParser;
    using Characters = std::bitset<256>;

    /// A place between characters: what a character of a set leads to, or places that are reached without one.
    struct Place
    {
        Characters consumed{};
        std::size_t next = 0;
        std::vector<std::size_t> passages{};
    };
    /// Places that a match may have come to.
    struct Front
    {
        std::vector<std::size_t> places{};
        std::vector<bool> has{};
    };

    NamePattern() = default;
    void reach(Front& front, std::size_t place) const;
    Front after(std::string_view text) const;

    std::vector<Place> places_{};
    std::size_t end_ = 0;
};

} // namespace visa
