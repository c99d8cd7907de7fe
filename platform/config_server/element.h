#pragma once

#include <memory>
#include <string_view>
#include <vector>

namespace config_server
{

/// One element of a store file. A tree of them does not change once it is loaded; it owns the texts that its elements
/// point to.
struct Element
{
    std::string_view name;
    std::string_view id;
    std::string_view idref;
    std::string_view text; ///< character data, untrimmed
    std::vector<Element> children;
    const Element* target = nullptr; ///< what idref refers to, when the file has it

    /// The first child element of this name; null when there is none.
    const Element* child(std::string_view childName) const;

    /// The text of a child as the file has it; empty when there is no such child.
    std::string_view verbatimTextOf(std::string_view childName) const;

    /// The same without white space at both ends.
    std::string_view textOf(std::string_view childName) const;

    /// What the reference child of this name refers to; null without one, or when the file lacks its target.
    const Element* reference(std::string_view childName) const;
};

/// One element of a loaded store, the root to begin with. Whoever holds one holds the whole tree.
using Document = std::shared_ptr<const Element>;

} // namespace config_server
