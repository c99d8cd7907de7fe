#include "visa/resource/lan_protocols.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace visa
{
namespace
{

constexpr std::array<std::string_view, 3> kVxi11Names{"inst", "gpib", "vxi"};
constexpr std::string_view kHislipName = "hislip";

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool beginsWith(std::string_view name, std::string_view beginning)
{
    return name.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), name.begin(), [](char a, char b) { return a == lower(b); });
}

} // namespace

LanProtocols lanProtocols(std::string_view device)
{
    const auto isVxi11s = [device](std::string_view beginning) { return beginsWith(device, beginning); };
    return {.vxi11 = !beginsWith(device, kHislipName),
            .hislip = std::none_of(kVxi11Names.begin(), kVxi11Names.end(), isVxi11s)};
}

} // namespace visa
