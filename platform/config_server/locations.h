#pragma once

#include <IviConfigServer.h>

#include <string>
#include <string_view>

namespace config_server
{

// Every path is in UTF-8 where the host's paths are texts, and else as the host has its bytes.

/// The store chosen for this process by the environment variable IVICONFIGSERVERDEFAULT; may be empty.
std::string processDefaultLocation();

/// A place of the master store, or why there is none.
struct MasterLocation
{
    std::string path; ///< full; empty on a failure
    ViStatus status = VI_SUCCESS;
    std::string_view namedBy{}; ///< what names it, for messages; empty for a usual place
};

/// The master store. IVICONFIG_ERROR_MASTER_NOT_FOUND when IVI_MASTER_STORE or Windows' registry names one whose file
/// is missing; IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT when the registry has different ones for programs of 32 and 64
/// bits.
MasterLocation masterLocation();

/// Where a store is to be made when there is none: what IVI_MASTER_STORE or Windows' registry names, be its file there
/// or not; else, where users have stores of their own, a user's or system's store that is there already, else the
/// user's place; else the system's. IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT as above.
MasterLocation locationForNewStore();

/// The master store's place when nothing names another; a missing file there stands for an empty store.
std::string systemLocation();

/// The path that a caller of the C interface means by this text.
std::string locationOf(const char* text);

} // namespace config_server
