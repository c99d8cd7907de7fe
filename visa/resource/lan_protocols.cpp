#include "visa/resource/lan_protocols.h"

#include "visa/resource/name_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace visa
{
namespace
{

constexpr std::array<std::string_view, 3> kVxi11Names{"inst", "gpib", "vxi"};
constexpr std::string_view kHislipName = "hislip";

} // namespace

LanProtocols lanProtocols(std::string_view device)
{
    const auto isVxi11s = [device](std::string_view beginning) { return startsIgnoringCase(device, beginning); };
    return {.vxi11 = !startsIgnoringCase(device, kHislipName),
            .hislip = std::none_of(kVxi11Names.begin(), kVxi11Names.end(), isVxi11s)};
}

} // namespace visa
