#include "base/ascii.h"
#include "runtime/config_objects.h"
#include "runtime/driver_session.h"

#include <array>

namespace drivekit
{
namespace
{

/// The size of the buffer that a location is first read with.
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
    std::string location;
    const auto read = [&](ViInt32 property) {
        return readText<kLocationSize>(IviConfig_GetConfigStorePropertyViString, store, property, location);
    };
    ViStatus status = read(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION);
    if (status >= 0 && location.empty())
        status = read(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION);
    return status < 0 ? status : IviConfig_Deserialize(store, location.c_str());
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

ViStatus readStringValue(IviDataComponentHandle setting, const std::string& name, NamedValues<std::string>& table)
{
    std::string value;
    const ViStatus status =
        readText(IviConfig_GetDataComponentPropertyViString, setting, IVICONFIG_VAL_DATA_COMPONENT_VALUE, value);
    if (status >= 0)
        table.insert_or_assign(name, value);
    return status;
}

/// A setting of another type than the four is skipped.
ViStatus readSetting(IviDataComponentHandle setting, Configuration& configuration)
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
        return readStringValue(setting, name, configuration.strings);
    if (isType("integer"))
        return readValue<ViInt32>(IviConfig_GetDataComponentPropertyViInt32, setting, name, configuration.integers);
    if (isType("real"))
        return readValue<ViReal64>(IviConfig_GetDataComponentPropertyViReal64, setting, name, configuration.reals);
    if (isType("boolean"))
        return readValue<ViBoolean>(IviConfig_GetDataComponentPropertyViBoolean, setting, name, configuration.booleans);
    return VI_SUCCESS;
}

ViStatus readHardwareAsset(IviDriverSessionHandle configured, std::string& descriptor)
{
    return withObject(IviConfig_GetSessionHardwareAssetReference, configured,
                      [&descriptor](IviHardwareAssetHandle asset) {
                          return readText(IviConfig_GetHardwareAssetPropertyViString, asset,
                                          IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR, descriptor);
                      });
}

ViStatus readInherentOptions(IviDriverSessionHandle configured, base::InherentOptions& options)
{
    for (const StoredFlag& stored : kStoredFlags) {
        ViBoolean value = VI_FALSE;
        const ViStatus status = IviConfig_GetDriverSessionPropertyViBoolean(configured, stored.property, &value);
        if (status < 0)
            return status;
        options.*stored.flag = value == VI_TRUE;
    }
    return VI_SUCCESS;
}

ViStatus readVirtualRange(IviVirtualRangeHandle range, const std::string& name, const std::string& mapTo,
                          VirtualNames& virtualNames)
{
    constexpr std::array kProperties = {IVICONFIG_VAL_VIRTUAL_RANGE_MIN, IVICONFIG_VAL_VIRTUAL_RANGE_MAX,
                                        IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX};
    std::array<ViInt32, kProperties.size()> values{};
    for (std::size_t i = 0; i < kProperties.size(); ++i) {
        const ViStatus status = IviConfig_GetVirtualRangePropertyViInt32(range, kProperties[i], &values[i]);
        if (status < 0)
            return status;
    }
    virtualNames.addRange(name, mapTo, values[0], values[1], values[2]);
    return VI_SUCCESS;
}

ViStatus readVirtualName(IviVirtualNameHandle virtualName, VirtualNames& virtualNames)
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
    const auto readRange = [&](IviVirtualRangeHandle range) {
        const ViStatus read = readVirtualRange(range, name, mapTo, virtualNames);
        hasRanges = hasRanges || read >= 0;
        return read;
    };
    status = withObject(IviConfig_GetVirtualNameVirtualRangeCollection, virtualName, [&](IviConfigHandle ranges) {
        return forEachItem(ranges, IviConfig_GetVirtualRangeCount, IviConfig_GetVirtualRangeItemByIndex, readRange);
    });
    if (status >= 0 && !hasRanges)
        virtualNames.add(name, mapTo);
    return status;
}

ViStatus readPhysicalName(IviPhysicalNameHandle physicalName, NamedValues<std::vector<std::string>>& physicalNames)
{
    std::string name;
    std::string capability;
    ViStatus status =
        readText(IviConfig_GetPhysicalNamePropertyViString, physicalName, IVICONFIG_VAL_PHYSICAL_NAME_NAME, name);
    if (status >= 0)
        status = readText(IviConfig_GetPhysicalNamePropertyViString, physicalName, IVICONFIG_VAL_PHYSICAL_NAME_RCNAME,
                          capability);
    if (status >= 0)
        physicalNames[capability].push_back(name);
    return status;
}

} // namespace

/// One resolution: the objects of the store that it holds, and how they change the session's configuration. The entries
/// are driver sessions of the store.
class DriverSession::StoreReader
{
public:
    StoreReader(DriverSession& session, IviConfigStoreHandle store) : session_(session), store_(store) {}

    ViStatus apply(const std::string& resourceName, const std::string& optionString)
    {
        ViStatus status = deserialize(store_);
        if (status < 0)
            return session_.ReportConfigurationError(status);
        status = readEntries(resourceName);
        if (status >= 0)
            status = readOptions(optionString);
        const ViStatus disposed = dispose();
        if (status >= 0 && disposed < 0)
            return session_.ReportConfigurationError(disposed);
        return status;
    }

private:
    /// Reads the entry of the driver's prefix, and behind it the one that the resource name names.
    ViStatus readEntries(const std::string& resourceName)
    {
        const ViStatus status = readPrefixEntry(resourceName == kDriverPrefix);
        if (status < 0 || !mayNameAnEntry(resourceName))
            return status;
        return readNamedEntry(resourceName);
    }

    ViStatus readPrefixEntry(bool isNamed)
    {
        const ViStatus found = prefixEntry_.obtain(IviConfig_GetDriverSession, store_, kDriverPrefix.data());
        if (found < 0 && found != IVICONFIG_ERROR_SESSION_NOT_FOUND)
            return session_.ReportConfigurationError(found);
        if (!prefixEntry_)
            return findModule();
        const ViStatus status = readEntry(prefixEntry_.get());
        if (status >= 0 && isNamed)
            noteNamedEntry(std::string(kDriverPrefix), !configuration().ioResourceDescriptor.empty());
        return status;
    }

    /// Without an entry, the driver's software module is looked up by name; it need not be there.
    ViStatus findModule()
    {
        IviConfig_ClearError();
        ViStatus status = modules_.obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_);
        if (status < 0)
            return session_.ReportConfigurationError(status);
        if (modules_)
            status = module_.obtain(IviConfig_GetSoftwareModuleItemByName, modules_.get(), kDriverPrefix.data());
        if (status < 0 && status != IVICONFIG_ERROR_NOT_EXIST)
            return session_.ReportConfigurationError(status);
        IviConfig_ClearError();
        return VI_SUCCESS;
    }

    ViStatus readNamedEntry(const std::string& resourceName)
    {
        const ViStatus found = namedEntry_.obtain(IviConfig_GetDriverSession, store_, resourceName.c_str());
        if (found == IVICONFIG_ERROR_SESSION_NOT_FOUND)
            IviConfig_ClearError();
        else if (found < 0)
            return session_.ReportConfigurationError(found);
        if (!namedEntry_)
            return VI_SUCCESS;
        const ViStatus disposed = module_.dispose();
        if (disposed < 0)
            return session_.ReportConfigurationError(disposed);
        std::string& descriptor = configuration().ioResourceDescriptor;
        std::string earlier = std::exchange(descriptor, {});
        const ViStatus status = readEntry(namedEntry_.get());
        const bool hasDescriptor = !descriptor.empty();
        if (!hasDescriptor)
            descriptor = std::move(earlier);
        if (status >= 0)
            noteNamedEntry(resourceName, hasDescriptor);
        return status;
    }

    ViStatus readEntry(IviDriverSessionHandle entry)
    {
        ViStatus status = session_.ReadDriverSession(entry);
        if (status >= 0)
            status = session_.ReadConfigurableInitialSettings(entry);
        if (status < 0)
            return status;
        status = module_.obtain(IviConfig_GetSessionSoftwareModuleReference, entry);
        return status < 0 ? session_.ReportConfigurationError(status) : VI_SUCCESS;
    }

    void noteNamedEntry(const std::string& resourceName, bool hasDescriptor)
    {
        configuration().namesStoreEntry = true;
        if (!hasDescriptor)
            return;
        configuration().logicalName = resourceName;
        configuration().connectionDescriptor = configuration().ioResourceDescriptor;
    }

    /// What follows the entries: the settings in force, the option string, the module's physical names.
    ViStatus readOptions(const std::string& optionString)
    {
        ViStatus status = VI_SUCCESS;
        if (IviConfigHandle const owner = settingsOwner())
            status = session_.ReadConfigurableInitialSettings(owner);
        if (status >= 0)
            status = session_.ApplyConfiguredModel();
        if (status >= 0)
            status = session_.ParseOptionString(optionString);
        if (status >= 0 && module_)
            status = session_.ReadPhysicalNames(module_.get());
        if (status < 0)
            return status;
        if (configuration().options.simulate && session_.identity_.model.empty())
            session_.identity_.model = kDefaultSimulatedModel;
        session_.initialOptions_ = configuration().options;
        return VI_SUCCESS;
    }

    /// Where the configurable initial settings are read last: the entry in force or, without one, the module.
    IviConfigHandle settingsOwner() const
    {
        for (const ConfigHandle* const object : {&namedEntry_, &prefixEntry_})
            if (*object)
                return object->get();
        return module_.get();
    }

    /// Gives everything back; the first failure.
    ViStatus dispose()
    {
        ViStatus status = VI_SUCCESS;
        for (ConfigHandle* const object : {&prefixEntry_, &namedEntry_, &module_, &modules_})
            status = firstFailure(status, object->dispose());
        return status;
    }

    Configuration& configuration() { return session_.configuration_; }

    DriverSession& session_;
    IviConfigStoreHandle store_;
    ConfigHandle prefixEntry_;
    ConfigHandle namedEntry_;
    ConfigHandle modules_;
    ConfigHandle module_;
};

ViStatus DriverSession::ResolveConfiguration(const std::string& resourceName, const std::string& optionString)
{
    configuration_ = {.connectionDescriptor = resourceName};
    ConfigStore store;
    const ViStatus opened = store.open();
    if (opened < 0)
        return ReportConfigurationError(opened);
    const ViStatus status = StoreReader(*this, store.get()).apply(resourceName, optionString);
    const ViStatus closed = store.close();
    if (status >= 0 && closed < 0)
        return ReportConfigurationError(closed);
    return status;
}

ViStatus DriverSession::ReadDriverSession(IviDriverSessionHandle configured)
{
    ViStatus status = ReadVirtualNames(configured);
    if (status < 0)
        return status;
    status = readHardwareAsset(configured, configuration_.ioResourceDescriptor);
    if (status >= 0)
        status = readInherentOptions(configured, configuration_.options);
    std::string setup;
    if (status >= 0)
        status = readText(IviConfig_GetDriverSessionPropertyViString, configured,
                          IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP, setup);
    return status < 0 ? ReportConfigurationError(status) : ParseDriverSetup(setup);
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
                           [this](IviDataComponentHandle setting) { return readSetting(setting, configuration_); });
    };
    const ViStatus status =
        withObject(IviConfig_GetConfigComponentDataComponentCollection, component, [&](IviConfigHandle components) {
            return withObject(findSettings, components, [&](IviConfigHandle settings) {
                return withObject(IviConfig_GetStructureDataComponentCollection, settings, readSettings);
            });
        });
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

ViStatus DriverSession::ReadVirtualNames(IviDriverSessionHandle configured)
{
    const auto readNames = [this](IviConfigHandle names) {
        return forEachItem(
            names, IviConfig_GetVirtualNameCount, IviConfig_GetVirtualNameItemByIndex,
            [this](IviVirtualNameHandle name) { return readVirtualName(name, configuration_.virtualNames); });
    };
    const ViStatus status = withObject(IviConfig_GetSessionVirtualNameCollection, configured, readNames);
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

ViStatus DriverSession::ReadPhysicalNames(IviSoftwareModuleHandle module)
{
    const auto readNames = [this](IviConfigHandle names) {
        return forEachItem(
            names, IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex,
            [this](IviPhysicalNameHandle name) { return readPhysicalName(name, configuration_.physicalNames); });
    };
    const ViStatus status = withObject(IviConfig_GetSoftwareModulePhysicalNameCollection, module, readNames);
    return status < 0 ? ReportConfigurationError(status) : VI_SUCCESS;
}

} // namespace drivekit
