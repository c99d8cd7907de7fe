#include "tools/store/store_text.h"

#include "tools/store/element_rules.h"
#include "tools/store/plain_text.h"
#include "tools/store/store_error.h"

#include <algorithm>

namespace store_tool
{
namespace
{

constexpr std::string_view kSpace = " \t\r\n";
const std::string kStep = "  ";

bool isBlank(std::string_view content)
{
    return content.find_first_not_of(kSpace) == std::string_view::npos;
}

} // namespace

StoreText::StoreText(std::string text) : text_(std::move(text)), root_(parseXml(text_)) {}

void StoreText::replace(std::string text)
{
    root_ = parseXml(text);
    text_ = std::move(text);
}

/// Where the white space begins that stands before a place.
std::size_t StoreText::spaceBefore(std::size_t place) const
{
    const std::size_t last = std::string_view(text_).substr(0, place).find_last_not_of(kSpace);
    return last == std::string_view::npos ? 0 : last + 1;
}

bool StoreText::beginsLine(const XmlElement& element) const
{
    const std::size_t space = spaceBefore(element.begin);
    return space == 0 || std::string_view(text_).substr(space, element.begin - space).find('\n') != std::string::npos;
}

/// The white space at the beginning of the line in which the element begins.
std::string StoreText::indentationOf(const XmlElement& element) const
{
    const std::size_t before = element.begin == 0 ? std::string::npos : text_.rfind('\n', element.begin - 1);
    const std::size_t line = before == std::string::npos ? 0 : before + 1;
    const std::size_t end = std::min(text_.find_first_not_of(" \t", line), element.begin);
    return text_.substr(line, end - line);
}

std::string_view StoreText::contentOf(const XmlElement& element) const
{
    return std::string_view(text_).substr(element.contentBegin, element.contentEnd - element.contentBegin);
}

/// The line break that the file uses.
std::string StoreText::lineBreak() const
{
    return text_.find("\r\n") == std::string::npos ? "\n" : "\r\n";
}

/// A place among elements: on a line of its own when the neighbour has one.
StoreText::Gap StoreText::gapBehind(const XmlElement& neighbour, std::size_t place) const
{
    if (!beginsLine(neighbour))
        return {place, place, "", "", {"", ""}};
    const std::string line = lineBreak() + indentationOf(neighbour);
    return {place, place, line, "", {line, kStep}};
}

/// The three kinds of empty content are filled so differently that remove() can tell which one it was.
StoreText::Gap StoreText::gapAtEndOf(const XmlElement& owner) const
{
    const std::string ownerLine = lineBreak() + indentationOf(owner);
    const std::string itemLine = ownerLine + kStep;
    if (!owner.hasEndTag)
        return {owner.contentBegin, owner.end, ">" + itemLine, ownerLine + "</" + owner.name + ">", {itemLine, kStep}};
    if (isBlank(contentOf(owner)))
        return {owner.contentBegin, owner.contentBegin, "", "", {itemLine, kStep}};
    const std::size_t place = spaceBefore(owner.contentEnd);
    if (owner.children.empty())
        return {place, place, itemLine, "", {itemLine, kStep}};
    return gapBehind(owner.children.back(), place);
}

StoreText::Gap StoreText::gapForCollection(std::string_view name) const
{
    if (root_.children.empty())
        return gapAtEndOf(root_);
    const std::size_t position = positionInRoot(name);
    const auto before =
        std::find_if(root_.children.rbegin(), root_.children.rend(),
                     [position](const XmlElement& child) { return positionInRoot(child.name) < position; });
    return before == root_.children.rend() ? gapBehind(root_.children.front(), root_.contentBegin)
                                           : gapBehind(*before, before->end);
}

void StoreText::fill(const Gap& gap, const std::function<void(ElementWriter&)>& write)
{
    ElementWriter writer(gap.layout);
    write(writer);
    try {
        replace(text_.substr(0, gap.begin) + gap.before + writer.text() + gap.after + text_.substr(gap.end));
    } catch (const StoreError& error) {
        throw StoreError(std::string("the store has no room: it would be ") + error.what());
    }
}

void StoreText::append(std::string_view collection, const std::function<void(ElementWriter&)>& write)
{
    if (const XmlElement* const owner = root_.child(collection)) {
        fill(gapAtEndOf(*owner), write);
        return;
    }
    fill(gapForCollection(collection), [&](ElementWriter& writer) {
        writer.open(collection);
        write(writer);
        writer.close();
    });
}

std::size_t StoreText::remove(std::string_view collection, const std::function<bool(const XmlElement&)>& isMeant)
{
    const XmlElement* const owner = root_.child(collection);
    if (owner == nullptr)
        return 0;
    std::string kept;
    std::size_t place = owner->contentBegin;
    std::size_t count = 0;
    bool firstHadSpace = false;
    for (const XmlElement& item : owner->children) {
        if (!isMeant(item))
            continue;
        const std::size_t space = std::max(spaceBefore(item.begin), place);
        firstHadSpace = count == 0 ? space < item.begin : firstHadSpace;
        kept.append(text_, place, space - place);
        place = item.end;
        ++count;
    }
    if (count == 0)
        return 0;
    kept.append(text_, place, owner->contentEnd - place);
    const bool closes = firstHadSpace && isBlank(kept);
    replace(closes ? text_.substr(0, owner->contentBegin - 1) + "/>" + text_.substr(owner->end)
                   : text_.substr(0, owner->contentBegin) + kept + text_.substr(owner->contentEnd));
    return count;
}

void StoreText::insertBehind(const XmlElement& neighbour, const std::function<void(ElementWriter&)>& write)
{
    fill(gapBehind(neighbour, neighbour.end), write);
}

void StoreText::erase(const XmlElement& element)
{
    replace(text_.substr(0, spaceBefore(element.begin)) + text_.substr(element.end));
}

std::string soleIdOf(const StoreText& store, const XmlElement& element)
{
    int count = 0;
    forEach(store.root(), [&](const XmlElement& other) { count += other.id == element.id ? 1 : 0; });
    if (!element.id || element.id->empty() || count != 1)
        throw StoreError(inQuotes(element.textOf("Name")) + " has no id of its own");
    return *element.id;
}

std::string emptyStoreText()
{
    ElementWriter writer({"\n  ", "  "});
    writer.leaf("Name", "IVI Configuration Server").leaf("Description", "").leaf("Vendor", "Tessaro Instruments");
    writer.leaf("Revision", "1.0.0.0");
    writer.leaf("SpecificationMajorVersion", "2").leaf("SpecificationMinorVersion", "0");
    for (const auto* const location : {"MasterLocation", "ProcessDefaultLocation", "ActualLocation"})
        writer.leaf(location, "");
    for (const auto* const collection :
         {"PublishedAPIs", "SoftwareModules", "HardwareAssets", "DriverSessions", "Sessions", "LogicalNames"})
        writer.empty(collection);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<IviConfigStore xmlns:dt=\"urn:schemas-microsoft-com:datatypes\">\n  " +
           writer.text() + "\n</IviConfigStore>\n";
}

} // namespace store_tool
