#pragma once

#include "tools/store/element_writer.h"
#include "tools/store/xml_tree.h"

#include <functional>
#include <string>
#include <string_view>

namespace store_tool
{

/// The text of a store file and its elements. A change puts bytes in or takes bytes out at one place and leaves all
/// others as they are; taking out what was put in gives the text from before, byte for byte. Every change replaces the
/// tree, and with it all pointers into it.
class StoreText
{
public:
    /// Throws StoreError like parseXml.
    explicit StoreText(std::string text);

    const std::string& text() const { return text_; }
    const XmlElement& root() const { return root_; }

    /// Puts in what `write` writes, as the last items of a collection of the root, in the layout of their neighbours.
    /// Makes the collection when there is none. Throws StoreError, changing nothing, when the result has no room
    /// within the limits.
    void append(std::string_view collection, const std::function<void(ElementWriter&)>& write);

    /// Takes the items out of a collection of the root for which `isMeant` holds. @return how many
    std::size_t remove(std::string_view collection, const std::function<bool(const XmlElement&)>& isMeant);

    /// Puts in what `write` writes behind an element of this store, in its layout. Throws StoreError like append().
    void insertBehind(const XmlElement& neighbour, const std::function<void(ElementWriter&)>& write);

    /// Takes an element of this store out, with the white space before it.
    void erase(const XmlElement& element);

private:
    /// Where new elements go: instead of the bytes from begin to end, between two texts.
    struct Gap
    {
        std::size_t begin;
        std::size_t end;
        std::string before;
        std::string after;
        Layout layout;
    };

    Gap gapAtEndOf(const XmlElement& owner) const;
    Gap gapBehind(const XmlElement& neighbour, std::size_t place) const;
    Gap gapForCollection(std::string_view name) const;
    void fill(const Gap& gap, const std::function<void(ElementWriter&)>& write);
    void replace(std::string text);

    bool beginsLine(const XmlElement& element) const;
    std::string indentationOf(const XmlElement& element) const;
    std::size_t spaceBefore(std::size_t place) const;
    std::string_view contentOf(const XmlElement& element) const;
    std::string lineBreak() const;

    std::string text_;
    XmlElement root_;
};

/// The id by which an element of the store can be told from all others. Throws StoreError when it has none.
std::string soleIdOf(const StoreText& store, const XmlElement& element);

/// A store without entries, as a first installation leaves it.
std::string emptyStoreText();

} // namespace store_tool
