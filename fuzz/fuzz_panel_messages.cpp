// Any text as a message of a page: it is refused, or an action whose members are in range and which has lines.
#include "fuzz/input.h"
#include "tools/kvx2800t/panel/lines.h"
#include "tools/kvx2800t/panel/messages.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace
{

using kvxfuzz::require;

bool isFinite(const kvx2800t::ListGroup& group)
{
    return std::isfinite(group.volts) && std::isfinite(group.amperes) && std::isfinite(group.seconds);
}

void checkRequest(const panel::PageRequest& request)
{
    const panel::Action& action = request.action;
    require(request.id >= 1 && request.id < std::int64_t{1} << 53);
    require(action.channel >= 1 && action.channel <= panel::kChannelCount);
    require(std::isfinite(action.value));
    require(action.cycles >= 0);
    require(action.kind != panel::ActionKind::LoadList || !action.groups.empty());
    for (const auto& group : action.groups)
        require(isFinite(group));
    for (const auto& lines : {panel::linesOfC(action, {}), panel::linesOfPython(action, {})}) {
        require(!lines.empty());
        for (const std::string& line : lines)
            require(line.find('$') == std::string::npos);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto message = panel::readRequest({reinterpret_cast<const char*>(data), size});
    if (const auto* const request = std::get_if<panel::PageRequest>(&message))
        checkRequest(*request);
    else
        require(panel::refusalMessage(std::get<panel::Refusal>(message)).front() == '{');
    return 0;
}
