#include "instrument/keyword_tables.h"

#include "instrument/ascii.h"
#include "instrument/failures.h"

namespace TSRO
{

std::string_view KeywordTable::keyword(ViInt32 value) const
{
    for (const KeywordEntry& entry : entries_)
        if (entry.value == value)
            return entry.keyword;
    throwInvalidKey();
}

std::optional<ViInt32> KeywordTable::value(std::string_view reply) const
{
    const auto names = [reply](std::string_view keyword) {
        return !keyword.empty() && ascii::equalIgnoringCase(keyword, reply);
    };
    for (const KeywordEntry& entry : entries_)
        if (names(entry.keyword) || names(entry.alternate))
            return entry.value;
    return std::nullopt;
}

} // namespace TSRO
