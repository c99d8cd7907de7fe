#include "tests/support/driver/reference_selector.h"

#include <algorithm>
#include <map>
#include <optional>
#include <regex>

namespace kvxtest
{
namespace
{

constexpr auto kFlags = std::regex::ECMAScript | std::regex::icase | std::regex::optimize;

/// The selector grammar as one regular expression.
const std::regex& grammar()
{
    static const std::regex instance = [] {
        const std::string range = R"((?:\s*[\w_!]*?[0-9]+\s*-\s*[\w_!]*?[0-9]+))";
        const std::string item = "(?:" + range + R"(|\s*[\w_!]+))";
        const std::string list = item + R"((?:\s*,)" + item + ")*";
        return std::regex(R"(^(?:\s*\[?)" + list + R"(\s*\]?)(?:\s*:\s*\[?)" + list + R"(\s*\]?)*$)", kFlags);
    }();
    return instance;
}

const std::regex& rangeGrammar()
{
    static const std::regex instance(R"(^\s*([\w_!]*?)([0-9]+)\s*-\s*(?:\1)?([0-9]+)$)", kFlags);
    return instance;
}

struct Item
{
    std::vector<std::string> names;
    bool isRange = false;
};

SelectorResult failure(ViUInt32 status, std::string text)
{
    return refusal(code(status), std::move(text));
}

const SelectorResult& badlyFormed()
{
    static const SelectorResult instance = failure(0xBFFA0066, "The repeated capability selector is badly-formed.");
    return instance;
}

std::string stripped(std::string text)
{
    const char* const kSurround = " \t\n\v\f\r[]";
    text.erase(0, std::min(text.find_first_not_of(kSurround), text.size()));
    text.erase(text.find_last_not_of(kSurround) + 1);
    return text;
}

std::vector<std::string> splitAtCommas(const std::string& text)
{
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t comma = 0; (comma = text.find(',', from)) != std::string::npos; from = comma + 1)
        parts.push_back(text.substr(from, comma - from));
    parts.push_back(text.substr(from));
    return parts;
}

/// Expands a range into its names; the failure if there is one.
std::optional<SelectorResult> expand(const std::string& text, Item& item)
{
    std::smatch match;
    if (!std::regex_match(text, match, rangeGrammar()))
        return failure(0xBFFA0064, "The base names do not match.");
    int first = 0;
    int last = 0;
    try {
        first = std::stoi(match[2]);
        last = std::stoi(match[3]);
    } catch (const std::out_of_range&) {
        return exceptionIs("stoi argument out of range");
    }
    if (first >= last)
        return failure(0xBFFA0064, "The start index must be less than the end index.");
    for (int number = first; number <= last; ++number)
        item.names.push_back(match[1].str() + std::to_string(number));
    return std::nullopt;
}

/// The names of the items so far, and whether each comes from a range.
using TakenNames = std::map<std::string, bool>;

/// Takes the names of an item; the failure if one of them is taken already.
std::optional<SelectorResult> take(TakenNames& taken, const Item& item)
{
    for (const std::string& name : item.names)
        if (const auto earlier = taken.find(name); earlier != taken.end())
            return item.isRange || earlier->second
                       ? failure(0xBFFA0064, "An identifier in the range overlaps with another range.")
                       : badlyFormed();
    for (const std::string& name : item.names)
        taken.emplace(name, item.isRange);
    return std::nullopt;
}

bool isPhysical(const std::string& name)
{
    return name.size() == 14 && name.starts_with("OutputChannel") && name[13] >= '1' && name[13] <= '6';
}

SelectorResult namesOf(const std::vector<Item>& items)
{
    SelectorResult result;
    for (const Item& item : items)
        for (const std::string& name : item.names) {
            if (!isPhysical(name))
                return failure(0xBFFA0067,
                               "The identifier '" + name + "' is not defined for repeated capability 'OutputChannel'.");
            result.names.push_back(name);
        }
    return result;
}

/// Tokens, and what stands in their places.
using Texts = std::map<std::string, std::string>;

std::string substituted(const std::string& selector, const Texts& texts)
{
    static const std::regex kToken(R"([\w_!]+)", std::regex::optimize);
    std::string result;
    auto copied = selector.begin();
    for (std::sregex_iterator match(selector.begin(), selector.end(), kToken); match != std::sregex_iterator(); ++match)
    {
        const std::string token = match->str();
        const auto text = texts.find(token);
        result.append(copied, (*match)[0].first);
        result += text == texts.end() ? token : text->second;
        copied = (*match)[0].second;
    }
    return result.append(copied, selector.end());
}

/// The short names of the channels.
Texts aliases()
{
    Texts texts;
    for (int channel = 1; channel <= 6; ++channel)
        texts["CH" + std::to_string(channel)] = "OutputChannel" + std::to_string(channel);
    return texts;
}

/// Every token that is a virtual name or an alias, and what it stands for. Ranges are written out.
Texts replacements(const std::vector<StoredVirtualName>& virtualNames)
{
    const Texts channels = aliases();
    Texts texts = channels;
    for (const StoredVirtualName& name : virtualNames) {
        if (name.ranges.empty())
            texts[name.name] = substituted(name.mapTo, channels);
        for (const StoredVirtualRange& range : name.ranges) {
            const auto [first, last] = std::minmax(range.minimum, range.maximum);
            for (long long i = first; i <= last; ++i)
                texts[name.name + std::to_string(i)] =
                    substituted(name.mapTo + std::to_string(range.startingPhysicalIndex + (i - first)), channels);
        }
    }
    return texts;
}

/// A level that fits the grammar.
SelectorResult resolveLevel(const std::string& level)
{
    std::vector<Item> items;
    TakenNames taken;
    for (const std::string& part : splitAtCommas(level)) {
        const std::string text = stripped(part);
        Item item{{}, text.find('-') != std::string::npos};
        if (!item.isRange)
            item.names.push_back(text);
        else if (const auto failed = expand(text, item))
            return *failed;
        if (const auto failed = take(taken, item))
            return *failed;
        items.push_back(std::move(item));
    }
    return namesOf(items);
}

} // namespace

bool fitsSelectorGrammar(const std::string& text)
{
    return std::regex_match(text, grammar());
}

SelectorResult referenceResolve(const std::string& selector, const std::vector<StoredVirtualName>& virtualNames)
{
    if (selector.find_first_not_of(" \t\n\v\f\r") == std::string::npos)
        return failure(
            0xBFFA0044,
            "No selector was specified for repeated capability 'OutputChannel'.  The repeated capability "
            "identifier can be null or empty only when there is exactly one physical name defined.  Repeated "
            "capability 'OutputChannel' has 6 physical names defined.");
    if (!fitsSelectorGrammar(selector))
        return badlyFormed();
    const std::string text = substituted(selector, replacements(virtualNames));
    if (!fitsSelectorGrammar(text))
        return badlyFormed();
    if (text.find(':') != std::string::npos)
        return failure(
            0xBFFA0063,
            "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability.");
    return resolveLevel(text);
}

} // namespace kvxtest
