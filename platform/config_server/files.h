#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace config_server
{

/// Whether there is a file that can be read as a whole: not a folder, a pipe or a device.
bool isFile(const std::string& path);

/// Whether there is nothing at this place. What cannot be looked at is not taken for missing.
bool isMissing(const std::string& path);

/// What a file has; nothing when it cannot be read, is none or has more than `largest` bytes.
std::optional<std::string> readFile(const std::string& path, std::size_t largest);

} // namespace config_server
