#pragma once

#include <optional>
#include <string>

namespace config_server
{

/// The store chosen for this process by the environment variable IVICONFIGSERVERDEFAULT; may be empty.
std::string processDefaultLocation();

/// Full path of the master store. Nothing when one is registered whose file is missing.
std::optional<std::string> masterLocation();

/// Where a store is to be made when there is none: the registered master store, be its file there or not; else a
/// user's or system's store that is there already; else the user's place and, without a home, the system's.
std::string locationForNewStore();

/// The master store's place when nothing else is registered; a missing file there stands for an empty store.
const std::string& systemLocation();

} // namespace config_server
