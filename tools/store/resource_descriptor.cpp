#include "tools/store/resource_descriptor.h"

#include "visa/host/network.h"
#include "visa/resource/name_text.h"
#include "visa/resource/resource_name.h"

#include <algorithm>
#include <array>

namespace store_tool
{
namespace
{

/// What resource names begin with, in front of a number.
constexpr std::array<std::string_view, 7> kInterfaces{"ASRL", "GPIB-VXI", "GPIB", "PXI", "TCPIP", "USB", "VXI"};

/// "TCPIP0:10.0.0.5:5025": single colons behind an interface, which no alias has.
bool beginsWithInterface(std::string_view text)
{
    return std::any_of(kInterfaces.begin(), kInterfaces.end(), [text](std::string_view keyword) {
        if (!visa::startsIgnoringCase(text, keyword))
            return false;
        const std::size_t behind = text.find_first_not_of("0123456789", keyword.size());
        return behind != std::string_view::npos && text[behind] == ':';
    });
}

} // namespace

bool isMalformedDescriptor(std::string_view text)
{
    if (text.find("::") == std::string_view::npos && !beginsWithInterface(text))
        return false;
    visa::startNetwork();
    return !visa::parseResourceName(text);
}

} // namespace store_tool
