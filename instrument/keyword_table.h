#pragma once

#include "base/ascii.h"

#include <IviVisaType.h>

#include <optional>
#include <span>
#include <string_view>

/// How values are spelled in commands and replies. Tables are constants; any thread may read them.
namespace TSRO
{

/// One value of a setting. `keyword` is sent; `keyword` and `alternate` are understood in replies.
struct KeywordEntry
{
    ViInt32 value;
    std::string_view keyword;
    std::string_view alternate = {};
};

/// The values of one setting, in ascending order.
class KeywordTable
{
public:
    constexpr explicit KeywordTable(std::span<const KeywordEntry> entries) : entries_(entries) {}

    /// The keyword to send for `value`.
    /// @throws std::out_of_range "invalid map<K, T> key" when the table has no such value.
    std::string_view keyword(ViInt32 value) const;

    /// The value that `reply`, as a whole and whatever its letter case, names; nothing when no keyword is equal.
    constexpr std::optional<ViInt32> value(std::string_view reply) const
    {
        for (const KeywordEntry& entry : entries_)
            if (names(entry.keyword, reply) || names(entry.alternate, reply))
                return entry.value;
        return std::nullopt;
    }

    constexpr std::span<const KeywordEntry> entries() const { return entries_; }

private:
    static constexpr bool names(std::string_view keyword, std::string_view reply)
    {
        return !keyword.empty() && base::ascii::equalIgnoringCase(keyword, reply);
    }

    std::span<const KeywordEntry> entries_;
};

/// The table of an enumeration.
template <class Enumeration>
inline constexpr KeywordTable kKeywordTable{std::span<const KeywordEntry>()};

} // namespace TSRO

#define KVX_ENUMERATOR(name, number, ...) name = number,
#define KVX_KEYWORD_ENTRY(name, number, ...) {number, __VA_ARGS__},

/// An enumeration and its keyword table. `ROWS` is a macro that applies its argument to each row: the enumerator, its
/// number, its keyword and, where there is one, the alternate.
#define KVX_ENUMERATION(Name, ROWS)                                                                                    \
    enum class Name : ViInt32                                                                                          \
    {                                                                                                                  \
        ROWS(KVX_ENUMERATOR)                                                                                           \
    };                                                                                                                 \
    inline constexpr KeywordEntry k##Name##Entries[] = {ROWS(KVX_KEYWORD_ENTRY)};                                      \
    template <>                                                                                                        \
    inline constexpr KeywordTable kKeywordTable<Name>{k##Name##Entries};
