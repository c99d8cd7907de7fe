#include "platform/config_server/locations.h"

#include "platform/config_server/files.h"

#include <cstdlib>
#include <utility>

namespace config_server
{
namespace
{

constexpr auto kMasterVariable = "IVI_MASTER_STORE";

/// The variable's value; empty when it is not set.
std::string environment(const char* name)
{
    // Only read; changing the environment during a call is the application's own race.
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::string() : std::string(value);
}

/// The user's store by the XDG base directory rules; empty without a home.
std::string userLocation()
{
    constexpr auto kName = "/ivi/IviConfigurationStore.xml";
    const std::string configured = environment("XDG_CONFIG_HOME");
    if (!configured.empty())
        return configured + kName;
    const std::string home = environment("HOME");
    return home.empty() ? std::string() : home + "/.config" + kName;
}

} // namespace

std::string processDefaultLocation()
{
    return environment("IVICONFIGSERVERDEFAULT");
}

MasterLocation masterLocation()
{
    std::string registered = environment(kMasterVariable);
    if (!registered.empty() && !isFile(registered))
        return {{}, IVICONFIG_ERROR_MASTER_NOT_FOUND, kMasterVariable};
    if (!registered.empty())
        return {std::move(registered), VI_SUCCESS, kMasterVariable};
    std::string user = userLocation();
    return {isFile(user) ? std::move(user) : systemLocation()};
}

MasterLocation locationForNewStore()
{
    std::string registered = environment(kMasterVariable);
    if (!registered.empty())
        return {std::move(registered), VI_SUCCESS, kMasterVariable};
    std::string user = userLocation();
    const bool isForSystem = user.empty() || (!isFile(user) && isFile(systemLocation()));
    return {isForSystem ? systemLocation() : std::move(user)};
}

std::string systemLocation()
{
    return "/etc/ivi/IviConfigurationStore.xml";
}

std::string locationOf(const char* text)
{
    return text;
}

} // namespace config_server
