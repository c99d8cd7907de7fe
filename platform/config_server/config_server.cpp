#include "platform/common/string_output.h"
#include "platform/config_server/handle_table.h"
#include "platform/config_server/locations.h"
#include "platform/config_server/properties.h"
#include "platform/config_server/values.h"

#include <IviCShared.h>
#include <IviConfigServer.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace
{

using namespace config_server;

// A handle carries a number of the table in a pointer.
static_assert(sizeof(IviConfigHandle) == sizeof(void*));

struct Meaning
{
    ViStatus status;
    std::string_view text;
};

constexpr std::array kMeanings{
    Meaning{IVICONFIG_ERROR_DESERIALIZE_FAILED, "the file is missing or not a configuration store"},
    Meaning{IVICONFIG_ERROR_ALREADY_DESERIALIZED, "the store has been loaded already"},
    Meaning{IVICONFIG_ERROR_SESSION_NOT_FOUND, "no driver session has this name"},
    Meaning{IVICONFIG_ERROR_MASTER_NOT_FOUND, "the master configuration store is missing"},
    Meaning{IVICONFIG_ERROR_NOT_EXIST, "the collection has no such item"},
    Meaning{IVICONFIG_ERROR_INVALID_HANDLE, "the handle is not valid here"},
    Meaning{IVICONFIG_ERROR_INVALID_PROPERTY_ID, "the object has no such property of this type"},
    Meaning{IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT,
            "the registry names different master configuration stores for programs of 32 and 64 bits"},
    Meaning{IVI_ERROR_NULL_POINTER, "a pointer is null"},
    Meaning{IVI_ERROR_OUT_OF_MEMORY, "there is not enough memory"},
};

/// What a call works on, for its message.
struct Call
{
    std::string_view function; ///< its C name
    std::string item{};
};

std::string messageOf(const Call& call, ViStatus status)
{
    constexpr std::string_view kPrefix = "IviConfig_";
    const auto* const meaning = std::ranges::find(kMeanings, status, &Meaning::status);
    std::string message = "IviConfigServer.IviConfigStore.1: ";
    message += call.function.substr(kPrefix.size());
    if (!call.item.empty())
        message += " '" + call.item + "'";
    if (meaning != kMeanings.end())
        message.append(": ").append(meaning->text);
    return message;
}

/// Logs a failure in the record that the thread shares with the session service.
ViStatus recorded(const Call& call, ViStatus status) noexcept
{
    if (status >= 0)
        return status;
    try {
        IviSession_SetError(VI_NULL, status, messageOf(call, status).c_str());
    } catch (const std::bad_alloc&) {
        IviSession_SetError(VI_NULL, status, nullptr);
    }
    return status;
}

template <class Action>
ViStatus caught(Action action) noexcept
{
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return IVI_ERROR_OUT_OF_MEMORY;
    } catch (const std::length_error&) {
        return IVI_ERROR_OUT_OF_MEMORY;
    } catch (const std::system_error&) {
        return IVI_ERROR_CANNOT_CREATE_LOCK;
    }
}

/// The frame of every function: no exception leaves the library, and every failure is logged.
template <class Action>
ViStatus run(std::string_view function, Action action) noexcept
{
    Call call{function};
    const ViStatus status = caught([&] { return action(call); });
    return recorded(call, status);
}

/// A function that works on a handle of certain kinds.
struct Target
{
    std::string_view function; ///< its C name
    IviConfigHandle handle;
    Kinds kinds;
};

/// The frame of such functions: action(object, call).
template <class Action>
ViStatus runOn(const Target& target, Action action) noexcept
{
    return run(target.function, [&](Call& call) {
        const auto object = handles().find(target.handle, target.kinds);
        return object ? action(*object, call) : IVICONFIG_ERROR_INVALID_HANDLE;
    });
}

/// The frame of functions that hand out a handle: action(object, call, result). Null is stored unless it makes one.
template <class Action>
ViStatus handOut(const Target& target, IviConfigHandle* result, Action action) noexcept
{
    if (result != nullptr)
        *result = nullptr;
    return runOn(target, [&](const Object& object, Call& call) {
        return result == nullptr ? IVI_ERROR_NULL_POINTER : action(object, call, *result);
    });
}

ViStatus release(const Target& target) noexcept
{
    return run(target.function, [&target](Call&) {
        return handles().remove(target.handle, target.kinds) ? VI_SUCCESS : IVICONFIG_ERROR_INVALID_HANDLE;
    });
}

/// A new handle of an object; null for an absent one.
IviConfigHandle handleOf(const Document& element)
{
    if (element == nullptr)
        return nullptr;
    return handles().add({.kind = kindOf(element->name), .element = element});
}

/// What the first of these reference children refers to that does; null when none does.
const Element* referredOf(const Element& element, std::initializer_list<std::string_view> children)
{
    for (const std::string_view child : children) {
        if (const Element* const referred = element.reference(child))
            return referred;
    }
    return nullptr;
}

/// Hands out what one of these reference children of the object refers to; null when there is none.
ViStatus getReference(const Target& target, std::initializer_list<std::string_view> children,
                      IviConfigHandle* result) noexcept
{
    return handOut(target, result, [children](const Object& object, const Call&, IviConfigHandle& handle) {
        const Element* const referred = referredOf(*object.element, children);
        handle = handleOf(referred == nullptr ? nullptr : Document(object.element, referred));
        return VI_SUCCESS;
    });
}

/// Hands out a collection of the object, or of the store's file; an empty one when the file lacks it.
ViStatus getCollection(const Target& target, Kinds kind, IviConfigHandle* result) noexcept
{
    return handOut(target, result, [kind](const Object& object, const Call&, IviConfigHandle& handle) {
        const Document owner = object.store != nullptr ? object.store->document() : object.element;
        handle = handles().add({.kind = kind, .items = std::make_shared<Collection>(owner, kind)});
        return VI_SUCCESS;
    });
}

ViStatus getCount(const Target& target, ViInt32* count) noexcept
{
    return runOn(target, [count](const Object& object, const Call&) {
        if (count == nullptr)
            return IVI_ERROR_NULL_POINTER;
        *count = object.items->count();
        return VI_SUCCESS;
    });
}

ViStatus getItemByIndex(const Target& target, ViInt32 index, IviConfigHandle* result) noexcept
{
    return handOut(target, result, [index](const Object& object, Call& call, IviConfigHandle& handle) {
        call.item = std::to_string(index);
        handle = handleOf(object.items->item(index));
        return handle == nullptr ? IVICONFIG_ERROR_NOT_EXIST : VI_SUCCESS;
    });
}

ViStatus getItemByName(const Target& target, ViConstString name, IviConfigHandle* result) noexcept
{
    return handOut(target, result, [name](const Object& object, Call& call, IviConfigHandle& handle) {
        if (name == nullptr)
            return IVI_ERROR_NULL_POINTER;
        call.item = name;
        handle = handleOf(object.items->item(call.item));
        return handle == nullptr ? IVICONFIG_ERROR_NOT_EXIST : VI_SUCCESS;
    });
}

ViStatus getText(const Target& target, ViInt32 propertyId, ViInt32 bufferSize, ViChar* value) noexcept
{
    return runOn(target, [=](const Object& object, const Call&) {
        if (platform::lacksBuffer(bufferSize, value))
            return IVI_ERROR_NULL_POINTER;
        const PropertyRow* const row = findProperty(object.kind, propertyId, PropertyType::Text);
        return row == nullptr ? IVICONFIG_ERROR_INVALID_PROPERTY_ID
                              : platform::putString(textOf(*object.element, *row), bufferSize, value);
    });
}

/// Reads a property that is no text. The file has been checked, so parsing it again does not fail.
template <class Value>
ViStatus getValue(const Target& target, ViInt32 propertyId, PropertyType type,
                  std::optional<Value> (*parse)(std::string_view), Value* value) noexcept
{
    return runOn(target, [=](const Object& object, const Call&) {
        if (value == nullptr)
            return IVI_ERROR_NULL_POINTER;
        const PropertyRow* const row = findProperty(object.kind, propertyId, type);
        if (row == nullptr)
            return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
        *value = parse(textOf(*object.element, *row)).value_or(Value{});
        return VI_SUCCESS;
    });
}

ViStatus getFlag(const Target& target, ViInt32 propertyId, ViBoolean* value) noexcept
{
    return getValue(target, propertyId, PropertyType::Flag, parseFlag, value);
}

ViStatus getInteger(const Target& target, ViInt32 propertyId, ViInt32* value) noexcept
{
    return getValue(target, propertyId, PropertyType::Integer, parseInteger, value);
}

ViStatus getReal(const Target& target, ViInt32 propertyId, ViReal64* value) noexcept
{
    return getValue(target, propertyId, PropertyType::Real, parseReal, value);
}

} // namespace

// Life cycle and errors

ViStatus _VI_FUNC IviConfig_Initialize(IviConfigStoreHandle* store)
{
    return run(__func__, [store](Call&) {
        if (store == nullptr)
            return IVI_ERROR_NULL_POINTER;
        *store = nullptr;
        *store = handles().add({.kind = kStore, .store = std::make_shared<Store>()});
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_Close(IviConfigStoreHandle store)
{
    return release({__func__, store, kStore});
}

ViStatus _VI_FUNC IviConfig_DisposeHandle(IviConfigHandle handle)
{
    return release({__func__, handle, kAnyObject});
}

ViStatus _VI_FUNC IviConfig_ClearError(void)
{
    return IviSession_ClearError(VI_NULL);
}

ViStatus _VI_FUNC IviConfig_GetError(ViInt32 bufferSize, ViChar errorDescription[])
{
    return IviSession_GetError(VI_NULL, bufferSize, nullptr, errorDescription);
}

// Store

ViStatus _VI_FUNC IviConfig_Deserialize(IviConfigStoreHandle store, ViConstString location)
{
    return runOn({__func__, store, kStore}, [location](const Object& object, Call& call) {
        if (location == nullptr)
            return IVI_ERROR_NULL_POINTER;
        call.item = locationOf(location);
        return object.store->deserialize(call.item);
    });
}

ViStatus _VI_FUNC IviConfig_GetConfigStorePropertyViString(IviConfigStoreHandle store, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return runOn({__func__, store, kStore}, [=](const Object& object, const Call&) {
        if (platform::lacksBuffer(bufferSize, value))
            return IVI_ERROR_NULL_POINTER;
        std::string text;
        const ViStatus status = object.store->text(propertyID, text);
        return status < 0 ? status : platform::putString(text, bufferSize, value);
    });
}

ViStatus _VI_FUNC IviConfig_GetDriverSession(IviConfigStoreHandle store, ViConstString name,
                                             IviDriverSessionHandle* driverSession)
{
    return handOut({__func__, store, kStore}, driverSession,
                   [name](const Object& object, Call& call, IviConfigHandle& handle) {
                       if (name == nullptr)
                           return IVI_ERROR_NULL_POINTER;
                       call.item = name;
                       handle = handleOf(object.store->driverSession(call.item));
                       return handle == nullptr ? IVICONFIG_ERROR_SESSION_NOT_FOUND : VI_SUCCESS;
                   });
}

ViStatus _VI_FUNC IviConfig_GetConfigStoreDriverSessionCollection(IviConfigStoreHandle store,
                                                                  IviDriverSessionCollectionHandle* driverSessions)
{
    return getCollection({__func__, store, kStore}, kDriverSessions, driverSessions);
}

ViStatus _VI_FUNC IviConfig_GetConfigStoreLogicalNameCollection(IviConfigStoreHandle store,
                                                                IviLogicalNameCollectionHandle* logicalNames)
{
    return getCollection({__func__, store, kStore}, kLogicalNames, logicalNames);
}

ViStatus _VI_FUNC IviConfig_GetConfigStoreSoftwareModuleCollection(IviConfigStoreHandle store,
                                                                   IviSoftwareModuleCollectionHandle* softwareModules)
{
    return getCollection({__func__, store, kStore}, kSoftwareModules, softwareModules);
}

// Software modules and physical names

ViStatus _VI_FUNC IviConfig_GetSoftwareModuleItemByName(IviSoftwareModuleCollectionHandle softwareModules,
                                                        ViConstString name, IviSoftwareModuleHandle* softwareModule)
{
    return getItemByName({__func__, softwareModules, kSoftwareModules}, name, softwareModule);
}

ViStatus _VI_FUNC IviConfig_GetSoftwareModulePhysicalNameCollection(IviSoftwareModuleHandle softwareModule,
                                                                    IviPhysicalNameCollectionHandle* physicalNames)
{
    return getCollection({__func__, softwareModule, kSoftwareModule}, kPhysicalNames, physicalNames);
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNameCount(IviPhysicalNameCollectionHandle physicalNames, ViInt32* count)
{
    return getCount({__func__, physicalNames, kPhysicalNames}, count);
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNameItemByIndex(IviPhysicalNameCollectionHandle physicalNames, ViInt32 index,
                                                       IviPhysicalNameHandle* physicalName)
{
    return getItemByIndex({__func__, physicalNames, kPhysicalNames}, index, physicalName);
}

ViStatus _VI_FUNC IviConfig_GetPhysicalNamePropertyViString(IviPhysicalNameHandle physicalName, ViInt32 propertyID,
                                                            ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, physicalName, kPhysicalName}, propertyID, bufferSize, value);
}

// Sessions, driver sessions and hardware assets

ViStatus _VI_FUNC IviConfig_GetSessionSoftwareModuleReference(IviSessionHandle session,
                                                              IviSoftwareModuleHandle* softwareModule)
{
    return getReference({__func__, session, kAnySession}, {"IviSoftwareModuleRef"}, softwareModule);
}

ViStatus _VI_FUNC IviConfig_GetSessionHardwareAssetReference(IviSessionHandle session,
                                                             IviHardwareAssetHandle* hardwareAsset)
{
    return getReference({__func__, session, kAnySession}, {"IviHardwareAsset"}, hardwareAsset);
}

ViStatus _VI_FUNC IviConfig_GetSessionPropertyViString(IviSessionHandle session, ViInt32 propertyID, ViInt32 bufferSize,
                                                       ViChar value[])
{
    return getText({__func__, session, kAnySession}, propertyID, bufferSize, value);
}

ViStatus _VI_FUNC IviConfig_GetHardwareAssetPropertyViString(IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, hardwareAsset, kHardwareAsset}, propertyID, bufferSize, value);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionCount(IviDriverSessionCollectionHandle driverSessions, ViInt32* count)
{
    return getCount({__func__, driverSessions, kDriverSessions}, count);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionItemByIndex(IviDriverSessionCollectionHandle driverSessions, ViInt32 index,
                                                        IviDriverSessionHandle* driverSession)
{
    return getItemByIndex({__func__, driverSessions, kDriverSessions}, index, driverSession);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionItemByName(IviDriverSessionCollectionHandle driverSessions,
                                                       ViConstString name, IviDriverSessionHandle* driverSession)
{
    return getItemByName({__func__, driverSessions, kDriverSessions}, name, driverSession);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViBoolean(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return getFlag({__func__, driverSession, kDriverSession}, propertyID, value);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViString(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, driverSession, kDriverSession}, propertyID, bufferSize, value);
}

// Logical names

ViStatus _VI_FUNC IviConfig_GetLogicalNameCount(IviLogicalNameCollectionHandle logicalNames, ViInt32* count)
{
    return getCount({__func__, logicalNames, kLogicalNames}, count);
}

ViStatus _VI_FUNC IviConfig_GetLogicalNameItemByIndex(IviLogicalNameCollectionHandle logicalNames, ViInt32 index,
                                                      IviLogicalNameHandle* logicalName)
{
    return getItemByIndex({__func__, logicalNames, kLogicalNames}, index, logicalName);
}

ViStatus _VI_FUNC IviConfig_GetLogicalNameItemByName(IviLogicalNameCollectionHandle logicalNames, ViConstString name,
                                                     IviLogicalNameHandle* logicalName)
{
    return getItemByName({__func__, logicalNames, kLogicalNames}, name, logicalName);
}

ViStatus _VI_FUNC IviConfig_GetLogicalNamePropertyViString(IviLogicalNameHandle logicalName, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, logicalName, kLogicalName}, propertyID, bufferSize, value);
}

ViStatus _VI_FUNC IviConfig_GetLogicalNameSessionReference(IviLogicalNameHandle logicalName, IviSessionHandle* session)
{
    return getReference({__func__, logicalName, kLogicalName}, {"IviDriverSession", "IviSession"}, session);
}

// Virtual names and ranges

ViStatus _VI_FUNC IviConfig_GetSessionVirtualNameCollection(IviSessionHandle session,
                                                            IviVirtualNameCollectionHandle* virtualNames)
{
    return getCollection({__func__, session, kAnySession}, kVirtualNames, virtualNames);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameCount(IviVirtualNameCollectionHandle virtualNames, ViInt32* count)
{
    return getCount({__func__, virtualNames, kVirtualNames}, count);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameItemByIndex(IviVirtualNameCollectionHandle virtualNames, ViInt32 index,
                                                      IviVirtualNameHandle* virtualName)
{
    return getItemByIndex({__func__, virtualNames, kVirtualNames}, index, virtualName);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNamePropertyViString(IviVirtualNameHandle virtualName, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, virtualName, kVirtualName}, propertyID, bufferSize, value);
}

ViStatus _VI_FUNC IviConfig_GetVirtualNameVirtualRangeCollection(IviVirtualNameHandle virtualName,
                                                                 IviVirtualRangeCollectionHandle* virtualRanges)
{
    return getCollection({__func__, virtualName, kVirtualName}, kVirtualRanges, virtualRanges);
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangeCount(IviVirtualRangeCollectionHandle virtualRanges, ViInt32* count)
{
    return getCount({__func__, virtualRanges, kVirtualRanges}, count);
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangeItemByIndex(IviVirtualRangeCollectionHandle virtualRanges, ViInt32 index,
                                                       IviVirtualRangeHandle* virtualRange)
{
    return getItemByIndex({__func__, virtualRanges, kVirtualRanges}, index, virtualRange);
}

ViStatus _VI_FUNC IviConfig_GetVirtualRangePropertyViInt32(IviVirtualRangeHandle virtualRange, ViInt32 propertyID,
                                                           ViInt32* value)
{
    return getInteger({__func__, virtualRange, kVirtualRange}, propertyID, value);
}

// Data components

ViStatus _VI_FUNC IviConfig_GetConfigComponentDataComponentCollection(IviConfigComponentHandle component,
                                                                      IviDataComponentCollectionHandle* dataComponents)
{
    return getCollection({__func__, component, kConfigComponent}, kDataComponents, dataComponents);
}

ViStatus _VI_FUNC IviConfig_GetStructureDataComponentCollection(IviStructureHandle structure,
                                                                IviDataComponentCollectionHandle* dataComponents)
{
    return getCollection({__func__, structure, kStructure}, kDataComponents, dataComponents);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentItemByName(IviDataComponentCollectionHandle dataComponents,
                                                       ViConstString name, IviDataComponentHandle* dataComponent)
{
    return getItemByName({__func__, dataComponents, kDataComponents}, name, dataComponent);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentCount(IviDataComponentCollectionHandle dataComponents, ViInt32* count)
{
    return getCount({__func__, dataComponents, kDataComponents}, count);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentItemByIndex(IviDataComponentCollectionHandle dataComponents, ViInt32 index,
                                                        IviDataComponentHandle* dataComponent)
{
    return getItemByIndex({__func__, dataComponents, kDataComponents}, index, dataComponent);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViString(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return getText({__func__, dataComponent, kDataComponent}, propertyID, bufferSize, value);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViInt32(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                            ViInt32* value)
{
    return getInteger({__func__, dataComponent, kDataComponent}, propertyID, value);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViReal64(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViReal64* value)
{
    return getReal({__func__, dataComponent, kDataComponent}, propertyID, value);
}

ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViBoolean(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return getFlag({__func__, dataComponent, kDataComponent}, propertyID, value);
}
