#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace visa
{

/// The question for the port of VXI-11's core channel that a portmapper answers over UDP (RFC 1833 and RFC 5531).

using GetPortCall = std::array<std::uint8_t, 56>;

/// @param identifier what the answer is known by
GetPortCall getPortCall(std::uint32_t identifier);

/// Takes any bytes.
/// @return the port; nothing for what is no answer to this question, or says that there is no such server
std::optional<std::uint16_t> readGetPortReply(std::span<const std::uint8_t> message, std::uint32_t identifier);

} // namespace visa
