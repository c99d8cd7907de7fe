#include "tools/store/xml_tree.h"

#include "platform/config_server/nesting.h"
#include "platform/config_server/store_file.h"
#include "tools/store/plain_text.h"
#include "tools/store/remedies.h"
#include "tools/store/store_error.h"
#include "tools/store/values.h"

#include <rapidxml/rapidxml.hpp>

#include <algorithm>
#include <array>
#include <numeric>

namespace store_tool
{
namespace
{

using XmlNode = rapidxml::xml_node<char>;
using XmlAttribute = rapidxml::xml_attribute<char>;

constexpr std::string_view kRootName = "IviConfigStore";
constexpr std::string_view kWhiteSpace = " \t\r\n";

std::optional<std::string> attributeOf(const XmlNode& node, const char* name)
{
    const XmlAttribute* const attribute = node.first_attribute(name);
    return attribute == nullptr ? std::nullopt
                                : std::optional(std::string(attribute->value(), attribute->value_size()));
}

/// What an element may hold besides text and elements, by how it begins and ends.
struct Markup
{
    std::string_view begin;
    std::string_view end;
};

constexpr std::array<Markup, 3> kMarkups{{
    {"<!--", "-->"},
    {"<![CDATA[", "]]>"},
    {"<?", "?>"},
}};

/// Makes elements of RapidXML's nodes. The parser shortens values where they stand but leaves each at its place, so
/// the beginnings of its names and values tell the places in the text; the ends are looked for in the text itself.
class TreeBuilder
{
public:
    TreeBuilder(std::string_view text, const char* parsed) : text_(text), parsed_(parsed) {}

    XmlElement build(const XmlNode& node) const
    {
        XmlElement element;
        element.name.assign(node.name(), node.name_size());
        element.id = attributeOf(node, "id");
        element.idref = attributeOf(node, "idref");
        element.begin = placeOf(node.name()) - 1;
        const std::size_t tagEnd = startTagEnd(node);
        element.hasEndTag = text_.at(tagEnd) == '>';
        element.contentBegin = element.hasEndTag ? tagEnd + 1 : tagEnd;
        addContent(element, node);
        indexChildren(element);
        element.contentEnd = element.hasEndTag ? endTag(element) : tagEnd;
        element.end = text_.find('>', element.contentEnd) + 1;
        return element;
    }

private:
    std::size_t placeOf(const char* parsed) const { return static_cast<std::size_t>(parsed - parsed_); }

    void addContent(XmlElement& element, const XmlNode& node) const
    {
        for (const XmlNode* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
            if (child->type() == rapidxml::node_element)
                element.children.push_back(build(*child));
            if (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata)
                element.text.append(child->value(), child->value_size());
        }
        if (element.name != "Value")
            element.text = std::string(trimmed(element.text));
    }

    /// Keeps looking a child up short whatever the file has.
    static void indexChildren(XmlElement& element)
    {
        constexpr std::size_t kMany = 64;
        const auto& children = element.children;
        if (children.size() < kMany)
            return;
        element.childrenByName.resize(children.size());
        std::iota(element.childrenByName.begin(), element.childrenByName.end(), std::size_t{0});
        std::stable_sort(
            element.childrenByName.begin(), element.childrenByName.end(),
            [&children](std::size_t one, std::size_t other) { return children[one].name < children[other].name; });
    }

    /// Where the ">" or "/>" of the start tag begins.
    std::size_t startTagEnd(const XmlNode& node) const
    {
        std::size_t place = placeOf(node.name()) + node.name_size();
        if (const XmlAttribute* const last = node.last_attribute()) {
            const std::size_t value = placeOf(last->value());
            place = text_.find(text_.at(value - 1), value) + 1;
        }
        return text_.find_first_not_of(kWhiteSpace, place);
    }

    /// Where the end tag begins: the next one behind the last child that is in no other markup.
    std::size_t endTag(const XmlElement& element) const
    {
        std::size_t place = element.children.empty() ? element.contentBegin : element.children.back().end;
        while ((place = text_.find('<', place)) != std::string_view::npos && text_.at(place + 1) != '/')
            place = markupEnd(place);
        if (text_.substr(std::min(place, text_.size())).substr(0, element.name.size() + 2) != "</" + element.name)
            throw StoreError("the end of <" + abridged(element.name) + "> is not where it should be", remedies::kNoXml);
        return place;
    }

    std::size_t markupEnd(std::size_t place) const
    {
        const std::string_view rest = text_.substr(place);
        for (const Markup& markup : kMarkups) {
            if (rest.starts_with(markup.begin))
                return place + rest.find(markup.end, markup.begin.size()) + markup.end.size();
        }
        throw StoreError("not well-formed XML: a declaration inside an element", remedies::kNoXml);
    }

    std::string_view text_;
    const char* parsed_;
};

/// The encoding that the XML declaration names; empty without one.
std::string_view declaredEncoding(std::string_view text)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    constexpr std::string_view kKey = "encoding";
    constexpr std::string_view kQuotes = "\"'";
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    if (!text.starts_with("<?xml"))
        return {};
    text = text.substr(0, text.find("?>"));
    const std::size_t key = text.find(kKey);
    const std::size_t begin = key == std::string_view::npos ? key : text.find_first_of(kQuotes, key);
    if (begin == std::string_view::npos)
        return {};
    const std::string_view value = text.substr(begin + 1);
    return value.substr(0, value.find(text[begin]));
}

/// New text is written in UTF-8, which would garble a file of another encoding.
void requireUtf8(std::string_view text)
{
    const std::string_view encoding = declaredEncoding(text);
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        throw StoreError("the encoding UTF-16 is not UTF-8", remedies::kNotUtf8);
    if (!encoding.empty() && !sameWord(encoding, "UTF-8") && !sameWord(encoding, "US-ASCII"))
        throw StoreError("the encoding " + inQuotes(encoding) + " is not UTF-8", remedies::kNotUtf8);
}

void requireLimits(const std::string& text)
{
    using namespace config_server;
    if (text.size() > kLargestFile)
        throw StoreError("larger than " + std::to_string(kLargestFile) + " bytes", remedies::kTooLarge);
    if (text.find('\0') != std::string::npos)
        throw StoreError("not well-formed XML: it has a zero byte", remedies::kNoXml);
    if (!staysWithin(text, {kDeepestNesting, kMostElements}))
        throw StoreError("not well-formed XML, or more than " + std::to_string(kMostElements) + " elements or " +
                             std::to_string(kDeepestNesting) + " levels",
                         remedies::kNoXml);
}

XmlElement build(const std::string& text)
{
    std::string parsed = text;
    rapidxml::xml_document<char> document;
    try {
        document.parse<rapidxml::parse_validate_closing_tags>(parsed.data());
    } catch (const rapidxml::parse_error& error) {
        const auto place = error.where<char>() - parsed.data();
        const auto line = std::count(text.begin(), text.begin() + place, '\n') + 1;
        throw StoreError("not well-formed XML: line " + std::to_string(line) + ": " + error.what(), remedies::kNoXml);
    }
    const XmlNode* const root = document.first_node();
    if (root == nullptr || root->next_sibling() != nullptr)
        throw StoreError("not well-formed XML: it has no single root element", remedies::kNoXml);
    return TreeBuilder(text, parsed.data()).build(*root);
}

} // namespace

const XmlElement* XmlElement::child(std::string_view childName) const
{
    if (childrenByName.empty()) {
        const auto found = std::find_if(children.begin(), children.end(),
                                        [childName](const XmlElement& element) { return element.name == childName; });
        return found == children.end() ? nullptr : &*found;
    }
    const auto first =
        std::lower_bound(childrenByName.begin(), childrenByName.end(), childName,
                         [this](std::size_t place, std::string_view wanted) { return children[place].name < wanted; });
    const bool isThere = first != childrenByName.end() && children[*first].name == childName;
    return isThere ? &children[*first] : nullptr;
}

const std::vector<XmlElement>& XmlElement::itemsOf(std::string_view collection) const
{
    static const auto& none = *new std::vector<XmlElement>;
    const XmlElement* const element = child(collection);
    return element == nullptr ? none : element->children;
}

std::string_view XmlElement::textOf(std::string_view childName) const
{
    const XmlElement* const element = child(childName);
    return element == nullptr ? std::string_view() : trimmed(element->text);
}

std::string_view XmlElement::referenceOf(std::string_view childName) const
{
    const XmlElement* const element = child(childName);
    return element == nullptr || !element->idref ? std::string_view() : *element->idref;
}

const XmlElement* findNamed(const XmlElement& owner, std::string_view collection, std::string_view elementName,
                            std::string_view wanted)
{
    const auto& items = owner.itemsOf(collection);
    const auto found = std::find_if(items.begin(), items.end(), [elementName, wanted](const XmlElement& item) {
        return item.name == elementName && item.textOf("Name") == wanted;
    });
    return found == items.end() ? nullptr : &*found;
}

XmlElement parseXml(const std::string& text)
{
    requireUtf8(text);
    requireLimits(text);
    XmlElement root = build(text);
    if (root.name != kRootName)
        throw StoreError("not a configuration store: the root element is <" + abridged(root.name) + ">",
                         remedies::kNoStore);
    return root;
}

} // namespace store_tool
