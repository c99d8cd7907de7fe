#include "base/ascii.h"
#include "runtime/config_objects.h"
#include "runtime/driver_identity.h"
#include "runtime/driver_session.h"

#include <array>

namespace drivekit
{
namespace
{

constexpr std::size_t kLocationSize = 260;
constexpr ViConstString kInitialSettings = "Configurable Initial Settings";

/// The flags that a driver session of the store supplies, in the order in which they are read.
struct StoredFlag
{
    ViInt32 property;
    bool base::InherentOptions::*flag;
};

constexpr std::array<StoredFlag, 6> kStoredFlags = {{
    {IVICONFIG_VAL_DRIVER_SESSION_CACHE, &base::InherentOptions::cache},
    {IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, &base::InherentOptions::interchangeCheck},
    {IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, &base::InherentOptions::queryInstrumentStatus},
    {IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, &base::InherentOptions::rangeCheck},
    {IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, &base::InherentOptions::recordCoercions},
    {IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, &base::InherentOptions::simulate},
}};

/// Loads the store of this process into `store`: the process's own file or, without one, the master store.
ViStatus deserialize(IviConfigStoreHandle store)
{
    std::array<ViChar, kLocationSize> location{};
    const auto read = [&](ViInt32 property) {
        return IviConfig_GetConfigStorePropertyViString(store, property, kLocationSize, location.data());
    };
    ViStatus status = read(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION);
    if (status >= 0 && location.front() == '\0')
        status = read(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION);
    location.back() = '\0';
    return status < 0 ? status : IviConfig_Deserialize(store, location.data());
}

/// Not a VISA resource descriptor, and not the prefix, which is looked up anyway.
bool mayNameAnEntry(std::string_view resourceName)
{
    return !resourceName.empty() && resourceName != kDriverPrefix && resourceName.find("::") == std::string_view::npos;
}

/// Reads the value of a setting into the table of its type.
template <class Raw, class Value, class Get>
ViStatus readValue(Get get, IviDataComponentHandle setting, const std::string& name, NamedValues<Value>& table)
{
    Raw value{};
    const ViStatus status = get(setting, IVICONFIG_VAL_DATA_COMPONENT_VALUE, &value);
    if (status < 0)
        return status;
    if constexpr (std::is_same_v<Value, bool>)
        table.insert_or_assign(name, value == VI_TRUE);
    else
        table.insert_or_assign(name, value);
    return status;
}

} // namespace

/// What a resolution holds of the store. The entries are driver sessions.
struct DriverSession::StoreObjects
{
    ConfigHandle prefixEntry;
    ConfigHandle namedEntry;
    ConfigHandle modules;
    ConfigHandle module;

    /// Gives everything back; the first failure.
    ViStatus dispose()
    {
        ViStatus status = VI_SUCCESS;
        for (ConfigHandle* const object : {&prefixEntry, &namedEntry, &module, &modules})
            status = firstFailure(status, object->dispose());
        return status;
    }

    /// Where the configurable initial settings are read last: the entry in force or, without one, the module.
    IviConfigHandle settingsOwner() const
    {
        for (const ConfigHandle* const object : {&namedEntry, &prefixEntry})
            if (*object)
                return object->get();
        return module.get();
    }
};

ViStatus DriverSession::ResolveConfiguration(const std::string& resourceName, const std::string& optionString)
{
    forgetConfiguration();
    connectionDescriptor_ = resourceName;
    IviConfigStoreHandle store = nullptr;
    const ViStatus opened = IviConfig_Initialize(&store);
    if (opened < 0)
        return ReportConfigurationError(opened);
    const ViStatus status = applyStore(store, resourceName, optionString);
    const ViStatus closed = IviConfig_Close(store);
    if (status >= 0 && closed < 0)
        return ReportConfigurationError(closed);
    return status;
}

void DriverSession::forgetConfiguration()
{
    logicalName_.clear();
    ioResourceDescriptor_.clear();
    namesStoreEntry_ = false;
    configuredBooleans_.clear();
    configuredIntegers_.clear();
    configuredReals_.clear();
    configuredStrings_.clear();
    virtualNames_.clear();
    physicalNames_.clear();
    options_ = base::kDefaultOptions;
}

ViStatus DriverSession::applyStore(IviConfigStoreHandle store, const std::string& resourceName,
                                   const std::string& optionString)
{
    StoreObjects objects;
    ViStatus status = deserialize(store);
    if (status < 0)
        return ReportConfigurationError(status);
    status = applyEntries(store, objects, resourceName);
    if (status >= 0)
        status = applyOptions(objects, optionString);
    const ViStatus disposed = objects.dispose();
    if (status >= 0 && disposed < 0)
        return ReportConfigurationError(disposed);
    return status;
}

/// Reads the entry of the driver's prefix, and behind it the one that the resource name names.
ViStatus DriverSession::applyEntries(IviConfigStoreHandle store, StoreObjects& objects, const std::string& resourceName)
{
    const ViStatus status = findPrefixEntry(store, objects, resourceName == kDriverPrefix);
    if (status < 0 || !mayNameAnEntry(resourceName))
        return status;
    return findNamedEntry(store, objects, resourceName);
}

ViStatus DriverSession::findPrefixEntry(IviConfigStoreHandle store, StoreObjects& objects, bool named)
{
    const ViStatus found = objects.prefixEntry.obtain(IviConfig_GetDriverSession, store, kDriverPrefix.data());
    if (found < 0 && found != IVICONFIG_ERROR_SESSION_NOT_FOUND)
        return ReportConfigurationError(found);
    if (!objects.prefixEntry)
        return findModule(store, objects);
    const ViStatus status = readEntry(objects.prefixEntry.get(), objects);
    if (status >= 0 && named)
        noteNamedEntry(std::string(kDriverPrefix), !ioResourceDescriptor_.empty());
    return status;
}

/// Without an entry, the driver's software module is looked up by name; it need not be there.
ViStatus DriverSession::findModule(IviConfigStoreHandle store, StoreObjects& objects)
{
    IviConfig_ClearError();
    ViStatus status = objects.modules.obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store);
    if (status < 0)
        return ReportConfigurationError(status);
    if (objects.modules)
        status =
            objects.module.obtain(IviConfig_GetSoftwareModuleItemByName, objects.modules.get(), kDriverPrefix.data());
    if (status < 0 && status != IVICONFIG_ERROR_NOT_EXIST)
        return ReportConfigurationError(status);
    IviConfig_ClearError();
    return VI_SUCCESS;
}

ViStatus DriverSession::findNamedEntry(IviConfigStoreHandle store, StoreObjects& objects,
                                       const std::string& resourceName)
{
    const ViStatus found = objects.namedEntry.obtain(IviConfig_GetDriverSession, store, resourceName.c_str());
    if (found == IVICONFIG_ERROR_SESSION_NOT_FOUND)
        IviConfig_ClearError();
    else if (found < 0)
        return ReportConfigurationError(found);
    if (!objects.namedEntry)
        return VI_SUCCESS;
    const ViStatus disposed = objects.module.dispose();
    if (disposed < 0)
        return ReportConfigurationError(disposed);
    std::string earlier = std::exchange(ioResourceDescriptor_, {});
    const ViStatus status = readEntry(objects.namedEntry.get(), objects);
    const bool hasDescriptor = !ioResourceDescriptor_.empty();
    if (!hasDescriptor)
        ioResourceDescriptor_ = std::move(earlier);
    if (status >= 0)
        noteNamedEntry(resourceName, hasDescriptor);
    return status;
}

ViStatus DriverSession::readEntry(IviDriverSessionHandle entry, StoreObjects& objects)
{
    ViStatus status = ReadDriverSession(entry);
    if (status >= 0)
        status = ReadConfigurableInitialSettings(entry);
    if (status < 0)
        return status;
    status = objects.module.obtain(IviConfig_GetSessionSoftwareModuleReference, entry);
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

void DriverSession::noteNamedEntry(const std::string& resourceName, bool hasDescriptor)
{
    namesStoreEntry_ = true;
    if (!hasDescriptor)
        return;
    logicalName_ = resourceName;
    connectionDescriptor_ = ioResourceDescriptor_;
}

ViStatus DriverSession::applyOptions(const StoreObjects& objects, const std::string& optionString)
{
    ViStatus status = VI_SUCCESS;
    if (IviConfigHandle const owner = objects.settingsOwner())
        status = ReadConfigurableInitialSettings(owner);
    if (status >= 0)
        status = ApplyConfiguredModel();
    if (status >= 0)
        status = ParseOptionString(optionString);
    if (status >= 0 && objects.module)
        status = ReadPhysicalNames(objects.module.get());
    if (status < 0)
        return status;
    if (options_.simulate && model_.empty())
        model_ = kDefaultSimulatedModel;
    initialOptions_ = options_;
    return VI_SUCCESS;
}

ViStatus DriverSession::ReadDriverSession(IviDriverSessionHandle configured)
{
    ViStatus status = ReadVirtualNames(configured);
    if (status < 0)
        return status;
    status = readHardwareAsset(configured);
    if (status >= 0)
        status = readInherentOptions(configured);
    std::string setup;
    if (status >= 0)
        status = readText(IviConfig_GetDriverSessionPropertyViString, configured,
                          IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP, setup);
    return status < 0 ? ReportConfigurationError(status) : ParseDriverSetup(setup);
}

ViStatus DriverSession::readHardwareAsset(IviDriverSessionHandle configured)
{
    return withObject(IviConfig_GetSessionHardwareAssetReference, configured, [this](IviHardwareAssetHandle asset) {
        return readText(IviConfig_GetHardwareAssetPropertyViString, asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR,
                        ioResourceDescriptor_);
    });
}

ViStatus DriverSession::readInherentOptions(IviDriverSessionHandle configured)
{
    for (const StoredFlag& stored : kStoredFlags) {
        ViBoolean value = VI_FALSE;
        const ViStatus status = IviConfig_GetDriverSessionPropertyViBoolean(configured, stored.property, &value);
        if (status < 0)
            return status;
        options_.*stored.flag = value == VI_TRUE;
    }
    return VI_SUCCESS;
}

ViStatus DriverSession::ReadVirtualNames(IviDriverSessionHandle configured)
{
    const ViStatus status =
        withObject(IviConfig_GetSessionVirtualNameCollection, configured, [this](IviConfigHandle names) {
            return forEachItem(names, IviConfig_GetVirtualNameCount, IviConfig_GetVirtualNameItemByIndex,
                               [this](IviVirtualNameHandle name) { return readVirtualName(name); });
        });
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

ViStatus DriverSession::readVirtualName(IviVirtualNameHandle virtualName)
{
    std::string name;
    std::string mapTo;
    ViStatus status =
        readText(IviConfig_GetVirtualNamePropertyViString, virtualName, IVICONFIG_VAL_VIRTUAL_NAME_NAME, name);
    if (status >= 0)
        status =
            readText(IviConfig_GetVirtualNamePropertyViString, virtualName, IVICONFIG_VAL_VIRTUAL_NAME_MAPTO, mapTo);
    if (status < 0)
        return status;
    bool hasRanges = false;
    const auto addRange = [&](IviVirtualRangeHandle range) {
        constexpr std::array kProperties = {IVICONFIG_VAL_VIRTUAL_RANGE_MIN, IVICONFIG_VAL_VIRTUAL_RANGE_MAX,
                                            IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX};
        std::array<ViInt32, kProperties.size()> values{};
        for (std::size_t i = 0; i < kProperties.size(); ++i) {
            const ViStatus read = IviConfig_GetVirtualRangePropertyViInt32(range, kProperties[i], &values[i]);
            if (read < 0)
                return read;
        }
        hasRanges = true;
        virtualNames_.addRange(name, mapTo, values[0], values[1], values[2]);
        return VI_SUCCESS;
    };
    status = withObject(IviConfig_GetVirtualNameVirtualRangeCollection, virtualName, [&](IviConfigHandle ranges) {
        return forEachItem(ranges, IviConfig_GetVirtualRangeCount, IviConfig_GetVirtualRangeItemByIndex, addRange);
    });
    if (status >= 0 && !hasRanges)
        virtualNames_.add(name, mapTo);
    return status;
}

ViStatus DriverSession::ReadPhysicalNames(IviSoftwareModuleHandle module)
{
    const auto readPhysicalName = [this](IviPhysicalNameHandle physicalName) {
        std::string name;
        std::string capability;
        ViStatus status =
            readText(IviConfig_GetPhysicalNamePropertyViString, physicalName, IVICONFIG_VAL_PHYSICAL_NAME_NAME, name);
        if (status >= 0)
            status = readText(IviConfig_GetPhysicalNamePropertyViString, physicalName,
                              IVICONFIG_VAL_PHYSICAL_NAME_RCNAME, capability);
        if (status >= 0)
            physicalNames_[capability].push_back(name);
        return status;
    };
    const ViStatus status =
        withObject(IviConfig_GetSoftwareModulePhysicalNameCollection, module, [&](IviConfigHandle names) {
            return forEachItem(names, IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex,
                               readPhysicalName);
        });
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

ViStatus DriverSession::ReadConfigurableInitialSettings(IviConfigComponentHandle component)
{
    const auto findSettings = [](IviConfigHandle components, IviConfigHandle* settings) {
        const ViStatus found = IviConfig_GetDataComponentItemByName(components, kInitialSettings, settings);
        if (found != IVICONFIG_ERROR_NOT_EXIST)
            return found;
        *settings = nullptr;
        IviConfig_ClearError();
        return VI_SUCCESS;
    };
    const auto readSettings = [this](IviConfigHandle members) {
        return forEachItem(members, IviConfig_GetDataComponentCount, IviConfig_GetDataComponentItemByIndex,
                           [this](IviDataComponentHandle setting) { return readSetting(setting); });
    };
    const ViStatus status =
        withObject(IviConfig_GetConfigComponentDataComponentCollection, component, [&](IviConfigHandle components) {
            return withObject(findSettings, components, [&](IviConfigHandle settings) {
                return withObject(IviConfig_GetStructureDataComponentCollection, settings, readSettings);
            });
        });
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

/// A setting of another type than the four is skipped.
ViStatus DriverSession::readSetting(IviDataComponentHandle setting)
{
    std::string name;
    std::string type;
    ViStatus status =
        readText(IviConfig_GetDataComponentPropertyViString, setting, IVICONFIG_VAL_DATA_COMPONENT_NAME, name);
    if (status >= 0)
        status = readText(IviConfig_GetDataComponentPropertyViString, setting, IVICONFIG_VAL_DATA_COMPONENT_TYPE, type);
    if (status < 0)
        return status;
    const auto isType = [&type](std::string_view word) { return base::ascii::equalIgnoringCase(type, word); };
    if (isType("string"))
        return readStringSetting(setting, name);
    if (isType("integer"))
        return readValue<ViInt32>(IviConfig_GetDataComponentPropertyViInt32, setting, name, configuredIntegers_);
    if (isType("real"))
        return readValue<ViReal64>(IviConfig_GetDataComponentPropertyViReal64, setting, name, configuredReals_);
    if (isType("boolean"))
        return readValue<ViBoolean>(IviConfig_GetDataComponentPropertyViBoolean, setting, name, configuredBooleans_);
    return VI_SUCCESS;
}

ViStatus DriverSession::readStringSetting(IviDataComponentHandle setting, const std::string& name)
{
    std::string value;
    const ViStatus status =
        readText(IviConfig_GetDataComponentPropertyViString, setting, IVICONFIG_VAL_DATA_COMPONENT_VALUE, value);
    if (status >= 0)
        configuredStrings_.insert_or_assign(name, value);
    return status;
}

ViStatus DriverSession::ReportConfigurationError(ViStatus status)
{
    // The server has left its own text in the thread's error record (IVI-3.5 section 5.2.1).
    return ReportError(status);
}

} // namespace drivekit
