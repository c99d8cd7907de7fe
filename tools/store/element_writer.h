#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// How new elements are laid out among their neighbours.
struct Layout
{
    std::string lineBreak; ///< with the indentation of the elements; empty for all in one line
    std::string step;      ///< further indentation of each level below them
};

/// Writes elements one after the other, without a line break before the first and after the last.
class ElementWriter
{
public:
    explicit ElementWriter(Layout layout) : layout_(std::move(layout)) {}

    /// Begins an element; the following ones are its content until close().
    ElementWriter& open(std::string_view name);
    ElementWriter& open(std::string_view name, std::string_view id);
    ElementWriter& close();

    /// An element with text, which is escaped.
    ElementWriter& leaf(std::string_view name, std::string_view text);

    ElementWriter& empty(std::string_view name);
    ElementWriter& reference(std::string_view name, std::string_view idref);

    const std::string& text() const { return text_; }

private:
    void beginLine();

    Layout layout_;
    std::vector<std::string> open_;
    std::string text_;
};

} // namespace store_tool
