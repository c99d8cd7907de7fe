#include "store_file.h"

#include "nesting.h"
#include "property_rows.h"

#include <rapidxml/rapidxml.hpp>

#include <filesystem>
#include <fstream>
#include <optional>
#include <unordered_map>

namespace config_server
{

namespace
{

constexpr std::string_view kRootName = "IviConfigStore";

using XmlNode = rapidxml::xml_node<char>;
using ElementsById = std::unordered_map<std::string_view, const Element*>;

std::string attributeOf(const XmlNode& node, const char* name)
{
    const auto* const attribute = node.first_attribute(name);
    return attribute == nullptr ? std::string() : std::string(attribute->value(), attribute->value_size());
}

Element convert(const XmlNode& node)
{
    Element element;
    element.name.assign(node.name(), node.name_size());
    element.id = attributeOf(node, "id");
    element.idref = attributeOf(node, "idref");
    for (const XmlNode* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
        if (child->type() == rapidxml::node_element)
            element.children.push_back(convert(*child));
        if (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata)
            element.text.append(child->value(), child->value_size());
    }
    return element;
}

/// @return false when two elements have the same id
bool collectIds(const Element& element, ElementsById& byId)
{
    if (!element.id.empty() && !byId.emplace(element.id, &element).second)
        return false;
    for (const Element& child : element.children) {
        if (!collectIds(child, byId))
            return false;
    }
    return true;
}

/// An element that only refers is named as what it refers to, for software modules with "Ref" at the end.
bool refersTo(const Element& reference, const Element& target)
{
    return reference.name == target.name || reference.name == target.name + "Ref";
}

void resolveReferences(Element& element, const ElementsById& byId)
{
    const auto found = element.idref.empty() ? byId.end() : byId.find(element.idref);
    if (found != byId.end() && refersTo(element, *found->second))
        element.target = found->second;
    for (Element& child : element.children)
        resolveReferences(child, byId);
}

bool isValid(const Element& element)
{
    // A character reference can smuggle a terminator in, which no C caller would see behind.
    if (element.text.find('\0') != std::string::npos || !hasValidProperties(element))
        return false;
    for (const Element& child : element.children) {
        if (!isValid(child))
            return false;
    }
    return true;
}

Document finish(Element root)
{
    ElementsById byId;
    auto document = std::make_shared<Element>(std::move(root));
    if (document->name != kRootName || !isValid(*document) || !collectIds(*document, byId))
        return nullptr;
    resolveReferences(*document, byId);
    return document;
}

std::optional<std::string> readFile(const std::string& path)
{
    std::error_code error;
    // Only files: a pipe or a terminal would keep the caller waiting.
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > kLargestFile)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text(size, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file || file.gcount() != static_cast<std::streamsize>(text.size()))
        return std::nullopt;
    return text;
}

} // namespace

Document loadStoreFile(const std::string& path)
{
    auto text = readFile(path);
    return text ? parseStore(std::move(*text)) : nullptr;
}

Document parseStore(std::string text)
{
    if (text.find('\0') != std::string::npos || !staysWithin(text, {kDeepestNesting, kMostElements}))
        return nullptr;
    try {
        rapidxml::xml_document<char> xml;
        xml.parse<rapidxml::parse_validate_closing_tags>(text.data());
        const XmlNode* const root = xml.first_node();
        const bool single = root != nullptr && root->next_sibling() == nullptr;
        return single ? finish(convert(*root)) : nullptr;
    } catch (const rapidxml::parse_error&) {
        return nullptr;
    }
}

Document emptyStore()
{
    Element root;
    root.name = kRootName;
    return finish(std::move(root));
}

} // namespace config_server
