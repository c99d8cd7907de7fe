#include "tools/store/tool.h"

#include "platform/config_server/locations.h"
#include "tools/store/command_line.h"
#include "tools/store/driver_module.h"
#include "tools/store/exit_codes.h"
#include "tools/store/plain_text.h"
#include "tools/store/store_access.h"
#include "tools/store/store_check.h"
#include "tools/store/store_edit.h"
#include "tools/store/store_error.h"
#include "tools/store/store_listing.h"

#include <exception>
#include <ostream>

namespace store_tool
{
namespace
{

/// What a buffer of IVI's size for paths holds beside the terminator.
constexpr std::size_t kLongestPath = 259;

std::string reasonOf(ViStatus status)
{
    return status == IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT ? " names different stores for programs of 32 and 64 bits"
                                                              : " names a file that is missing";
}

/// A driver belongs to the machine, whatever store a process has chosen for itself.
bool isForMasterStore(Command command)
{
    return command == Command::Register || command == Command::Unregister;
}

/// The given path, or that of the store which the configuration server would load in this environment, or would load
/// once it is made.
std::string pathOf(const Request& request)
{
    if (request.store)
        return *request.store;
    std::string chosen = isForMasterStore(request.command) ? std::string() : config_server::processDefaultLocation();
    if (!chosen.empty())
        return chosen;
    auto master = request.creates ? config_server::locationForNewStore() : config_server::masterLocation();
    if (master.status < 0)
        throw StoreError(std::string(master.namedBy) + reasonOf(master.status));
    return std::move(master.path);
}

/// Says which file a complaint about its text is about.
StoreText readText(const std::string& path, const std::string& text)
{
    try {
        return StoreText(text);
    } catch (const StoreError& error) {
        throw StoreError(path + ": " + error.what(), error.remedy());
    }
}

StoreText load(const std::string& path)
{
    return readText(path, readStoreFile(path));
}

std::string located(const std::string& path, const Finding& finding)
{
    return printable(path) + ":" + std::to_string(finding.line) + ": " + finding.place + ": " + finding.text;
}

int runList(const std::string& path, std::ostream& out)
{
    const StoreText store = load(path);
    out << "store " << printable(path) << '\n' << listing(store);
    return kSuccess;
}

int runCheck(const std::string& path, std::ostream& out)
{
    const auto findings = check(load(path));
    const std::size_t size = absolutePath(path).size();
    const bool isLong = size > kLongestPath;
    if (isLong)
        out << printable(path) << ": the path has " << size << " characters, of which many drivers read "
            << kLongestPath << '\n';
    for (const Finding& finding : findings)
        out << located(path, finding) << '\n';
    if (findings.empty() && !isLong)
        out << printable(path) << ": no findings\n";
    return findings.empty() && !isLong ? kSuccess : kFailure;
}

Deeds edit(StoreText& store, const Request& request)
{
    switch (request.command) {
    case Command::Add:
        return addSession(store, request.entry, request.replaces);
    case Command::RemoveLogicalName:
        return removeLogicalName(store, request.name);
    case Command::Register:
        return registerDriver(store);
    case Command::Unregister:
        return unregisterDriver(store);
    default:
        return removeNamed(store, request.name);
    }
}

/// What is written never breaks the file format where the store did not break it before.
void requireFormat(const std::vector<Finding>& brought)
{
    std::string faults;
    for (const Finding& finding : brought) {
        if (finding.kind == FindingKind::Format)
            faults += "\n  " + finding.place + ": " + finding.text;
    }
    if (!faults.empty())
        throw StoreError("nothing is written, since the store would get faults:" + faults);
}

/// The message with its own line breaks, but none of the control characters that paths and files may have.
void complain(std::ostream& errors, std::string_view message)
{
    errors << "kvx2800t-store: ";
    for (std::size_t end = message.find('\n'); end != std::string_view::npos; end = message.find('\n')) {
        errors << printable(message.substr(0, end)) << '\n';
        message.remove_prefix(end + 1);
    }
    errors << printable(message) << '\n';
}

void warn(std::ostream& errors, const std::string& message)
{
    complain(errors, "warning: " + message);
}

/// Says what has been done. The store is changed by now, so a warning has to do where that cannot be said.
void tell(const std::string& path, const Deeds& deeds, std::uintmax_t otherNames, std::ostream& out,
          std::ostream& errors)
{
    for (const std::string& deed : deeds)
        out << deed << '\n';
    if (otherNames > 0)
        warn(errors, path + " had " + std::to_string(otherNames + 1) +
                         " names (hard links); the others still lead to the old content");
    if (!out.flush())
        warn(errors, path + " is changed, but the output cannot be written");
}

void requireWritten(std::ostream& out)
{
    if (!out.flush())
        throw StoreError("cannot write the output");
}

int runChange(const std::string& path, const Request& request, std::ostream& out, std::ostream& errors)
{
    StoreChange change(path, request.creates ? WhenMissing::Create : WhenMissing::Refuse);
    StoreText store = readText(path, change.text().value_or(emptyStoreText()));
    const auto before = check(store);
    const Deeds deeds = edit(store, request);
    const auto brought = newFindings(before, check(store));
    requireFormat(brought);
    change.replaceBy(store.text());
    tell(path, deeds, change.otherNames(), out, errors);
    for (const Finding& finding : brought)
        warn(errors, finding.place + ": " + finding.text);
    return kSuccess;
}

int run(const Request& request, std::ostream& out, std::ostream& errors)
{
    const std::string path = pathOf(request);
    const bool isList = request.command == Command::List;
    if (!isList && request.command != Command::Check)
        return runChange(path, request, out, errors);
    const int exitCode = isList ? runList(path, out) : runCheck(path, out);
    requireWritten(out);
    return exitCode;
}

} // namespace

int runTool(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& errors)
{
    try {
        const auto commandLine = parseCommandLine(argumentCount, arguments, out, errors);
        if (commandLine.request)
            return run(*commandLine.request, out, errors);
        requireWritten(out);
        return commandLine.exitCode;
    } catch (const StoreError& error) {
        const std::string remedy = error.remedy().empty() ? "" : "\n  " + error.remedy();
        complain(errors, error.what() + remedy);
        return kFailure;
    } catch (const std::exception& error) {
        complain(errors, error.what());
        return kFailure;
    }
}

} // namespace store_tool
