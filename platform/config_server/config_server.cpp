#include "handle_table.h"
#include "string_output.h"

#include <IviCShared.h>
#include <IviConfigServer.h>

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace
{

using namespace config_server;

// A handle carries a number of the table in a pointer.
static_assert(sizeof(IviConfigHandle) == sizeof(void*));

/// Never destroyed: drivers may give handles back while the process ends.
HandleTable& handles()
{
    static HandleTable& table = *new HandleTable;
    return table;
}

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
    Meaning{IVICONFIG_ERROR_INVALID_HANDLE, "the handle is not valid here"},
    Meaning{IVICONFIG_ERROR_INVALID_PROPERTY_ID, "the object has no such property of this type"},
    Meaning{IVI_ERROR_NULL_POINTER, "a pointer is null"},
    Meaning{IVI_ERROR_OUT_OF_MEMORY, "there is not enough memory"},
};

/// What a call works on, for its message.
struct Call
{
    std::string_view operation;
    std::string item{};
};

std::string messageOf(const Call& call, ViStatus status)
{
    const auto* const meaning =
        std::find_if(kMeanings.begin(), kMeanings.end(), [status](const Meaning& row) { return row.status == status; });
    std::string message = "IviConfigServer.IviConfigStore.1: ";
    message += call.operation;
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

template <typename Action>
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
template <typename Action>
ViStatus run(std::string_view operation, Action action) noexcept
{
    Call call{operation};
    const ViStatus status = caught([&] { return action(call); });
    return recorded(call, status);
}

/// The same for functions that work on a handle of certain kinds: action(object, call).
template <typename Action>
ViStatus runOn(IviConfigHandle handle, Kinds kinds, std::string_view operation, Action action) noexcept
{
    return run(operation, [&](Call& call) {
        const auto object = handles().find(handle, kinds);
        return object ? action(*object, call) : IVICONFIG_ERROR_INVALID_HANDLE;
    });
}

ViStatus release(IviConfigHandle handle, Kinds kinds, std::string_view operation) noexcept
{
    return run(operation, [handle, kinds](Call&) {
        return handles().remove(handle, kinds) ? VI_SUCCESS : IVICONFIG_ERROR_INVALID_HANDLE;
    });
}

/// Hands out an element of the document; an absent one as a null handle.
IviConfigHandle handOut(const Document& document, const Element* element)
{
    if (element == nullptr)
        return nullptr;
    return handles().add({kindOf(element->name), nullptr, Document(document, element)});
}

/// Hands out what a reference child of the object refers to; null when there is none.
ViStatus getReference(IviConfigHandle handle, Kinds kinds, std::string_view child, IviConfigHandle* target,
                      std::string_view operation) noexcept
{
    return runOn(handle, kinds, operation, [child, target](const Object& object, const Call&) {
        if (target == nullptr)
            return IVI_ERROR_NULL_POINTER;
        *target = handOut(object.element, object.element->reference(child));
        return VI_SUCCESS;
    });
}

ViStatus getText(IviConfigHandle handle, Kinds kinds, ViInt32 propertyId, ViInt32 bufferSize, ViChar* value,
                 std::string_view operation) noexcept
{
    return runOn(handle, kinds, operation, [=](const Object& object, const Call&) {
        if (platform::lacksBuffer(bufferSize, value))
            return IVI_ERROR_NULL_POINTER;
        const PropertyRow* const row = findProperty(object.kind, propertyId, PropertyType::Text);
        return row == nullptr ? IVICONFIG_ERROR_INVALID_PROPERTY_ID
                              : platform::putString(object.element->textOf(row->element), bufferSize, value);
    });
}

ViStatus getFlag(IviConfigHandle handle, Kinds kinds, ViInt32 propertyId, ViBoolean* value,
                 std::string_view operation) noexcept
{
    return runOn(handle, kinds, operation, [=](const Object& object, const Call&) {
        if (value == nullptr)
            return IVI_ERROR_NULL_POINTER;
        const PropertyRow* const row = findProperty(object.kind, propertyId, PropertyType::Flag);
        if (row == nullptr)
            return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
        *value = parseFlag(object.element->textOf(row->element)).value_or(VI_FALSE);
        return VI_SUCCESS;
    });
}

/// A logical name shadows a driver session of the same name, unless it leads to no driver session.
const Element* findDriverSession(const Element& root, std::string_view name)
{
    const Element* const logical = root.itemByName("LogicalNames", "IviLogicalName", name);
    const Element* const referred = logical == nullptr ? nullptr : logical->reference("IviDriverSession");
    return referred != nullptr ? referred : root.itemByName("DriverSessions", "IviDriverSession", name);
}

} // namespace

ViStatus _VI_FUNC IviConfig_Initialize(IviConfigStoreHandle* store)
{
    return run("Initialize", [store](Call&) {
        if (store == nullptr)
            return IVI_ERROR_NULL_POINTER;
        *store = nullptr;
        *store = handles().add({kStore, std::make_shared<Store>(), nullptr});
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_Close(IviConfigStoreHandle store)
{
    return release(store, kStore, "Close");
}

ViStatus _VI_FUNC IviConfig_DisposeHandle(IviConfigHandle handle)
{
    return release(handle, kAnyObject, "DisposeHandle");
}

ViStatus _VI_FUNC IviConfig_ClearError(void)
{
    return IviSession_ClearError(VI_NULL);
}

ViStatus _VI_FUNC IviConfig_GetError(ViInt32 bufferSize, ViChar errorDescription[])
{
    return IviSession_GetError(VI_NULL, bufferSize, nullptr, errorDescription);
}

ViStatus _VI_FUNC IviConfig_Deserialize(IviConfigStoreHandle store, ViConstString location)
{
    return runOn(store, kStore, "Deserialize", [location](const Object& object, Call& call) {
        if (location == nullptr)
            return IVI_ERROR_NULL_POINTER;
        call.item = location;
        return object.store->deserialize(call.item);
    });
}

ViStatus _VI_FUNC IviConfig_GetConfigStorePropertyViString(IviConfigStoreHandle store, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return runOn(store, kStore, "GetConfigStorePropertyViString", [=](const Object& object, const Call&) {
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
    if (driverSession != nullptr)
        *driverSession = nullptr;
    return runOn(store, kStore, "GetDriverSession", [name, driverSession](const Object& object, Call& call) {
        if (name == nullptr || driverSession == nullptr)
            return IVI_ERROR_NULL_POINTER;
        call.item = name;
        const Document document = object.store->document();
        *driverSession = handOut(document, findDriverSession(*document, name));
        return *driverSession == nullptr ? IVICONFIG_ERROR_SESSION_NOT_FOUND : VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_GetSessionHardwareAssetReference(IviSessionHandle session,
                                                             IviHardwareAssetHandle* hardwareAsset)
{
    return getReference(session, kAnySession, "IviHardwareAsset", hardwareAsset, "GetSessionHardwareAssetReference");
}

ViStatus _VI_FUNC IviConfig_GetHardwareAssetPropertyViString(IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return getText(hardwareAsset, kHardwareAsset, propertyID, bufferSize, value, "GetHardwareAssetPropertyViString");
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViBoolean(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return getFlag(driverSession, kDriverSession, propertyID, value, "GetDriverSessionPropertyViBoolean");
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViString(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return getText(driverSession, kDriverSession, propertyID, bufferSize, value, "GetDriverSessionPropertyViString");
}
