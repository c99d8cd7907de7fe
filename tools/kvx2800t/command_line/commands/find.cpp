#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/platform/configuration_store.h"
#include "tools/kvx2800t/command_line/platform/resource_manager.h"
#include "tools/kvx2800t/command_line/status_names.h"

namespace command_line::commands
{
namespace
{

using Rows = std::vector<std::vector<std::string>>;

std::string chapter(const std::string& title, const Rows& rows)
{
    return title + '\n' + (rows.empty() ? "  (none)\n" : columns(rows));
}

std::string shown(const std::string& text)
{
    return text.empty() ? "-" : text;
}

std::string storeTitle(const ConfigurationStore& store)
{
    if (store.status >= VI_SUCCESS)
        return "Driver sessions of " + store.location;
    const std::string file = store.location.empty() ? "" : " of " + store.location;
    return "Driver sessions" + file + ": " + statusText(store.status);
}

Document::Object documentOf(const ConfigurationStore& store)
{
    Document::Array sessions;
    for (const StoredSession& session : store.sessions)
        sessions.emplace_back(Document::Object{{"name", session.name}, {"resource", session.resource}});
    Document::Array names;
    for (const StoredName& name : store.names)
        names.emplace_back(Document::Object{{"name", name.name}, {"session", name.session}});
    Document::Object members = {{"store", store.location}};
    if (store.status < VI_SUCCESS)
        members.emplace_back("storeStatus", statusText(store.status));
    members.emplace_back("driverSessions", std::move(sessions));
    members.emplace_back("logicalNames", std::move(names));
    return members;
}

std::string textOf(const ConfigurationStore& store)
{
    Rows sessions;
    for (const StoredSession& session : store.sessions)
        sessions.push_back({"  " + session.name, shown(session.resource)});
    Rows names;
    for (const StoredName& name : store.names)
        names.push_back({"  " + name.name, shown(name.session)});
    return chapter(storeTitle(store), sessions) + chapter("Logical names", names);
}

} // namespace

void find(const Arguments& /*arguments*/, Console& console)
{
    std::vector<std::string> resources;
    ViStatus status = VI_SUCCESS;
    {
        Progress progress(console);
        progress.show("Searching ...");
        const ResourceManager visa;
        status = visa.status() < VI_SUCCESS ? visa.status() : visa.find(resources);
    }
    const ConfigurationStore store = readConfigurationStore();

    Rows rows;
    Document::Array items;
    for (const std::string& resource : resources) {
        rows.push_back({"  " + resource});
        items.emplace_back(resource);
    }
    Document::Object members = {{"resources", std::move(items)}};
    for (const auto& member : documentOf(store))
        members.push_back(member);
    show(console, members, chapter("VISA resources", rows) + textOf(store));
    if (status < VI_SUCCESS)
        throw Failure(ExitCode::Configuration, status, "VISA cannot be asked for resources");
}

} // namespace command_line::commands
