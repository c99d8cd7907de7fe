#include "base/option_grammar.h"

#include "base/ascii.h"

#include <algorithm>

namespace base
{
namespace
{

constexpr std::string_view kDriverSetup = "DriverSetup";

constexpr bool isNameOfSetup(char c)
{
    return ascii::isWord(c) || c == '+';
}

template <class Class>
std::string_view::size_type runLength(std::string_view text, Class inClass)
{
    const auto end = std::find_if_not(text.begin(), text.end(), inClass);
    return static_cast<std::string_view::size_type>(end - text.begin());
}

/// Takes the characters of a class off the front.
template <class Class>
std::string_view takeRun(std::string_view& text, Class inClass)
{
    const std::string_view run = text.substr(0, runLength(text, inClass));
    text.remove_prefix(run.size());
    return run;
}

/// Takes the next name off `text`, with what stands in front of it; empty at the end of the text.
template <class Class>
std::string_view takeName(std::string_view& text, Class inClass)
{
    takeRun(text, [inClass](char c) { return !inClass(c); });
    return takeRun(text, inClass);
}

/// Takes blanks and one of `separators`; false, with nothing taken but blanks, when it is not there. Blanks behind it
/// stay: the text of DriverSetup begins with them, values skip them.
bool takeSeparator(std::string_view& text, std::string_view separators)
{
    text = ascii::skipBlanks(text);
    if (text.empty() || separators.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

/// The value of a DriverSetup pair runs to the next comma and has at least one character: where nothing but blanks
/// stand in front of the comma, the last of them is the value.
std::string_view takeSetupValue(std::string_view& text)
{
    const std::string_view field = text.substr(0, text.find(','));
    const std::string_view value = ascii::skipBlanks(field);
    text.remove_prefix(field.size());
    return value.empty() && !field.empty() ? field.substr(field.size() - 1) : value;
}

std::size_t findIgnoringCase(std::string_view text, std::string_view wanted, std::size_t from)
{
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), wanted.begin(),
                                   wanted.end(), [](char a, char b) { return ascii::toLower(a) == ascii::toLower(b); });
    return found == text.end() ? std::string_view::npos : static_cast<std::size_t>(found - text.begin());
}

std::string_view withoutTrailingBlanks(std::string_view text)
{
    while (!text.empty() && ascii::isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

bool InherentOptions::*inherentOption(std::string_view name)
{
    for (const InherentOptionName& option : kInherentOptionNames)
        if (option.name == name)
            return option.flag;
    return nullptr;
}

OptionText splitOptionString(std::string_view optionString)
{
    for (std::size_t at = 0; (at = findIgnoringCase(optionString, kDriverSetup, at)) != std::string_view::npos;) {
        std::string_view rest = optionString.substr(at + kDriverSetup.size());
        if (takeSeparator(rest, "="))
            return {withoutTrailingBlanks(optionString.substr(0, at)), rest.substr(0, rest.find_first_of("\r\n"))};
        at += kDriverSetup.size();
    }
    return {optionString, std::nullopt};
}

std::optional<OptionPair> nextInherentOption(std::string_view& text)
{
    while (!text.empty()) {
        const std::string_view name = takeName(text, ascii::isWord);
        if (!takeSeparator(text, "="))
            continue;
        text = ascii::skipBlanks(text);
        const std::string_view value = takeRun(text, ascii::isWord);
        if (!value.empty())
            return OptionPair{name, value};
    }
    return std::nullopt;
}

std::optional<OptionPair> nextDriverSetupOption(std::string_view& text)
{
    while (!text.empty()) {
        const std::string_view name = takeName(text, isNameOfSetup);
        if (!takeSeparator(text, "=:"))
            continue;
        const std::string_view value = takeSetupValue(text);
        if (!value.empty())
            return OptionPair{name, value};
    }
    return std::nullopt;
}

std::optional<bool> parseOptionValue(std::string_view word)
{
    if (word == "true" || word == "vi_true" || word == "1")
        return true;
    if (word == "false" || word == "vi_false" || word == "0")
        return false;
    return std::nullopt;
}

std::string lowerCased(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), ascii::toLower);
    return lower;
}

} // namespace base
