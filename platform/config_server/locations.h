#pragma once

#include <optional>
#include <string>

namespace config_server
{

/// The store chosen for this process by the environment variable IVICONFIGSERVERDEFAULT; may be empty.
std::string processDefaultLocation();

/// Full path of the master store. Nothing when one is registered whose file is missing.
std::optional<std::string> masterLocation();

/// The master store's place when nothing else is registered; a missing file there stands for an empty store.
const std::string& systemLocation();

} // namespace config_server
