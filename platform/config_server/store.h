#pragma once

#include "platform/config_server/element.h"
#include "platform/config_server/element_index.h"

#include <IviConfigServer.h>

#include <mutex>
#include <string>
#include <string_view>

namespace config_server
{

/// One store as IviConfig_Initialize makes it: empty until a file is loaded, which succeeds once. Any thread.
class Store
{
public:
    Store();

    /// A store that has these elements although no file is loaded.
    explicit Store(Document document);

    /// On a failure the store is as before. Loading happens outside the mutex, so readers are not held up.
    ViStatus deserialize(const std::string& location);

    Document document() const;

    /// The driver session that a logical name leads to, otherwise the one of this name; null when there is none.
    Document driverSession(std::string_view name) const;

    /// Reads a text property; the locations are the store's own, the rest is the file's.
    ViStatus text(ViInt32 propertyId, std::string& value) const;

private:
    bool isLoaded() const;

    mutable std::mutex mutex_; ///< guards all
    Document document_;
    ElementIndex driverSessions_; ///< by logical name and by name
    std::string actualLocation_;  ///< empty until a file is loaded
};

} // namespace config_server
