#include "tools/kvx2800t/panel/lines.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <functional>
#include <map>

namespace panel
{
namespace
{

/// What stands in a line for each word behind a $.
using Words = std::map<std::string, std::string, std::less<>>;

std::string upper(std::string_view word)
{
    std::string text(word);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

template <class Text>
std::string joined(const std::vector<kvx2800t::ListGroup>& groups, Text text)
{
    std::string list;
    for (const auto& group : groups)
        list += (list.empty() ? "" : ", ") + text(group);
    return list;
}

/// A text between quotation marks, in either language.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result;
}

Words wordsOfBoth(const Action& action, const SessionTexts& session)
{
    return {{"channel", channelName(action.channel)},
            {"alias", channelAlias(action.channel)},
            {"value", literal(action.value)},
            {"cycles", std::to_string(action.cycles)},
            {"count", std::to_string(action.groups.size())},
            {"resource", escaped(session.resource)},
            {"options", escaped(session.options)}};
}

Words wordsOfC(const Action& action, const SessionTexts& session)
{
    Words words = wordsOfBoth(action, session);
    words["on"] = action.on ? "VI_TRUE" : "VI_FALSE";
    words["mode"] = "KVX2800T_VAL_SOURCE_MODE_" + upper(wordOf(action.mode));
    words["end"] = "KVX2800T_VAL_LIST_END_" + upper(wordOf(action.end));
    words["volts"] = joined(action.groups, [](const auto& group) { return literal(group.volts); });
    words["amperes"] = joined(action.groups, [](const auto& group) { return literal(group.amperes); });
    words["seconds"] = joined(action.groups, [](const auto& group) { return literal(group.seconds); });
    return words;
}

Words wordsOfPython(const Action& action, const SessionTexts& session)
{
    Words words = wordsOfBoth(action, session);
    words["on"] = action.on ? "True" : "False";
    words["mode"] = "SourceMode." + upper(wordOf(action.mode));
    words["end"] = "ListEnd." + upper(wordOf(action.end));
    words["simulate"] = session.simulated ? ", simulate=True" : "";
    words["groups"] = joined(action.groups, [](const auto& group) {
        return '(' + literal(group.volts) + ", " + literal(group.amperes) + ", " + literal(group.seconds) + ')';
    });
    return words;
}

std::string filled(std::string_view line, const Words& words)
{
    std::string text;
    while (!line.empty()) {
        const std::size_t mark = line.find('$');
        text += line.substr(0, mark);
        if (mark == std::string_view::npos)
            break;
        line.remove_prefix(mark + 1);
        const auto* const end = std::find_if_not(line.begin(), line.end(), [](char c) { return c >= 'a' && c <= 'z'; });
        const auto length = static_cast<std::size_t>(end - line.begin());
        text += words.find(line.substr(0, length))->second;
        line.remove_prefix(length);
    }
    return text;
}

std::vector<std::string> allFilled(const std::vector<std::string_view>& lines, const Words& words)
{
    std::vector<std::string> texts;
    std::transform(lines.begin(), lines.end(), std::back_inserter(texts),
                   [&words](std::string_view line) { return filled(line, words); });
    return texts;
}

} // namespace

std::vector<std::string> linesOfC(const Action& action, const SessionTexts& session)
{
    return allFilled(rowOf(action.kind).c, wordsOfC(action, session));
}

std::vector<std::string> linesOfPython(const Action& action, const SessionTexts& session)
{
    return allFilled(rowOf(action.kind).python, wordsOfPython(action, session));
}

std::string literal(double value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::string text(digits.data(), end);
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

} // namespace panel
