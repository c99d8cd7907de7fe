#include "platform/config_server/element.h"

#include <algorithm>

namespace config_server
{
namespace
{

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kSpace);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

} // namespace

const Element* Element::child(std::string_view childName) const
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [childName](const Element& element) { return element.name == childName; });
    return found == children.end() ? nullptr : &*found;
}

std::string_view Element::verbatimTextOf(std::string_view childName) const
{
    const Element* const element = child(childName);
    return element == nullptr ? std::string_view() : element->text;
}

std::string_view Element::textOf(std::string_view childName) const
{
    return trimmed(verbatimTextOf(childName));
}

const Element* Element::reference(std::string_view childName) const
{
    const Element* const element = child(childName);
    return element == nullptr ? nullptr : element->target;
}

} // namespace config_server
