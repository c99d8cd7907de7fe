#include "platform/config_server/element_index.h"

#include <algorithm>

namespace config_server
{

ElementIndex::ElementIndex(std::vector<IndexEntry> entries) : entries_(std::move(entries))
{
    std::ranges::stable_sort(entries_, {}, &IndexEntry::key);
}

const Element* ElementIndex::find(std::string_view key) const
{
    const auto found = std::ranges::lower_bound(entries_, key, {}, &IndexEntry::key);
    return found == entries_.end() || found->key != key ? nullptr : found->element;
}

bool ElementIndex::hasDuplicates() const
{
    return std::ranges::adjacent_find(entries_, {}, &IndexEntry::key) != entries_.end();
}

} // namespace config_server
