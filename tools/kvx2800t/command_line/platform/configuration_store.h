#pragma once

#include <IviVisaType.h>

#include <optional>
#include <string>
#include <vector>

namespace command_line
{

struct StoredSession
{
    std::string name;
    std::string resource; ///< of its hardware asset; empty without one
    std::string driverSetup;
};

struct StoredName
{
    std::string name;
    std::string session;       ///< empty when it leads to none
    bool leadsToDriver = true; ///< not to a session that is no driver session
};

/// What the configuration store of this process has of sessions, by the configuration server that the driver uses.
struct ConfigurationStore
{
    ViStatus status = VI_SUCCESS; ///< the server's first failure; what follows may be incomplete then
    std::string location;
    std::vector<StoredSession> sessions;
    std::vector<StoredName> names;

    /// The session that a name leads to: a logical name, or the session's own. As for the driver, only logical names of
    /// driver sessions stand in front of these.
    const StoredSession* sessionOf(const std::string& name) const;
};

ConfigurationStore readConfigurationStore();

} // namespace command_line
