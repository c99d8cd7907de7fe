#pragma once

#include "element.h"

#include <IviConfigServer.h>

#include <mutex>
#include <string>

namespace config_server
{

/// One store as IviConfig_Initialize makes it: empty until a file is loaded, which succeeds once. Any thread.
class Store
{
public:
    Store();

    /// On a failure the store is as before. Loading happens outside the mutex, so readers are not held up.
    ViStatus deserialize(const std::string& location);

    Document document() const;

    /// Reads a text property; the locations are the store's own, the rest is the file's.
    ViStatus text(ViInt32 propertyId, std::string& value) const;

private:
    bool isLoaded() const;

    mutable std::mutex mutex_; ///< guards both
    Document document_;
    std::string actualLocation_; ///< empty until a file is loaded
};

} // namespace config_server
