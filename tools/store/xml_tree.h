#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// One element of a store file with the bytes it takes there, so that a change can leave all other bytes alone.
struct XmlElement
{
    std::string name;
    std::optional<std::string> id;
    std::optional<std::string> idref;
    std::string text; ///< its character data, references resolved, without white space at the ends but for a Value
    std::vector<XmlElement> children;
    std::vector<std::size_t> childrenByName; ///< their order by name, when they are many

    std::size_t begin = 0;        ///< where its start tag begins
    std::size_t contentBegin = 0; ///< behind the start tag; without an end tag, where "/>" begins
    std::size_t contentEnd = 0;   ///< where the end tag begins; without one, the same as contentBegin
    std::size_t end = 0;          ///< behind the element
    bool hasEndTag = false;

    /// The first child of this name; null when there is none.
    const XmlElement* child(std::string_view childName) const;

    /// The children of the first child of this name; none when there is no such child.
    const std::vector<XmlElement>& itemsOf(std::string_view collection) const;

    /// The text of a child without white space at both ends; empty when there is no such child.
    std::string_view textOf(std::string_view childName) const;

    /// What a reference child refers to by its idref; empty without one.
    std::string_view referenceOf(std::string_view childName) const;
};

/// The element with this name among the children of a collection; null when there is none.
const XmlElement* findNamed(const XmlElement& owner, std::string_view collection, std::string_view elementName,
                            std::string_view wanted);

/// Calls action(element) for the element and all below it, in the order of the file.
template <class Action>
void forEach(const XmlElement& element, const Action& action)
{
    action(element);
    for (const XmlElement& child : element.children)
        forEach(child, action);
}

/// Reads a store file's text. Throws StoreError when it is not well-formed UTF-8 XML, beyond the limits of the
/// configuration server, or no configuration store.
XmlElement parseXml(const std::string& text);

} // namespace store_tool
