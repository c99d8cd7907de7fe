#include "tests/support/fakes/fake_platform.h"
#include "tests/support/fakes/platform_fakes.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace kvxtest
{
namespace
{

constexpr const char* kSettings = "Configurable Initial Settings";

/// What a handle holds that a failing call leaves behind.
IviConfigHandle garbageHandle()
{
    static char garbage = 0;
    return &garbage;
}

// Kinds of handle, as the log names them

template <class Data>
constexpr std::string_view kKind = {};
template <>
constexpr std::string_view kKind<StoreRoot> = "store";
template <>
constexpr std::string_view kKind<HardwareAsset> = "hardwareAsset";
template <>
constexpr std::string_view kKind<const StoredDriverSession*> = "driverSession";
template <>
constexpr std::string_view kKind<const StoredSoftwareModule*> = "softwareModule";
template <>
constexpr std::string_view kKind<const std::vector<StoredSoftwareModule>*> = "softwareModules";
template <>
constexpr std::string_view kKind<const StoredPhysicalName*> = "physicalName";
template <>
constexpr std::string_view kKind<const std::vector<StoredPhysicalName>*> = "physicalNames";
template <>
constexpr std::string_view kKind<const StoredVirtualName*> = "virtualName";
template <>
constexpr std::string_view kKind<const std::vector<StoredVirtualName>*> = "virtualNames";
template <>
constexpr std::string_view kKind<const StoredVirtualRange*> = "virtualRange";
template <>
constexpr std::string_view kKind<const std::vector<StoredVirtualRange>*> = "virtualRanges";
template <>
constexpr std::string_view kKind<const StoredDataComponent*> = "dataComponent";
template <>
constexpr std::string_view kKind<const std::vector<StoredDataComponent>*> = "dataComponents";

bool isDriversEntry(const ConfigObject& object, const StoredDriverSession* session)
{
    return object.loaded->driverSession && &*object.loaded->driverSession == session;
}

/// The name that the log puts behind the kind; empty when it puts none there.
template <class Data>
std::string nameBehindKind(const ConfigObject& object, const Data& data)
{
    if constexpr (std::is_same_v<Data, HardwareAsset>)
        return nameBehindKind(object, data.owner);
    else if constexpr (std::is_same_v<Data, const StoredDriverSession*>)
        return isDriversEntry(object, data) ? "" : data->name;
    else if constexpr (requires { data->name; })
        return data->name;
    else
        return "";
}

std::string describe(const ConfigObject& object)
{
    return std::visit(
        [&object]<class Data>(const Data& data) {
            const std::string name = nameBehindKind(object, data);
            return std::string(kKind<Data>) + (name.empty() ? "" : "[" + name + "]");
        },
        object.data);
}

/// A handle, as the log writes it.
std::string configArgument(IviConfigHandle handle)
{
    if (handle == nullptr)
        return "null";
    return locked([handle](Platform& fakes) -> std::string {
        for (const auto& object : fakes.configObjects)
            if (object.get() == handle)
                return describe(*object);
        return "unknown";
    });
}

// Handles

/// The handle of a new object, unless a test wants the call at work to give something else.
IviConfigHandle addConfigObject(Platform& fakes, ConfigObject object)
{
    if (fakes.lie == Lie::Null)
        return nullptr;
    if (fakes.lie == Lie::Garbage)
        return garbageHandle();
    return fakes.configObjects.emplace_back(std::make_unique<ConfigObject>(std::move(object))).get();
}

/// The object of a handle of the kind `Data`; null for every other handle.
template <class Data>
ConfigObject* findConfigObject(Platform& fakes, IviConfigHandle handle)
{
    for (const auto& object : fakes.configObjects)
        if (object.get() == handle && std::holds_alternative<Data>(object->data))
            return object.get();
    return nullptr;
}

ViStatus removeConfigObject(Platform& fakes, IviConfigHandle handle, bool isStore)
{
    const auto found = std::find_if(fakes.configObjects.begin(), fakes.configObjects.end(), [=](const auto& object) {
        return object.get() == handle && std::holds_alternative<StoreRoot>(object->data) == isStore;
    });
    if (found == fakes.configObjects.end())
        return IVICONFIG_ERROR_INVALID_HANDLE;
    fakes.configObjects.erase(found);
    return VI_SUCCESS;
}

// Frames of the functions

/// The frame of them all: a failure leaves a text in the thread's error record.
template <class Work, class... Arguments>
ViStatus performConfig(std::string_view function, Work work, const Arguments&... arguments)
{
    const ViStatus status = perform(function, callText(function, arguments...), work);
    if (status < 0)
        locked([&](Platform& fakes) {
            updateError(threadError(fakes), status, (std::string(function) + " failed").c_str());
        });
    return status;
}

/// Work on an object of one kind, which is given the fakes, the object and its data.
template <class Data, class Work, class... Arguments>
ViStatus performOn(IviConfigHandle handle, std::string_view function, Work work, const Arguments&... arguments)
{
    return performConfig(
        function,
        [&](Platform& fakes) -> ViStatus {
            ConfigObject* const object = findConfigObject<Data>(fakes, handle);
            return object == nullptr ? IVICONFIG_ERROR_INVALID_HANDLE
                                     : work(fakes, *object, std::get<Data>(object->data));
        },
        configArgument(handle), arguments...);
}

/// Hands out something that an object of the kind `Data` leads to: `find` gives a pointer to it, and null makes the
/// call return `absent` with a null handle.
template <class Data, class Find, class... Arguments>
ViStatus performLookup(IviConfigHandle handle, std::string_view function, IviConfigHandle* found, ViStatus absent,
                       Find find, const Arguments&... arguments)
{
    *found = garbageHandle();
    return performOn<Data>(
        handle, function,
        [&](Platform& fakes, const ConfigObject& object, const Data& data) -> ViStatus {
            const auto* const target = find(object, data);
            *found = target == nullptr ? nullptr : addConfigObject(fakes, {object.loaded, target});
            return target == nullptr ? absent : VI_SUCCESS;
        },
        arguments...);
}

template <class Item>
ViStatus performItemByIndex(IviConfigHandle collection, std::string_view function, ViInt32 index,
                            IviConfigHandle* found)
{
    return performLookup<const std::vector<Item>*>(
        collection, function, found, IVICONFIG_ERROR_NOT_EXIST,
        [index](const ConfigObject& /*object*/, const std::vector<Item>* items) -> const Item* {
            const bool exists = index >= 1 && static_cast<std::size_t>(index) <= items->size();
            return exists ? &(*items)[static_cast<std::size_t>(index) - 1] : nullptr;
        },
        index);
}

template <class Item>
const Item* findByName(const std::vector<Item>& items, std::string_view name)
{
    const auto found = std::find_if(items.begin(), items.end(), [name](const Item& item) { return item.name == name; });
    return found == items.end() ? nullptr : &*found;
}

template <class Item>
ViStatus performItemByName(IviConfigHandle collection, std::string_view function, ViConstString name,
                           IviConfigHandle* found)
{
    return performLookup<const std::vector<Item>*>(
        collection, function, found, IVICONFIG_ERROR_NOT_EXIST,
        [name](const ConfigObject& /*object*/, const std::vector<Item>* items) { return findByName(*items, name); },
        textArgument(name));
}

template <class Item>
ViStatus performCount(IviConfigHandle collection, std::string_view function, ViInt32* count)
{
    return performOn<const std::vector<Item>*>(
        collection, function,
        [count](const Platform& fakes, const ConfigObject& /*object*/, const std::vector<Item>* items) {
            constexpr ViInt32 kImpossible = std::numeric_limits<ViInt32>::max();
            *count = fakes.lie == Lie::Garbage ? kImpossible : static_cast<ViInt32>(items->size());
            return VI_SUCCESS;
        });
}

ViStatus putStoredText(const Platform& fakes, const std::string& text, ViInt32 bufferSize, ViChar* buffer)
{
    if (fakes.lie == Lie::Garbage && bufferSize > 0) {
        std::fill_n(buffer, bufferSize, '?');
        return VI_SUCCESS;
    }
    const ViStatus status = putText(text, bufferSize, buffer);
    const bool isCut = status > 0 && bufferSize > 0;
    if (isCut && fakes.leavesOutNul)
        buffer[bufferSize - 1] = text[static_cast<std::size_t>(bufferSize) - 1];
    return status;
}

/// A text property: `find` gives a pointer to the text, null for a property that is none.
template <class Data, class Find>
ViStatus performText(IviConfigHandle handle, std::string_view function, ViInt32 property, ViInt32 bufferSize,
                     ViChar* buffer, Find find)
{
    return performOn<Data>(
        handle, function,
        [&](Platform& fakes, const ConfigObject& /*object*/, const Data& data) -> ViStatus {
            const std::string* const text = find(fakes, data);
            return text == nullptr ? IVICONFIG_ERROR_INVALID_PROPERTY_ID
                                   : putStoredText(fakes, *text, bufferSize, buffer);
        },
        property, bufferSize);
}

/// Any other property.
template <class Data, class Value, class Find>
ViStatus performValue(IviConfigHandle handle, std::string_view function, ViInt32 property, Value* value, Find find)
{
    return performOn<Data>(
        handle, function,
        [&](const Platform& fakes, const ConfigObject& /*object*/, const Data& data) -> ViStatus {
            constexpr auto kNobodys = static_cast<Value>(0x5A5A);
            const Value* const stored = find(data);
            if (stored == nullptr)
                return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
            *value = fakes.lie == Lie::Garbage ? kNobodys : *stored;
            return VI_SUCCESS;
        },
        property);
}

// What the store holds

const StoredDriverSession* findDriverSession(const ConfigurationStore& store, std::string_view name)
{
    if (store.driverSession && store.driverSession->name == name)
        return &*store.driverSession;
    return findByName(store.furtherSessions, name);
}

/// A logical name that leads to no driver session hides none.
const StoredDriverSession* findByLogicalName(const ConfigurationStore& store, std::string_view name)
{
    const auto logical = store.logicalNames.find(name);
    const auto* const named = logical == store.logicalNames.end() ? nullptr : findDriverSession(store, logical->second);
    return named != nullptr ? named : findDriverSession(store, name);
}

const ViBoolean* storedFlag(const StoredDriverSession& session, ViInt32 property)
{
    switch (property) {
    case IVICONFIG_VAL_DRIVER_SESSION_CACHE:
        return &session.cache;
    case IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK:
        return &session.interchangeCheck;
    case IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS:
        return &session.queryInstrumentStatus;
    case IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK:
        return &session.rangeCheck;
    case IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS:
        return &session.recordCoercions;
    case IVICONFIG_VAL_DRIVER_SESSION_SIMULATE:
        return &session.simulate;
    default:
        return nullptr;
    }
}

const ViInt32* storedBound(const StoredVirtualRange& range, ViInt32 property)
{
    switch (property) {
    case IVICONFIG_VAL_VIRTUAL_RANGE_MIN:
        return &range.minimum;
    case IVICONFIG_VAL_VIRTUAL_RANGE_MAX:
        return &range.maximum;
    case IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX:
        return &range.startingPhysicalIndex;
    default:
        return nullptr;
    }
}

const std::string* textOf(const StoredDataComponent& component, ViInt32 property)
{
    switch (property) {
    case IVICONFIG_VAL_DATA_COMPONENT_NAME:
        return &component.name;
    case IVICONFIG_VAL_DATA_COMPONENT_TYPE:
        return &component.type;
    case IVICONFIG_VAL_DATA_COMPONENT_VALUE:
        return std::get_if<std::string>(&component.value);
    default:
        return nullptr;
    }
}

/// The value of a data component, if it is of this type.
template <class Value>
ViStatus performComponentValue(IviConfigHandle handle, std::string_view function, ViInt32 property, Value* value)
{
    return performValue<const StoredDataComponent*>(
        handle, function, property, value, [property](const StoredDataComponent* component) {
            const bool isValue = property == IVICONFIG_VAL_DATA_COMPONENT_VALUE;
            return isValue ? std::get_if<Value>(&component->value) : nullptr;
        });
}

/// The data components of whatever kind of component the handle points to; null for other handles.
const std::vector<StoredDataComponent>* dataComponentsOf(const ConfigObject& object)
{
    static const std::vector<StoredDataComponent> kNone;
    if (const auto* const session = std::get_if<const StoredDriverSession*>(&object.data))
        return &(*session)->dataComponents;
    if (const auto* const module = std::get_if<const StoredSoftwareModule*>(&object.data))
        return &(*module)->dataComponents;
    return std::holds_alternative<HardwareAsset>(object.data) ? &kNone : nullptr;
}

} // namespace

StoredDataComponent stringComponent(std::string name, std::string value)
{
    return {std::move(name), "String", std::move(value), {}};
}

StoredDataComponent integerComponent(std::string name, ViInt32 value)
{
    return {std::move(name), "Integer", value, {}};
}

StoredDataComponent realComponent(std::string name, ViReal64 value)
{
    return {std::move(name), "Real", value, {}};
}

StoredDataComponent booleanComponent(std::string name, ViBoolean value)
{
    return {std::move(name), "Boolean", value, {}};
}

StoredDataComponent structureComponent(std::string name, std::vector<StoredDataComponent> components)
{
    return {std::move(name), "Structure", {}, std::move(components)};
}

std::vector<StoredDataComponent>& StoredComponent::settings()
{
    for (StoredDataComponent& component : dataComponents)
        if (component.name == kSettings)
            return component.components;
    return dataComponents.emplace_back(structureComponent(kSettings, {})).components;
}

} // namespace kvxtest

using namespace kvxtest;

ViStatus _VI_FUNC IviConfig_Initialize(IviConfigStoreHandle* store)
{
    *store = garbageHandle();
    return performConfig("IviConfig_Initialize", [=](Platform& fakes) {
        *store = addConfigObject(fakes, {nullptr, StoreRoot{}});
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_Close(IviConfigStoreHandle store)
{
    return performConfig(
        "IviConfig_Close", [=](Platform& fakes) { return removeConfigObject(fakes, store, true); },
        configArgument(store));
}

ViStatus _VI_FUNC IviConfig_DisposeHandle(IviConfigHandle handle)
{
    return performConfig(
        "IviConfig_DisposeHandle", [=](Platform& fakes) { return removeConfigObject(fakes, handle, false); },
        configArgument(handle));
}

ViStatus _VI_FUNC IviConfig_ClearError()
{
    return perform("IviConfig_ClearError", "IviConfig_ClearError()", [](Platform& fakes) {
        threadError(fakes) = {};
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_GetError(ViInt32 bufferSize, ViChar errorDescription[])
{
    return perform("IviConfig_GetError", callText("IviConfig_GetError", bufferSize), [=](Platform& fakes) {
        return takeError(threadError(fakes), bufferSize, nullptr, errorDescription);
    });
}

ViStatus _VI_FUNC IviConfig_Deserialize(IviConfigStoreHandle store, ViConstString location)
{
    return performOn<StoreRoot>(
        store, "IviConfig_Deserialize",
        [](Platform& fakes, ConfigObject& object, StoreRoot /*root*/) -> ViStatus {
            if (object.loaded != nullptr)
                return IVICONFIG_ERROR_ALREADY_DESERIALIZED;
            object.loaded = std::make_shared<const ConfigurationStore>(fakes.store);
            return VI_SUCCESS;
        },
        textArgument(location));
}

ViStatus _VI_FUNC IviConfig_GetConfigStorePropertyViString(IviConfigStoreHandle store, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return performText<StoreRoot>(store, "IviConfig_GetConfigStorePropertyViString", propertyID, bufferSize, value,
                                  [=](const Platform& fakes, StoreRoot /*root*/) -> const std::string* {
                                      if (propertyID == IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION)
                                          return &fakes.store.processDefaultLocation;
                                      if (propertyID == IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION)
                                          return &fakes.store.masterLocation;
                                      return nullptr;
                                  });
}

ViStatus _VI_FUNC IviConfig_GetDriverSession(IviConfigStoreHandle store, ViConstString name,
                                             IviDriverSessionHandle* driverSession)
{
    return performLookup<StoreRoot>(
        store, "IviConfig_GetDriverSession", driverSession, IVICONFIG_ERROR_SESSION_NOT_FOUND,
        [name](const ConfigObject& object, StoreRoot /*root*/) -> const StoredDriverSession* {
            return object.loaded == nullptr ? nullptr : findByLogicalName(*object.loaded, name);
        },
        textArgument(name));
}

ViStatus _VI_FUNC IviConfig_GetConfigStoreSoftwareModuleCollection(IviConfigStoreHandle store,
                                                                   IviSoftwareModuleCollectionHandle* softwareModules)
{
    return performLookup<StoreRoot>(store, "IviConfig_GetConfigStoreSoftwareModuleCollection", softwareModules,
                                    VI_SUCCESS, [](const ConfigObject& object, StoreRoot /*root*/) {
                                        return object.loaded == nullptr ? nullptr : &object.loaded->softwareModules;
                                    });
}

ViStatus _VI_FUNC IviConfig_GetSoftwareModuleItemByName(IviSoftwareModuleCollectionHandle softwareModules,
                                                        ViConstString name, IviSoftwareModuleHandle* softwareModule)
{
    return performItemByName<StoredSoftwareModule>(softwareModules, "IviConfig_GetSoftwareModuleItemByName", name,
                                                   softwareModule);
}

ViStatus _VI_FUNC IviConfig_GetSoftwareModulePhysicalNameCollection(IviSoftwareModuleHandle softwareModule,
                                                                    IviPhysicalNameCollectionHandle* physicalNames)
{
    return performLookup<const StoredSoftwareModule*>(
        softwareModule, "IviConfig_GetSoftwareModulePhysicalNameCollection", physicalNames, VI_SUCCESS,
        [](const ConfigObject& /*object*/, const StoredSoftwareModule* module) { return &module->physicalNames; });
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNameCount(IviPhysicalNameCollectionHandle physicalNames, ViInt32* count)
{
    return performCount<StoredPhysicalName>(physicalNames, "IviConfig_GetPhysicalNameCount", count);
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNameItemByIndex(IviPhysicalNameCollectionHandle physicalNames, ViInt32 index,
                                                       IviPhysicalNameHandle* physicalName)
{
    return performItemByIndex<StoredPhysicalName>(physicalNames, "IviConfig_GetPhysicalNameItemByIndex", index,
                                                  physicalName);
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNamePropertyViString(IviPhysicalNameHandle physicalName, ViInt32 propertyID,
                                                            ViInt32 bufferSize, ViChar value[])
{
    return performText<const StoredPhysicalName*>(
        physicalName, "IviConfig_GetPhysicalNamePropertyViString", propertyID, bufferSize, value,
        [=](const Platform& /*fakes*/, const StoredPhysicalName* stored) -> const std::string* {
            if (propertyID == IVICONFIG_VAL_PHYSICAL_NAME_NAME)
                return &stored->name;
            return propertyID == IVICONFIG_VAL_PHYSICAL_NAME_RCNAME ? &stored->repeatedCapability : nullptr;
        });
}

ViStatus _VI_FUNC IviConfig_GetSessionSoftwareModuleReference(IviSessionHandle session,
                                                              IviSoftwareModuleHandle* softwareModule)
{
    return performLookup<const StoredDriverSession*>(
        session, "IviConfig_GetSessionSoftwareModuleReference", softwareModule, VI_SUCCESS,
        [](const ConfigObject& object, const StoredDriverSession* stored) {
            return stored->softwareModule ? findByName(object.loaded->softwareModules, *stored->softwareModule)
                                          : nullptr;
        });
}

ViStatus _VI_FUNC IviConfig_GetSessionHardwareAssetReference(IviSessionHandle session,
                                                             IviHardwareAssetHandle* hardwareAsset)
{
    *hardwareAsset = garbageHandle();
    return performOn<const StoredDriverSession*>(
        session, "IviConfig_GetSessionHardwareAssetReference",
        [=](Platform& fakes, const ConfigObject& object, const StoredDriverSession* stored) {
            *hardwareAsset =
                stored->ioResourceDescriptor ? addConfigObject(fakes, {object.loaded, HardwareAsset{stored}}) : nullptr;
            return VI_SUCCESS;
        });
}

ViStatus _VI_FUNC IviConfig_GetHardwareAssetPropertyViString(IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return performText<HardwareAsset>(hardwareAsset, "IviConfig_GetHardwareAssetPropertyViString", propertyID,
                                      bufferSize, value, [=](const Platform& /*fakes*/, HardwareAsset asset) {
                                          return propertyID == IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR
                                                     ? &*asset.owner->ioResourceDescriptor
                                                     : nullptr;
                                      });
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViBoolean(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return performValue<const StoredDriverSession*>(
        driverSession, "IviConfig_GetDriverSessionPropertyViBoolean", propertyID, value,
        [=](const StoredDriverSession* stored) { return storedFlag(*stored, propertyID); });
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViString(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return performText<const StoredDriverSession*>(
        driverSession, "IviConfig_GetDriverSessionPropertyViString", propertyID, bufferSize, value,
        [=](const Platform& /*fakes*/, const StoredDriverSession* stored) {
            return propertyID == IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP ? &stored->driverSetup : nullptr;
        });
}

ViStatus _VI_FUNC IviConfig_GetSessionVirtualNameCollection(IviSessionHandle session,
                                                            IviVirtualNameCollectionHandle* virtualNames)
{
    return performLookup<const StoredDriverSession*>(
        session, "IviConfig_GetSessionVirtualNameCollection", virtualNames, VI_SUCCESS,
        [](const ConfigObject& /*object*/, const StoredDriverSession* stored) { return &stored->virtualNames; });
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameCount(IviVirtualNameCollectionHandle virtualNames, ViInt32* count)
{
    return performCount<StoredVirtualName>(virtualNames, "IviConfig_GetVirtualNameCount", count);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameItemByIndex(IviVirtualNameCollectionHandle virtualNames, ViInt32 index,
                                                      IviVirtualNameHandle* virtualName)
{
    return performItemByIndex<StoredVirtualName>(virtualNames, "IviConfig_GetVirtualNameItemByIndex", index,
                                                 virtualName);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNamePropertyViString(IviVirtualNameHandle virtualName, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return performText<const StoredVirtualName*>(
        virtualName, "IviConfig_GetVirtualNamePropertyViString", propertyID, bufferSize, value,
        [=](const Platform& /*fakes*/, const StoredVirtualName* stored) -> const std::string* {
            if (propertyID == IVICONFIG_VAL_VIRTUAL_NAME_NAME)
                return &stored->name;
            return propertyID == IVICONFIG_VAL_VIRTUAL_NAME_MAPTO ? &stored->mapTo : nullptr;
        });
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameVirtualRangeCollection(IviVirtualNameHandle virtualName,
                                                                 IviVirtualRangeCollectionHandle* virtualRanges)
{
    return performLookup<const StoredVirtualName*>(
        virtualName, "IviConfig_GetVirtualNameVirtualRangeCollection", virtualRanges, VI_SUCCESS,
        [](const ConfigObject& /*object*/, const StoredVirtualName* stored) { return &stored->ranges; });
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangeCount(IviVirtualRangeCollectionHandle virtualRanges, ViInt32* count)
{
    return performCount<StoredVirtualRange>(virtualRanges, "IviConfig_GetVirtualRangeCount", count);
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangeItemByIndex(IviVirtualRangeCollectionHandle virtualRanges, ViInt32 index,
                                                       IviVirtualRangeHandle* virtualRange)
{
    return performItemByIndex<StoredVirtualRange>(virtualRanges, "IviConfig_GetVirtualRangeItemByIndex", index,
                                                  virtualRange);
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangePropertyViInt32(IviVirtualRangeHandle virtualRange, ViInt32 propertyID,
                                                           ViInt32* value)
{
    return performValue<const StoredVirtualRange*>(
        virtualRange, "IviConfig_GetVirtualRangePropertyViInt32", propertyID, value,
        [=](const StoredVirtualRange* stored) { return storedBound(*stored, propertyID); });
}

ViStatus _VI_FUNC IviConfig_GetConfigComponentDataComponentCollection(IviConfigComponentHandle component,
                                                                      IviDataComponentCollectionHandle* dataComponents)
{
    *dataComponents = garbageHandle();
    const auto work = [=](Platform& fakes) -> ViStatus {
        for (const auto& object : fakes.configObjects)
            if (object.get() == component && dataComponentsOf(*object) != nullptr) {
                *dataComponents = addConfigObject(fakes, {object->loaded, dataComponentsOf(*object)});
                return VI_SUCCESS;
            }
        return IVICONFIG_ERROR_INVALID_HANDLE;
    };
    return performConfig("IviConfig_GetConfigComponentDataComponentCollection", work, configArgument(component));
}

ViStatus _VI_FUNC IviConfig_GetStructureDataComponentCollection(IviStructureHandle structure,
                                                                IviDataComponentCollectionHandle* dataComponents)
{
    *dataComponents = garbageHandle();
    return performOn<const StoredDataComponent*>(
        structure, "IviConfig_GetStructureDataComponentCollection",
        [=](Platform& fakes, const ConfigObject& object, const StoredDataComponent* stored) -> ViStatus {
            if (!std::holds_alternative<std::monostate>(stored->value))
                return IVICONFIG_ERROR_INVALID_HANDLE;
            *dataComponents = addConfigObject(fakes, {object.loaded, &stored->components});
            return VI_SUCCESS;
        });
}

ViStatus _VI_FUNC IviConfig_GetDataComponentItemByName(IviDataComponentCollectionHandle dataComponents,
                                                       ViConstString name, IviDataComponentHandle* dataComponent)
{
    return performItemByName<StoredDataComponent>(dataComponents, "IviConfig_GetDataComponentItemByName", name,
                                                  dataComponent);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentCount(IviDataComponentCollectionHandle dataComponents, ViInt32* count)
{
    return performCount<StoredDataComponent>(dataComponents, "IviConfig_GetDataComponentCount", count);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentItemByIndex(IviDataComponentCollectionHandle dataComponents, ViInt32 index,
                                                        IviDataComponentHandle* dataComponent)
{
    return performItemByIndex<StoredDataComponent>(dataComponents, "IviConfig_GetDataComponentItemByIndex", index,
                                                   dataComponent);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViString(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return performText<const StoredDataComponent*>(
        dataComponent, "IviConfig_GetDataComponentPropertyViString", propertyID, bufferSize, value,
        [=](const Platform& /*fakes*/, const StoredDataComponent* stored) { return textOf(*stored, propertyID); });
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViInt32(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                            ViInt32* value)
{
    return performComponentValue(dataComponent, "IviConfig_GetDataComponentPropertyViInt32", propertyID, value);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViReal64(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViReal64* value)
{
    return performComponentValue(dataComponent, "IviConfig_GetDataComponentPropertyViReal64", propertyID, value);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViBoolean(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return performComponentValue(dataComponent, "IviConfig_GetDataComponentPropertyViBoolean", propertyID, value);
}
