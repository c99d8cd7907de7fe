#include "store.h"

#include "locations.h"
#include "property_rows.h"
#include "store_file.h"

#include <filesystem>

namespace config_server
{

namespace
{

/// A file that cannot be looked at is not taken for a missing one.
bool isMissing(const std::string& path)
{
    std::error_code error;
    return std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found;
}

Document load(const std::string& location)
{
    return location == systemLocation() && isMissing(location) ? emptyStore() : loadStoreFile(location);
}

} // namespace

Store::Store() : document_(emptyStore()) {}

ViStatus Store::deserialize(const std::string& location)
{
    if (isLoaded())
        return IVICONFIG_ERROR_ALREADY_DESERIALIZED;
    Document loaded = load(location);
    if (loaded == nullptr)
        return IVICONFIG_ERROR_DESERIALIZE_FAILED;
    const std::lock_guard guard(mutex_);
    if (!actualLocation_.empty())
        return IVICONFIG_ERROR_ALREADY_DESERIALIZED;
    actualLocation_ = location;
    document_ = std::move(loaded);
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

ViStatus Store::text(ViInt32 propertyId, std::string& value) const
{
    if (propertyId == IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION) {
        const auto location = masterLocation();
        value = location.value_or("");
        return location ? VI_SUCCESS : IVICONFIG_ERROR_MASTER_NOT_FOUND;
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
    value = document_->textOf(row->element);
    return VI_SUCCESS;
}

} // namespace config_server
