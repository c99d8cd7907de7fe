#include "instrument/keyword_table.h"

#include "base/failures.h"

namespace TSRO
{

std::string_view KeywordTable::keyword(ViInt32 value) const
{
    for (const KeywordEntry& entry : entries_)
        if (entry.value == value)
            return entry.keyword;
    base::throwInvalidKey();
}

} // namespace TSRO
