#pragma once

#include <asio.hpp>
#include <functional>

namespace kvxvirtual
{

/// Reads and drops the standard input, and calls `action` in the thread that runs `context` once it reaches its end or
/// cannot be read any more. Throws std::system_error when this host cannot watch it.
void whenStandardInputEnds(asio::io_context& context, std::function<void()> action);

} // namespace kvxvirtual
