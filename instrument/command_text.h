#pragma once

#include "instrument/enumerations.h"

#include <string>
#include <string_view>
#include <type_traits>

/// Composition of SCPI command lines. Everything is appended to a line that the caller keeps, so that composing the
/// next command of a session allocates nothing.
namespace TSRO
{

/// A command header and how the channel number, if there is one, gets into it.
class Header
{
    enum class Form
    {
        Plain,
        Source,           ///< the text follows the node with the channel
        SourceWithColons, ///< as Source, with colons in the text that begin no node
        Suffix,
    };

    /// The text of a header with its first node taken off; off a literal when this is compiled.
    struct SourceText
    {
        // NOLINTBEGIN(google-explicit-constructor)
        consteval SourceText(const char* literal) : SourceText(std::string_view(literal)) {}
        constexpr SourceText(const std::string& text) : SourceText(std::string_view(text)) {}
        constexpr SourceText(std::string_view text) : nodes(text), isQuery(hasQuestionMark(text)) { takeFirstNode(); }
        // NOLINTEND(google-explicit-constructor)

        constexpr void takeFirstNode();

        std::string_view nodes;
        Form form = Form::Plain;
        bool isQuery;
    };

public:
    /// The text as it stands.
    constexpr Header(const char* text) : Header(std::string_view(text)) {} // NOLINT(google-explicit-constructor)
    constexpr Header(std::string_view text)                                // NOLINT(google-explicit-constructor)
        : Header(text, Form::Plain, hasQuestionMark(text), 0)
    {
    }

    /// The channel in the first node: ":SOUR:VOLT" becomes ":SOUR3:VOLT". A first node that does not begin with
    /// "SOUR" gets the node "SOUR<channel>" put in front of it; an empty header stays empty.
    static constexpr Header ofSource(SourceText text, ViInt32 channel)
    {
        return {text.nodes, text.form, text.isQuery, channel};
    }

    /// The channel in place of "{}".
    static constexpr Header withSuffix(std::string_view text, ViInt32 channel)
    {
        return {text, Form::Suffix, hasQuestionMark(text), channel};
    }

    void appendTo(std::string& line) const;

    /// As appendTo, and a question mark unless the header has one anywhere.
    void appendQueryTo(std::string& line) const;

private:
    static constexpr std::string_view kSourceNode = ":SOUR";

    constexpr Header(std::string_view text, Form form, bool isQuery, ViInt32 channel)
        : text_(text), form_(form), isQuery_(isQuery), channel_(channel)
    {
    }

    /// Of a literal the compiler knows.
    static constexpr bool hasQuestionMark(std::string_view text) { return text.find('?') != std::string_view::npos; }

    void appendSource(std::string& line) const;
    void appendSuffixed(std::string& line) const;

    std::string_view text_;
    Form form_;
    bool isQuery_; ///< whether there is a question mark already
    ViInt32 channel_;
};

constexpr void Header::SourceText::takeFirstNode()
{
    while (nodes.starts_with(':'))
        nodes.remove_prefix(1);
    if (nodes.empty())
        return;
    if (nodes.starts_with(kSourceNode.substr(1)))
        nodes.remove_prefix(nodes.find(':') == std::string_view::npos ? nodes.size() : nodes.find(':'));
    const bool beginsNodes = nodes.empty() || (nodes.starts_with(':') && !nodes.ends_with(':'));
    const bool hasOnlyNodes = beginsNodes && nodes.find("::") == std::string_view::npos;
    form = hasOnlyNodes ? Form::Source : Form::SourceWithColons;
}

/// A channel that stands in a command or a reply by its name: "CH1" to "CH4", "SER", "PAR".
struct ChannelName
{
    ViInt32 channel;
};

/// An argument as commands spell it: text as it stands, numbers as C's "%f" and "%d" in the C locale, booleans as "ON"
/// and "OFF", enumerations and channels as their first keyword.
/// @throws std::out_of_range "invalid map<K, T> key" when an enumeration or a channel has no keyword.
void appendArgument(std::string& line, std::string_view text);
void appendArgument(std::string& line, double number);
void appendArgument(std::string& line, ViInt32 number);
void appendArgument(std::string& line, ChannelName name);

// A template, so that no pointer or number converts to it.
template <std::same_as<bool> Boolean>
void appendArgument(std::string& line, Boolean on)
{
    appendArgument(line, on ? std::string_view("ON") : std::string_view("OFF"));
}

template <class Enumeration>
requires std::is_enum_v<Enumeration>
void appendArgument(std::string& line, Enumeration value)
{
    appendArgument(line, kKeywordTable<Enumeration>.keyword(static_cast<ViInt32>(value)));
}

/// One blank, and the arguments joined by commas.
template <class First, class... Rest>
void appendArguments(std::string& line, const First& first, const Rest&... rest)
{
    line += ' ';
    appendArgument(line, first);
    ((line += ',', appendArgument(line, rest)), ...);
}

} // namespace TSRO
