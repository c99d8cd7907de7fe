#include "platform/config_server/store.h"

#include "platform/config_server/collection.h"
#include "platform/config_server/files.h"
#include "platform/config_server/locations.h"
#include "platform/config_server/properties.h"
#include "platform/config_server/store_file.h"

#include <utility>

namespace config_server
{
namespace
{

Document load(const std::string& location)
{
    return location == systemLocation() && isMissing(location) ? emptyStore() : loadStoreFile(location);
}

/// The driver sessions that logical names lead to, by these names.
std::vector<IndexEntry> logicalNames(const Element& root)
{
    std::vector<IndexEntry> entries;
    for (const Element* const item : itemsOf(root, "LogicalNames", kLogicalName)) {
        if (const Element* const session = item->reference("IviDriverSession"))
            entries.push_back({item->textOf("Name"), session});
    }
    return entries;
}

/// Logical names come first, as they shadow driver sessions of the same name.
ElementIndex indexDriverSessions(const Element& root)
{
    std::vector<IndexEntry> entries = logicalNames(root);
    const auto own = byName(itemsOf(root, "DriverSessions", kDriverSession));
    entries.insert(entries.end(), own.begin(), own.end());
    return ElementIndex(std::move(entries));
}

} // namespace

Store::Store() : Store(emptyStore()) {}

Store::Store(Document document) : document_(std::move(document)), driverSessions_(indexDriverSessions(*document_)) {}

ViStatus Store::deserialize(const std::string& location)
{
    if (isLoaded())
        return IVICONFIG_ERROR_ALREADY_DESERIALIZED;
    Document loaded = load(location);
    if (loaded == nullptr)
        return IVICONFIG_ERROR_DESERIALIZE_FAILED;
    ElementIndex driverSessions = indexDriverSessions(*loaded);
    const std::lock_guard guard(mutex_);
    if (!actualLocation_.empty())
        return IVICONFIG_ERROR_ALREADY_DESERIALIZED;
    actualLocation_ = location;
    document_ = std::move(loaded);
    driverSessions_ = std::move(driverSessions);
    return VI_SUCCESS;
}

bool Store::isLoaded() const
{
    const std::lock_guard guard(mutex_);
    return !actualLocation_.empty();
}

Document Store::document() const
{
    const std::lock_guard guard(mutex_);
    return document_;
}

Document Store::driverSession(std::string_view name) const
{
    const std::lock_guard guard(mutex_);
    const Element* const found = driverSessions_.find(name);
    return found == nullptr ? nullptr : Document(document_, found);
}

ViStatus Store::text(ViInt32 propertyId, std::string& value) const
{
    if (propertyId == IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION) {
        MasterLocation location = masterLocation();
        value = std::move(location.path);
        return location.status;
    }
    if (propertyId == IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION) {
        value = processDefaultLocation();
        return VI_SUCCESS;
    }
    const std::lock_guard guard(mutex_);
    if (propertyId == IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION) {
        value = actualLocation_;
        return VI_SUCCESS;
    }
    const PropertyRow* const row = findProperty(kStore, propertyId, PropertyType::Text);
    if (row == nullptr)
        return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
    value = textOf(*document_, *row);
    return VI_SUCCESS;
}

} // namespace config_server
