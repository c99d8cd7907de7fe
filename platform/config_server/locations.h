#pragma once

#include <optional>
#include <string>

namespace config_server
{

// Every path is in UTF-8 where the host's paths are texts, and else as the host has its bytes.

/// The store chosen for this process by the environment variable IVICONFIGSERVERDEFAULT; may be empty.
std::string processDefaultLocation();

/// Full path of the master store. Nothing when IVI_MASTER_STORE names one whose file is missing.
std::optional<std::string> masterLocation();

/// Where a store is to be made when there is none: what IVI_MASTER_STORE names, be its file there or not; else, where
/// users have stores of their own, a user's or system's store that is there already, else the user's place; else the
/// system's.
std::string locationForNewStore();

/// The master store's place when nothing else is registered; a missing file there stands for an empty store.
std::string systemLocation();

/// The path that a caller of the C interface means by this text.
std::string locationOf(const char* text);

} // namespace config_server
