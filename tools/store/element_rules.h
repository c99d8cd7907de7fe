#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace store_tool
{

/// What an element of a store holds.
enum class Content
{
    Text,
    Required,   ///< text that is not empty
    Identifier, ///< part of a selector; empty only with ranges
    Target,     ///< what a virtual name maps to; empty only with ranges
    Boolean,
    Integer, ///< 32 bits, signed
    Real,
    Index,     ///< an integer from 0 on, never left out
    Usage,     ///< Required, Optional or None
    TypeName,  ///< the type of a data component
    Reference, ///< nothing; its idref names the target
    Collection
};

/// An element that may stand in a collection.
struct ItemRule
{
    std::string_view element;
    bool isReference;
};

/// An element that may stand in another one; each at most once and in the order of the rules.
struct ChildRule
{
    std::string_view element;
    Content content;
    std::span<const ItemRule> items{}; ///< of a collection
    bool isObligatory = false;         ///< whatever its content
};

/// The rules for the content of an element with an id, or of the root; none for an unknown one.
std::span<const ChildRule> rulesFor(std::string_view element);

/// The place of a child in the order of the root's children; behind all others for an unknown one.
std::size_t positionInRoot(std::string_view child);

/// The name of the element that a reference leads to.
std::string_view referredElement(std::string_view reference);

} // namespace store_tool
