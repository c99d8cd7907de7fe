#pragma once

#include "platform/config_server/element_index.h"
#include "platform/config_server/kinds.h"

#include <IviConfigServer.h>

#include <string_view>
#include <vector>

namespace config_server
{

/// The items of one kind of collection of one object, in the order of the file. Keeps the object's tree.
class Collection
{
public:
    /// @param kind  one of the kinds of collections; an owner whose element lacks it has an empty one
    Collection(const Document& owner, Kinds kind);

    ViInt32 count() const;

    /// The item with this number, from 1 to the count; null for any other.
    Document item(ViInt32 number) const;

    /// The item with exactly this name; null when there is none.
    Document item(std::string_view name) const;

private:
    Document handOut(const Element* element) const;

    Document owner_;
    std::vector<const Element*> items_;
    ElementIndex byName_;
};

/// The items of one of these kinds inside a collection's element. A session or software module that only refers stands
/// for its target; any other item that refers is none.
std::vector<const Element*> itemsOf(const Element& owner, std::string_view collection, Kinds items);

/// The elements with their names as keys.
std::vector<IndexEntry> byName(const std::vector<const Element*>& elements);

} // namespace config_server
