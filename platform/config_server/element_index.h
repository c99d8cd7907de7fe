#pragma once

#include "platform/config_server/element.h"

#include <string_view>
#include <vector>

namespace config_server
{

/// An element and the text it is looked up by, which the element's tree owns.
struct IndexEntry
{
    std::string_view key;
    const Element* element;
};

/// Elements by a text, exact case. Sorted rather than hashed, so that no choice of keys makes a look-up slow.
class ElementIndex
{
public:
    ElementIndex() = default;
    explicit ElementIndex(std::vector<IndexEntry> entries);

    /// Of several elements with this key the one that was entered first; null when there is none.
    const Element* find(std::string_view key) const;

    bool hasDuplicates() const;

private:
    std::vector<IndexEntry> entries_; ///< by key, equal ones in the order of entry
};

} // namespace config_server
