#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace config_server
{

/// One element of a store file. A tree of them does not change once it is loaded.
struct Element
{
    std::string name;
    std::string id;
    std::string idref;
    std::string text; ///< character data, untrimmed
    std::vector<Element> children;
    const Element* target = nullptr; ///< what idref refers to, when the file has it

    /// The first child element of this name; null when there is none.
    const Element* child(std::string_view childName) const;

    /// The text of a child without white space at both ends; empty when there is no such child.
    std::string_view textOf(std::string_view childName) const;

    /// The item with this name among the itemName elements inside a collection child; null when there is none.
    const Element* itemByName(std::string_view collection, std::string_view itemName, std::string_view wanted) const;

    /// What the reference child of this name refers to; null without one, or when the file lacks its target.
    const Element* reference(std::string_view childName) const;
};

/// A loaded store, from its root element. Whoever holds one of its elements holds the whole tree.
using Document = std::shared_ptr<const Element>;

} // namespace config_server
