#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace drivekit
{

/// The entry at `index`, counted from 0, of a comma-separated list, without blanks around it; nothing past the end.
std::optional<std::string_view> listEntry(std::string_view list, std::size_t index);

} // namespace drivekit
