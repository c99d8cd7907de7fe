#include "selector_result.h"

#include <algorithm>
#include <optional>
#include <random>
#include <regex>

namespace
{

using namespace kvxtest;

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

/// The failure if an item shares a name with an earlier one.
std::optional<SelectorResult> findDuplicate(const std::vector<Item>& earlier, const Item& item)
{
    for (const std::string& name : item.names)
        for (const Item& other : earlier)
            if (std::find(other.names.begin(), other.names.end(), name) != other.names.end())
                return item.isRange || other.isRange
                           ? failure(0xBFFA0064, "An identifier in the range overlaps with another range.")
                           : badlyFormed();
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

/// What the selector stands for, worked out step by step with regular expressions and without regard to time.
SelectorResult expected(const std::string& selector)
{
    if (selector.find_first_not_of(" \t\n\v\f\r") == std::string::npos)
        return failure(
            0xBFFA0044,
            "No selector was specified for repeated capability 'OutputChannel'.  The repeated capability "
            "identifier can be null or empty only when there is exactly one physical name defined.  Repeated "
            "capability 'OutputChannel' has 6 physical names defined.");
    if (!std::regex_match(selector, grammar()))
        return badlyFormed();
    if (selector.find(':') != std::string::npos)
        return failure(
            0xBFFA0063,
            "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability.");
    std::vector<Item> items;
    for (const std::string& part : splitAtCommas(selector)) {
        const std::string text = stripped(part);
        Item item{{}, text.find('-') != std::string::npos};
        if (!item.isRange)
            item.names.push_back(text);
        else if (const auto failed = expand(text, item))
            return *failed;
        if (const auto failed = findDuplicate(items, item))
            return *failed;
        items.push_back(std::move(item));
    }
    return namesOf(items);
}

/// Texts that are nearly selectors.
class SelectorWriter
{
public:
    /// Without numbers beyond 32 bits no mutation makes a range that is too long to be written out.
    SelectorWriter(unsigned seed, bool withHugeNumbers) : random_(seed), withHugeNumbers_(withHugeNumbers) {}

    std::string selector()
    {
        // Half of the texts are made of the names there are, so that some of them name channels.
        isTame_ = oneIn(2);
        std::string text = level();
        while (oneIn(12))
            text += blanks() + ":" + level();
        return text;
    }

    std::string mutated()
    {
        std::string text = selector();
        for (std::size_t changes = 1 + below(3); changes > 0; --changes)
            mutate(text);
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    bool oneIn(std::size_t chance) { return below(chance) == 0; }

    template <std::size_t Size>
    std::string oneOf(const char* const (&texts)[Size])
    {
        return texts[below(Size)];
    }

    std::string blanks() { return oneOf({"", "", "", " ", "\t", " \n", "\v\f\r"}); }

    std::string number()
    {
        if (isTame_)
            return oneOf({"1", "2", "3", "4", "5", "6"});
        if (withHugeNumbers_ && oneIn(10))
            return oneOf({"2147483648", "00000000000000000006"});
        return oneOf({"0", "1", "3", "6", "7", "02", "10", "11"});
    }

    std::string base()
    {
        if (isTame_)
            return "OutputChannel";
        return oneOf({"OutputChannel", "OutputChannel", "outputchannel", "OUTPUTCHANNEL", "", "a", "A", "1x", "!_"});
    }

    std::string secondBase(const std::string& first)
    {
        if (oneIn(2))
            return "";
        return oneIn(3) ? base() : first;
    }

    std::string item()
    {
        const std::string name = base();
        const std::string single = blanks() + name + number();
        return oneIn(2) ? single : single + blanks() + "-" + blanks() + secondBase(name) + number();
    }

    std::string level()
    {
        std::string text = blanks() + (oneIn(4) ? "[" : "") + item();
        while (oneIn(2))
            text += blanks() + "," + item();
        return text + blanks() + (oneIn(4) ? "]" : "");
    }

    void mutate(std::string& text)
    {
        constexpr std::string_view kAlphabet = " \t,:-[]!_0129aAOlZ;.%\\\x01\xE9";
        const std::size_t at = below(text.size() + 1);
        const char c = kAlphabet[below(kAlphabet.size())];
        if (oneIn(3) && at < text.size())
            text.erase(at, 1);
        else if (oneIn(2) && at < text.size())
            text[at] = c;
        else
            text.insert(at, 1, c);
    }

    std::mt19937 random_;
    bool withHugeNumbers_;
    bool isTame_ = false;
};

class SelectorOracle : public RuntimeTest
{
public:
    void expectAsExpected(const std::string& selector)
    {
        const SelectorResult wanted = expected(selector);
        ++(wanted.status == VI_SUCCESS && wanted.exception.empty() ? accepted : refused);
        EXPECT_EQ(resolve(session, selector.c_str()), wanted) << testing::PrintToString(selector);
        clearLog();
    }

    TestSession session{vi};
    std::size_t accepted = 0;
    std::size_t refused = 0;
};

TEST_F(SelectorOracle, GeneratedSelectorsResolveAsTheGrammarSays)
{
    SelectorWriter writer(20240501, true);
    for (int i = 0; i < 3000; ++i)
        expectAsExpected(writer.selector());
    EXPECT_GT(accepted, 20U);
    EXPECT_GT(refused, 100U);
}

TEST_F(SelectorOracle, MutatedSelectorsResolveAsTheGrammarSays)
{
    SelectorWriter writer(7, false);
    for (int i = 0; i < 3000; ++i)
        expectAsExpected(writer.mutated());
    EXPECT_GT(accepted, 20U);
    EXPECT_GT(refused, 100U);
}

TEST_F(SelectorOracle, AllShortTextsResolveAsTheGrammarSays)
{
    constexpr std::string_view kAlphabet = "a1-,:[] !";
    for (std::size_t length = 0; length <= 4; ++length) {
        std::string text(length, kAlphabet.front());
        std::vector<std::size_t> digits(length, 0);
        for (bool more = true; more;) {
            expectAsExpected(text);
            more = false;
            for (std::size_t i = 0; i < length && !more; ++i) {
                digits[i] = (digits[i] + 1) % kAlphabet.size();
                text[i] = kAlphabet[digits[i]];
                more = digits[i] != 0;
            }
        }
    }
}

} // namespace
