#include "tools/kvx2800t/command_line/platform/configuration_store.h"

#include "tools/kvx2800t/command_line/platform/functions.h"

#include <IviConfigServer.h>

#include <algorithm>
#include <cstring>

namespace command_line
{
namespace
{

constexpr auto kNoServer = static_cast<ViStatus>(0xBFFF009EUL);

// The shapes of the server's functions that are used here.
using Getter = ViStatus(_VI_FUNC*)(IviConfigHandle owner, IviConfigHandle* object);
using CountGetter = ViStatus(_VI_FUNC*)(IviConfigHandle collection, ViInt32* count);
using ItemGetter = ViStatus(_VI_FUNC*)(IviConfigHandle collection, ViInt32 index, IviConfigHandle* item);
using TextGetter = ViStatus(_VI_FUNC*)(IviConfigHandle object, ViInt32 property, ViInt32 size, ViChar text[]);
using Releaser = ViStatus(_VI_FUNC*)(IviConfigHandle object);
using Opener = ViStatus(_VI_FUNC*)(IviConfigHandle* store);
using Loader = ViStatus(_VI_FUNC*)(IviConfigHandle store, ViConstString location);

template <class Function>
Function functionOf(const char* name)
{
    return reinterpret_cast<Function>(platformFunction(Library::ConfigServer, name));
}

/// Calls a function of the server that may not be there.
template <class Function, class... Arguments>
ViStatus callServer(const char* name, Arguments... arguments)
{
    const auto function = functionOf<Function>(name);
    return function == nullptr ? kNoServer : function(arguments...);
}

/// An object of the server, given back at the end; null when it could not be had.
class Object
{
public:
    Object() = default;
    ~Object()
    {
        if (handle_ != nullptr)
            callServer<Releaser>("IviConfig_DisposeHandle", handle_);
    }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    template <class Function, class... Arguments>
    ViStatus obtain(const char* name, Arguments... arguments)
    {
        const ViStatus status = callServer<Function>(name, arguments..., &handle_);
        if (status < VI_SUCCESS)
            handle_ = nullptr;
        return status;
    }

    IviConfigHandle get() const { return handle_; }

private:
    IviConfigHandle handle_ = nullptr;
};

/// A text property; empty when it cannot be read. A positive status is the size that a longer text needs.
std::string textOf(const char* getter, IviConfigHandle object, ViInt32 property)
{
    std::string text(1024, '\0');
    ViStatus status = callServer<TextGetter>(getter, object, property, static_cast<ViInt32>(text.size()), text.data());
    constexpr ViStatus kLargest = 65536;
    if (status > static_cast<ViStatus>(text.size())) {
        text.assign(static_cast<std::size_t>(std::min(status, kLargest)), '\0');
        status = callServer<TextGetter>(getter, object, property, static_cast<ViInt32>(text.size()), text.data());
    }
    text.resize(status < VI_SUCCESS ? 0 : std::strlen(text.c_str()));
    return text;
}

/// The names of the server's functions for a collection.
struct CollectionNames
{
    const char* collection;
    const char* count;
    const char* item;
};

constexpr CollectionNames kDriverSessions = {"IviConfig_GetConfigStoreDriverSessionCollection",
                                             "IviConfig_GetDriverSessionCount",
                                             "IviConfig_GetDriverSessionItemByIndex"};
constexpr CollectionNames kLogicalNames = {"IviConfig_GetConfigStoreLogicalNameCollection",
                                           "IviConfig_GetLogicalNameCount", "IviConfig_GetLogicalNameItemByIndex"};

/// Runs `body` on each item of a collection of the store.
template <class Body>
ViStatus forEachItem(const CollectionNames& names, IviConfigHandle store, Body body)
{
    Object collection;
    ViInt32 count = 0;
    ViStatus status = collection.obtain<Getter>(names.collection, store);
    if (status >= VI_SUCCESS)
        status = callServer<CountGetter>(names.count, collection.get(), &count);
    for (ViInt32 index = 1; status >= VI_SUCCESS && index <= count; ++index) {
        Object item;
        status = item.obtain<ItemGetter>(names.item, collection.get(), index);
        if (status >= VI_SUCCESS)
            body(item.get());
    }
    return status;
}

StoredSession sessionFrom(IviConfigHandle session)
{
    constexpr auto kText = "IviConfig_GetDriverSessionPropertyViString";
    StoredSession stored = {textOf(kText, session, IVICONFIG_VAL_CONFIG_COMPONENT_NAME), "",
                            textOf(kText, session, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP)};
    Object asset;
    if (asset.obtain<Getter>("IviConfig_GetSessionHardwareAssetReference", session) >= VI_SUCCESS &&
        asset.get() != nullptr)
        stored.resource = textOf("IviConfig_GetHardwareAssetPropertyViString", asset.get(),
                                 IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR);
    return stored;
}

StoredName nameFrom(IviConfigHandle logicalName)
{
    StoredName stored = {
        textOf("IviConfig_GetLogicalNamePropertyViString", logicalName, IVICONFIG_VAL_LOGICAL_NAME_NAME), ""};
    Object session;
    if (session.obtain<Getter>("IviConfig_GetLogicalNameSessionReference", logicalName) < VI_SUCCESS ||
        session.get() == nullptr)
        return stored;
    stored.session =
        textOf("IviConfig_GetDriverSessionPropertyViString", session.get(), IVICONFIG_VAL_CONFIG_COMPONENT_NAME);
    stored.leadsToDriver = !stored.session.empty();
    if (!stored.leadsToDriver)
        stored.session =
            textOf("IviConfig_GetSessionPropertyViString", session.get(), IVICONFIG_VAL_CONFIG_COMPONENT_NAME);
    return stored;
}

/// The file that the driver would load: that of the process or, without one, the master store.
std::string locationOf(IviConfigHandle store)
{
    constexpr auto kText = "IviConfig_GetConfigStorePropertyViString";
    std::string location = textOf(kText, store, IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION);
    return location.empty() ? textOf(kText, store, IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION) : location;
}

void readInto(ConfigurationStore& contents, IviConfigHandle store)
{
    contents.location = locationOf(store);
    contents.status = contents.location.empty()
                          ? IVICONFIG_ERROR_MASTER_NOT_FOUND
                          : callServer<Loader>("IviConfig_Deserialize", store, contents.location.c_str());
    if (contents.status >= VI_SUCCESS)
        contents.status = forEachItem(kDriverSessions, store, [&contents](IviConfigHandle session) {
            contents.sessions.push_back(sessionFrom(session));
        });
    if (contents.status >= VI_SUCCESS)
        contents.status = forEachItem(kLogicalNames, store,
                                      [&contents](IviConfigHandle name) { contents.names.push_back(nameFrom(name)); });
}

} // namespace

const StoredSession* ConfigurationStore::sessionOf(const std::string& name) const
{
    const auto logical = std::find_if(names.begin(), names.end(), [&name](const StoredName& known) {
        return known.leadsToDriver && known.name == name;
    });
    const std::string& wanted = logical == names.end() ? name : logical->session;
    const auto session = std::find_if(sessions.begin(), sessions.end(),
                                      [&wanted](const StoredSession& known) { return known.name == wanted; });
    return session == sessions.end() ? nullptr : &*session;
}

ConfigurationStore readConfigurationStore()
{
    ConfigurationStore contents;
    IviConfigHandle store = nullptr;
    contents.status = callServer<Opener>("IviConfig_Initialize", &store);
    if (contents.status < VI_SUCCESS)
        return contents;
    readInto(contents, store);
    callServer<Releaser>("IviConfig_Close", store);
    // The server records its failures for the thread, where the driver would read them as its own.
    if (const auto clear = functionOf<ViStatus(_VI_FUNC*)()>("IviConfig_ClearError"))
        clear();
    return contents;
}

} // namespace command_line
