#include "platform/config_server/store_file.h"

#include "platform/config_server/element_index.h"
#include "platform/config_server/files.h"
#include "platform/config_server/nesting.h"
#include "platform/config_server/properties.h"

#include <rapidxml/rapidxml.hpp>

#include <deque>

namespace config_server
{
namespace
{

constexpr std::string_view kRootName = "IviConfigStore";

using XmlNode = rapidxml::xml_node<char>;

/// A file's elements with what they point to.
struct Tree
{
    explicit Tree(std::string file) : text(std::move(file)) {}

    std::string text;               ///< RapidXML replaces entities in place
    std::deque<std::string> joined; ///< texts that the file has in several pieces
    Element root;
};

std::string_view attributeOf(const XmlNode& node, const char* name)
{
    const auto* const attribute = node.first_attribute(name);
    return attribute == nullptr ? std::string_view() : std::string_view(attribute->value(), attribute->value_size());
}

/// The character data of one element: a view of the file, unless child elements or comments divide it.
class TextCollector
{
public:
    explicit TextCollector(std::deque<std::string>& joined) : joined_(joined) {}

    void add(std::string_view piece)
    {
        if (text_.empty()) {
            text_ = piece;
            return;
        }
        if (own_ == nullptr)
            own_ = &joined_.emplace_back(text_);
        text_ = own_->append(piece);
    }

    std::string_view text() const { return text_; }

private:
    std::deque<std::string>& joined_;
    std::string_view text_;
    std::string* own_ = nullptr;
};

std::size_t countChildren(const XmlNode& node)
{
    std::size_t count = 0;
    for (const XmlNode* child = node.first_node(); child != nullptr; child = child->next_sibling())
        count += child->type() == rapidxml::node_element ? 1 : 0;
    return count;
}

void convert(const XmlNode& node, Element& element, std::deque<std::string>& joined)
{
    element.name = {node.name(), node.name_size()};
    element.id = attributeOf(node, "id");
    element.idref = attributeOf(node, "idref");
    element.children.reserve(countChildren(node));
    TextCollector text(joined);
    for (const XmlNode* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
        if (child->type() == rapidxml::node_element)
            convert(*child, element.children.emplace_back(), joined);
        if (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata)
            text.add({child->value(), child->value_size()});
    }
    element.text = text.text();
}

void collectIds(const Element& element, std::vector<IndexEntry>& ids)
{
    if (!element.id.empty())
        ids.push_back({element.id, &element});
    for (const Element& child : element.children)
        collectIds(child, ids);
}

ElementIndex indexIds(const Element& root)
{
    std::vector<IndexEntry> ids;
    collectIds(root, ids);
    return ElementIndex(std::move(ids));
}

/// An element that only refers is named as what it refers to, for software modules with "Ref" at the end.
bool refersTo(const Element& reference, const Element& target)
{
    constexpr std::string_view kSuffix = "Ref";
    std::string_view name = reference.name;
    if (name == target.name)
        return true;
    if (!name.ends_with(kSuffix))
        return false;
    name.remove_suffix(kSuffix.size());
    return name == target.name;
}

void resolveReferences(Element& element, const ElementIndex& byId)
{
    const Element* const found = element.idref.empty() ? nullptr : byId.find(element.idref);
    if (found != nullptr && refersTo(element, *found))
        element.target = found;
    for (Element& child : element.children)
        resolveReferences(child, byId);
}

bool isValid(const Element& element)
{
    // A character reference can smuggle a terminator in, which no C caller would see behind.
    if (element.text.find('\0') != std::string_view::npos || !hasValidProperties(element))
        return false;
    for (const Element& child : element.children) {
        if (!isValid(child))
            return false;
    }
    return true;
}

Document finish(const std::shared_ptr<Tree>& tree)
{
    Element& root = tree->root;
    if (root.name != kRootName || !isValid(root))
        return nullptr;
    const ElementIndex byId = indexIds(root);
    if (byId.hasDuplicates())
        return nullptr;
    resolveReferences(root, byId);
    return {tree, &root};
}

} // namespace

Document loadStoreFile(const std::string& path)
{
    auto text = readFile(path, kLargestFile);
    return text ? parseStore(std::move(*text)) : nullptr;
}

Document parseStore(std::string text)
{
    if (text.find('\0') != std::string::npos || !staysWithin(text, {kDeepestNesting, kMostElements}))
        return nullptr;
    try {
        const auto tree = std::make_shared<Tree>(std::move(text));
        rapidxml::xml_document<char> xml;
        xml.parse<rapidxml::parse_validate_closing_tags | rapidxml::parse_no_element_values>(tree->text.data());
        const XmlNode* const root = xml.first_node();
        if (root == nullptr || root->next_sibling() != nullptr)
            return nullptr;
        convert(*root, tree->root, tree->joined);
        return finish(tree);
    } catch (const rapidxml::parse_error&) {
        return nullptr;
    }
}

Document emptyStore()
{
    const auto tree = std::make_shared<Tree>(std::string());
    tree->root.name = kRootName;
    return finish(tree);
}

} // namespace config_server
