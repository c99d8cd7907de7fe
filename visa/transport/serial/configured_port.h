#pragma once

#include "visa/resource/name_text.h"

#include <map>
#include <string>
#include <string_view>

namespace visa
{

/// Devices by the numbers of their serial ports.
using ConfiguredPorts = std::map<ViUInt16, std::string>;

/// A number as variables and devices have it at the end of their names: without needless zeros.
inline std::optional<ViUInt16> plainNumber(std::string_view digits)
{
    const auto number = parseDecimal(digits);
    return number && std::to_string(*number) == digits ? number : std::nullopt;
}

/// Adds what an entry of the environment such as "VISA_ASRL3=/dev/ttyUSB0" says; other entries say nothing.
inline void addConfiguredPort(std::string_view entry, ConfiguredPorts& ports)
{
    constexpr std::string_view kVariable = "VISA_ASRL";
    const std::size_t equals = entry.find('=');
    if (!entry.starts_with(kVariable) || equals == std::string_view::npos || equals + 1 == entry.size())
        return;
    if (const auto number = plainNumber(entry.substr(kVariable.size(), equals - kVariable.size())))
        ports.emplace(*number, entry.substr(equals + 1));
}

/// "ASRL3::INSTR"
inline std::string numberedPortName(unsigned number)
{
    return "ASRL" + std::to_string(number) + "::INSTR";
}

} // namespace visa
