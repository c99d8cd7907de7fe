#include "tools/store/driver_module.h"

#include "tools/store/element_rules.h"
#include "tools/store/entry_texts.h"
#include "tools/store/plain_text.h"
#include "tools/store/store_error.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace store_tool
{
namespace
{

constexpr std::string_view kModuleReference = "IviSoftwareModuleRef";
constexpr std::string_view kModuleName = "SoftwareModuleName";

const XmlElement* findDriverModule(const StoreText& store)
{
    return findNamed(store.root(), "SoftwareModules", "IviSoftwareModule", kDriverModule);
}

std::string idOfApi(StoreText& store, IdSource& ids, const PublishedApi& api)
{
    for (const XmlElement& item : store.root().itemsOf("PublishedAPIs")) {
        if (isApi(item, api))
            return soleIdOf(store, item);
    }
    std::string id = ids.next();
    store.append("PublishedAPIs", [&](ElementWriter& writer) { writeApi(writer, id, api); });
    return id;
}

using SessionTest = std::function<bool(const XmlElement&)>;

/// The first session of any kind for which the test holds; null when there is none.
const XmlElement* findAnySession(const StoreText& store, const SessionTest& isMeant)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 2> kKinds{
        {{"DriverSessions", "IviDriverSession"}, {"Sessions", "IviSession"}}};
    for (const auto& [collection, element] : kKinds) {
        for (const XmlElement& item : store.root().itemsOf(collection)) {
            if (item.name == element && isMeant(item))
                return &item;
        }
    }
    return nullptr;
}

/// The child behind which the file format has a child of that name.
const XmlElement& neighbourOf(const XmlElement& session, std::string_view child)
{
    const XmlElement* neighbour = nullptr;
    for (const ChildRule& rule : rulesFor(session.name)) {
        if (rule.element == child)
            break;
        if (const XmlElement* const present = session.child(rule.element))
            neighbour = present;
    }
    if (neighbour == nullptr)
        throw StoreError("a session of the software module " + inQuotes(kDriverModule) + " has no name");
    return *neighbour;
}

void writeModule(StoreText& store, IdSource& ids, const std::string& id)
{
    std::vector<std::string> apis;
    apis.reserve(kDriverApis.size());
    for (const PublishedApi& api : kDriverApis)
        apis.push_back(idOfApi(store, ids, api));
    store.append("SoftwareModules", [&](ElementWriter& writer) { writeDriverModule(writer, ids, id, apis); });
}

void connectSessions(StoreText& store, const std::string& moduleId, Deeds& deeds)
{
    const SessionTest remembersDriver = [](const XmlElement& session) {
        return session.child(kModuleReference) == nullptr && session.textOf(kModuleName) == kDriverModule;
    };
    while (const XmlElement* const session = findAnySession(store, remembersDriver)) {
        deeds.push_back("connected session " + inQuotes(session->textOf("Name")) + " with it");
        store.insertBehind(neighbourOf(*session, kModuleReference),
                           [&](ElementWriter& writer) { writer.reference(kModuleReference, moduleId); });
    }
}

void rememberModule(StoreText& store, const SessionTest& isMeant)
{
    if (findAnySession(store, isMeant)->textOf(kModuleName) == kDriverModule)
        return;
    if (const XmlElement* const other = findAnySession(store, isMeant)->child(kModuleName))
        store.erase(*other);
    store.insertBehind(neighbourOf(*findAnySession(store, isMeant), kModuleName),
                       [](ElementWriter& writer) { writer.leaf(kModuleName, kDriverModule); });
}

void disconnectSessions(StoreText& store, const std::string& moduleId, Deeds& deeds)
{
    const SessionTest refersToModule = [&moduleId](const XmlElement& session) {
        return session.referenceOf(kModuleReference) == moduleId;
    };
    while (findAnySession(store, refersToModule) != nullptr) {
        rememberModule(store, refersToModule);
        const XmlElement& session = *findAnySession(store, refersToModule);
        deeds.push_back("kept session " + inQuotes(session.textOf("Name")) + ", which remembers it");
        store.erase(*session.child(kModuleReference));
    }
}

void removeModule(StoreText& store, const std::string& id)
{
    store.remove("SoftwareModules", [&id](const XmlElement& item) { return item.id == id; });
}

} // namespace

void addDriverModule(StoreText& store, IdSource& ids, Deeds& deeds)
{
    const std::string id = ids.next();
    writeModule(store, ids, id);
    deeds.push_back("added software module " + inQuotes(kDriverModule));
    connectSessions(store, id, deeds);
}

Deeds registerDriver(StoreText& store)
{
    Deeds deeds;
    const XmlElement* const known = findDriverModule(store);
    if (known == nullptr) {
        IdSource ids(store.root());
        addDriverModule(store, ids, deeds);
        return deeds;
    }
    const std::string id = soleIdOf(store, *known);
    removeModule(store, id);
    IdSource ids(store.root());
    ids.take(id);
    writeModule(store, ids, id);
    deeds.push_back("renewed software module " + inQuotes(kDriverModule));
    connectSessions(store, id, deeds);
    return deeds;
}

Deeds unregisterDriver(StoreText& store)
{
    const XmlElement* const known = findDriverModule(store);
    if (known == nullptr)
        throw StoreError("there is no software module " + inQuotes(kDriverModule));
    const std::string id = soleIdOf(store, *known);
    Deeds deeds{"removed software module " + inQuotes(kDriverModule)};
    removeModule(store, id);
    disconnectSessions(store, id, deeds);
    return deeds;
}

} // namespace store_tool
