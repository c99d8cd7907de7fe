#include "runtime/text_list.h"

namespace drivekit
{
namespace
{

std::string_view withoutSpace(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

std::optional<std::string_view> listEntry(std::string_view list, std::size_t index)
{
    for (; index > 0; --index) {
        const std::size_t comma = list.find(',');
        if (comma == std::string_view::npos)
            return std::nullopt;
        list.remove_prefix(comma + 1);
    }
    return withoutSpace(list.substr(0, list.find(',')));
}

} // namespace drivekit
