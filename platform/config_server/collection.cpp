#include "platform/config_server/collection.h"

#include <algorithm>
#include <array>

namespace config_server
{
namespace
{

struct CollectionRow
{
    Kinds kind;
    std::string_view element;
    Kinds items;
};

constexpr std::array<CollectionRow, 7> kCollections{{
    {kDriverSessions, "DriverSessions", kDriverSession},
    {kLogicalNames, "LogicalNames", kLogicalName},
    {kSoftwareModules, "SoftwareModules", kSoftwareModule},
    {kPhysicalNames, "PhysicalNames", kPhysicalName},
    {kVirtualNames, "VirtualNames", kVirtualName},
    {kVirtualRanges, "VirtualRanges", kVirtualRange},
    {kDataComponents, "DataComponents", kDataComponent},
}};

std::vector<const Element*> itemsOf(const Element& owner, Kinds kind)
{
    const auto* const row = std::ranges::find(kCollections, kind, &CollectionRow::kind);
    if (row == kCollections.end())
        return {};
    return itemsOf(owner, row->element, row->items);
}

/// What an item stands for; null for a reference that leads nowhere. Only configurable components are referred to: were
/// the contents of others followed, a structure could contain itself.
const Element* objectOf(const Element& item)
{
    if (item.idref.empty())
        return &item;
    return (kindOf(item.name) & kConfigComponent) == 0 ? nullptr : item.target;
}

} // namespace

Collection::Collection(const Document& owner, Kinds kind)
    : owner_(owner), items_(itemsOf(*owner, kind)), byName_(byName(items_))
{
}

ViInt32 Collection::count() const
{
    // The limits of a store file keep it within 32 bits.
    return static_cast<ViInt32>(items_.size());
}

Document Collection::item(ViInt32 number) const
{
    return number < 1 || number > count() ? nullptr : handOut(items_[static_cast<std::size_t>(number) - 1]);
}

Document Collection::item(std::string_view name) const
{
    return handOut(byName_.find(name));
}

Document Collection::handOut(const Element* element) const
{
    return element == nullptr ? nullptr : Document(owner_, element);
}

std::vector<const Element*> itemsOf(const Element& owner, std::string_view collection, Kinds items)
{
    std::vector<const Element*> found;
    const Element* const element = owner.child(collection);
    if (element == nullptr)
        return found;
    for (const Element& item : element->children) {
        const Element* const object = (kindOf(item.name) & items) == 0 ? nullptr : objectOf(item);
        if (object != nullptr)
            found.push_back(object);
    }
    return found;
}

std::vector<IndexEntry> byName(const std::vector<const Element*>& elements)
{
    std::vector<IndexEntry> entries;
    entries.reserve(elements.size());
    for (const Element* const element : elements)
        entries.push_back({element->textOf("Name"), element});
    return entries;
}

} // namespace config_server
