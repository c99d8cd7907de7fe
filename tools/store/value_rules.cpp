#include "tools/store/value_rules.h"

#include "tools/store/plain_text.h"
#include "tools/store/session_entry.h"
#include "tools/store/values.h"

#include <algorithm>
#include <array>
#include <utility>

namespace store_tool
{
namespace
{

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kTypeNames{{
    {"IviBoolean", "Boolean"},
    {"IviInteger", "Integer"},
    {"IviReal", "Real"},
    {"IviString", "String"},
    {"IviStructure", "Structure"},
    {"IviAPIReference", "APIReference"},
}};

std::string_view typeNameOf(std::string_view element)
{
    const auto* const found =
        std::find_if(kTypeNames.begin(), kTypeNames.end(), [element](const auto& row) { return row.first == element; });
    return found == kTypeNames.end() ? std::string_view() : found->second;
}

bool isUsage(std::string_view text)
{
    constexpr std::array<std::string_view, 3> kUsages{"Required", "Optional", "None"};
    return std::any_of(kUsages.begin(), kUsages.end(),
                       [text](std::string_view usage) { return sameWord(usage, text); });
}

bool isIndex(std::string_view text)
{
    const auto number = parseInteger(text);
    return number && *number >= 0;
}

/// True for text that may be broken into lines.
bool isReadable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
    return isPlainText(text);
}

bool hasRanges(const XmlElement& name)
{
    return !name.itemsOf("VirtualRanges").empty() || !name.itemsOf("PhysicalRanges").empty();
}

std::string unless(bool isRight, std::string_view text, std::string_view problem)
{
    return isRight ? std::string() : inQuotes(text) + std::string(problem);
}

/// Names and values that drivers read into a buffer of their own.
bool isReadByDrivers(std::string_view element)
{
    constexpr std::array<std::string_view, 6> kRead{"Name",        "MapTo", "RCName", "IOResourceDescriptor",
                                                    "DriverSetup", "Value"};
    return std::find(kRead.begin(), kRead.end(), element) != kRead.end();
}

/// What the configuration server gives drivers of a text: white space at its ends belongs to values of strings alone.
std::string_view textGiven(const XmlElement& owner, const XmlElement& child)
{
    return owner.name == "IviString" ? std::string_view(child.text) : trimmed(child.text);
}

std::string problemOfText(const XmlElement& owner, std::string_view text, Content content)
{
    switch (content) {
    case Content::Boolean:
        return unless(parseBoolean(text).has_value(), text, " is not a boolean");
    case Content::Integer:
        return unless(parseInteger(text).has_value(), text, " is not an integer");
    case Content::Real:
        return unless(parseReal(text).has_value(), text, " is not a real number");
    case Content::Index:
        return unless(isIndex(text), text, " is not an index");
    case Content::Usage:
        return unless(isUsage(text), text, " is not Required, Optional or None");
    case Content::TypeName:
        return unless(sameWord(text, typeNameOf(owner.name)), text, " is not " + std::string(typeNameOf(owner.name)));
    case Content::Identifier:
        return unless(isIdentifier(text), text, " has characters other than a-z A-Z 0-9 ! _");
    default:
        return {};
    }
}

} // namespace

std::string problemOf(const XmlElement& owner, const XmlElement& child, Content content)
{
    const std::string_view text = trimmed(child.text);
    if (!isReadable(child.text))
        return "has control characters or is not UTF-8";
    if (text.empty() && isNeeded(owner, content))
        return "is empty";
    const std::size_t size = textGiven(owner, child).size();
    if (isReadByDrivers(child.name) && size > kLongestText)
        return "has " + std::to_string(size) + " bytes, of which many drivers read " + std::to_string(kLongestText);
    return problemOfText(owner, text, content);
}

bool isNeeded(const XmlElement& owner, Content content)
{
    const bool isName = content == Content::Identifier || content == Content::Target;
    return content == Content::Required || content == Content::Index || (isName && !hasRanges(owner));
}

} // namespace store_tool
