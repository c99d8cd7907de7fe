#include "tools/store/store_edit.h"

#include "tools/store/driver_module.h"
#include "tools/store/entry_texts.h"
#include "tools/store/plain_text.h"
#include "tools/store/store_error.h"

#include <algorithm>
#include <utility>

namespace store_tool
{
namespace
{

bool isNamed(const XmlElement& item, std::string_view element, std::string_view name)
{
    return item.name == element && item.textOf("Name") == name;
}

bool refersTo(const XmlElement& item, std::string_view id)
{
    return std::any_of(item.children.begin(), item.children.end(),
                       [id](const XmlElement& child) { return child.idref == id; });
}

template <class Test>
bool anyElement(const XmlElement& root, Test test)
{
    bool found = false;
    forEach(root, [&found, &test](const XmlElement& element) { found = found || test(element); });
    return found;
}

const XmlElement* findSession(const StoreText& store, std::string_view name)
{
    return findNamed(store.root(), "DriverSessions", "IviDriverSession", name);
}

const XmlElement* findLogicalName(const StoreText& store, std::string_view name)
{
    return findNamed(store.root(), "LogicalNames", "IviLogicalName", name);
}

const XmlElement* findAsset(const StoreText& store, std::string_view name)
{
    return findNamed(store.root(), "HardwareAssets", "IviHardwareAsset", name);
}

/// The asset when only the session refers to it. Nothing without one.
void removeAsset(StoreText& store, const std::string& id, Deeds& deeds)
{
    const bool isInUse = anyElement(store.root(), [&id](const XmlElement& element) { return element.idref == id; });
    std::string name;
    const auto isMeant = [&](const XmlElement& item) {
        if (item.name != "IviHardwareAsset" || item.id != id)
            return false;
        name = item.textOf("Name");
        return true;
    };
    if (!id.empty() && !isInUse && store.remove("HardwareAssets", isMeant) > 0)
        deeds.push_back("removed hardware asset " + inQuotes(name));
}

void removeLogicalNamesOf(StoreText& store, const std::string& sessionId, Deeds& deeds)
{
    store.remove("LogicalNames", [&](const XmlElement& item) {
        const bool isMeant = item.name == "IviLogicalName" && refersTo(item, sessionId);
        if (isMeant)
            deeds.push_back("removed logical name " + inQuotes(item.textOf("Name")));
        return isMeant;
    });
}

/// @return the id of the session's hardware asset; empty without one
std::string removeSession(StoreText& store, const XmlElement& session, Deeds& deeds)
{
    const std::string id = soleIdOf(store, session);
    std::string asset(session.referenceOf("IviHardwareAsset"));
    deeds.push_back("removed driver session " + inQuotes(session.textOf("Name")));
    removeLogicalNamesOf(store, id, deeds);
    store.remove("Sessions", [&id](const XmlElement& item) { return item.idref == id; });
    store.remove("DriverSessions", [&id](const XmlElement& item) { return item.id == id; });
    return asset;
}

Deeds removeLogicalNameIfAny(StoreText& store, const std::string& name)
{
    const auto count =
        store.remove("LogicalNames", [&name](const XmlElement& item) { return isNamed(item, "IviLogicalName", name); });
    return count == 0 ? Deeds{} : Deeds{"removed logical name " + inQuotes(name)};
}

void append(Deeds& deeds, Deeds more)
{
    std::move(more.begin(), more.end(), std::back_inserter(deeds));
}

/// What init finds by the name of the session: a logical name hides a driver session.
std::vector<std::string> namesOf(const SessionEntry& entry)
{
    std::vector<std::string> names = entry.logicalNames;
    names.push_back(entry.name);
    return names;
}

std::string assetNameOf(const SessionEntry& entry)
{
    return entry.asset.value_or(entry.name);
}

/// Adds one session step by step. Pointers into the store do not outlive a step.
class SessionAdder
{
public:
    SessionAdder(StoreText& store, const SessionEntry& entry) : store_(store), entry_(entry), ids_(store.root()) {}

    Deeds add()
    {
        SessionReferences references;
        references.softwareModule = moduleId();
        references.asset = assetId();
        const auto settings = sessionSettings(settingsOf(*findModule()), entry_.settings);
        const std::string id = ids_.next();
        store_.append("DriverSessions", [&](ElementWriter& writer) {
            writeDriverSession(writer, ids_, id, entry_, references, settings);
        });
        store_.append("Sessions", [&](ElementWriter& writer) { writer.reference("IviDriverSession", id); });
        deeds_.push_back("added driver session " + inQuotes(entry_.name));
        addLogicalNames(id);
        return std::move(deeds_);
    }

private:
    const XmlElement* findModule() const
    {
        return findNamed(store_.root(), "SoftwareModules", "IviSoftwareModule", entry_.softwareModule);
    }

    std::string moduleId()
    {
        if (findModule() == nullptr)
            addModule();
        return soleIdOf(store_, *findModule());
    }

    void addModule()
    {
        if (entry_.softwareModule != kDriverModule)
            throw StoreError("there is no software module " + inQuotes(entry_.softwareModule));
        addDriverModule(store_, ids_, deeds_);
    }

    std::string assetId()
    {
        const std::string name = assetNameOf(entry_);
        const XmlElement* const known = findAsset(store_, name);
        if (known != nullptr) {
            requireSameResource(*known);
            return soleIdOf(store_, *known);
        }
        if (!entry_.resource)
            throw StoreError("there is no hardware asset " + inQuotes(name) + ", and no resource to make it with");
        std::string id = ids_.next();
        store_.append("HardwareAssets", [&](ElementWriter& writer) { writeAsset(writer, id, name, *entry_.resource); });
        deeds_.push_back("added hardware asset " + inQuotes(name));
        return id;
    }

    void requireSameResource(const XmlElement& asset) const
    {
        const std::string_view resource = asset.textOf("IOResourceDescriptor");
        if (entry_.resource && *entry_.resource != resource)
            throw StoreError("the hardware asset " + inQuotes(asset.textOf("Name")) + " has the resource " +
                             inQuotes(resource));
    }

    void addLogicalNames(const std::string& sessionId)
    {
        if (entry_.logicalNames.empty())
            return;
        store_.append("LogicalNames", [&](ElementWriter& writer) {
            for (const std::string& name : entry_.logicalNames)
                writeLogicalName(writer, ids_.next(), name, sessionId);
        });
        for (const std::string& name : entry_.logicalNames)
            deeds_.push_back("added logical name " + inQuotes(name));
    }

    StoreText& store_;
    const SessionEntry& entry_;
    IdSource ids_;
    Deeds deeds_;
};

/// True when a new session of this entry uses an asset that has to be there.
bool needsAsset(const StoreText& store, const SessionEntry& entry, const std::string& id)
{
    const XmlElement* const asset = findAsset(store, assetNameOf(entry));
    return !entry.resource && asset != nullptr && asset->id == id;
}

/// Removes what the new session takes the names of. Its hardware asset stays when the new one is to use it.
void removeReplaced(StoreText& store, const SessionEntry& entry, Deeds& deeds)
{
    if (const XmlElement* const session = findSession(store, entry.name)) {
        const std::string asset = removeSession(store, *session, deeds);
        if (!needsAsset(store, entry, asset))
            removeAsset(store, asset, deeds);
    }
    for (const std::string& name : namesOf(entry))
        append(deeds, removeLogicalNameIfAny(store, name));
}

void requireFreeNames(const StoreText& store, const SessionEntry& entry)
{
    if (findSession(store, entry.name) != nullptr)
        throw StoreError("there is a driver session " + inQuotes(entry.name) + " already");
    for (const std::string& name : namesOf(entry)) {
        if (findLogicalName(store, name) != nullptr)
            throw StoreError("there is a logical name " + inQuotes(name) + " already");
    }
}

} // namespace

Deeds addSession(StoreText& store, const SessionEntry& entry, bool replaces)
{
    Deeds deeds;
    if (replaces)
        removeReplaced(store, entry, deeds);
    requireFreeNames(store, entry);
    append(deeds, SessionAdder(store, entry).add());
    return deeds;
}

Deeds removeNamed(StoreText& store, const std::string& name)
{
    const XmlElement* const session = findSession(store, name);
    if (session == nullptr && findLogicalName(store, name) == nullptr)
        throw StoreError("there is no driver session or logical name " + inQuotes(name));
    if (session == nullptr)
        return removeLogicalName(store, name);
    Deeds deeds;
    const std::string asset = removeSession(store, *session, deeds);
    removeAsset(store, asset, deeds);
    return deeds;
}

Deeds removeLogicalName(StoreText& store, const std::string& name)
{
    Deeds deeds = removeLogicalNameIfAny(store, name);
    if (deeds.empty())
        throw StoreError("there is no logical name " + inQuotes(name));
    return deeds;
}

} // namespace store_tool
