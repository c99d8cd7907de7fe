#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/platform/configuration_store.h"
#include "tools/kvx2800t/command_line/platform/host_name.h"
#include "tools/kvx2800t/command_line/platform/resource_manager.h"
#include "tools/kvx2800t/command_line/status_names.h"
#include "tools/kvx2800t/command_line/supply.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace command_line::commands
{
namespace
{

enum class Verdict
{
    Fine,
    Remark, ///< worth knowing; the opening goes on
    Broken
};

/// What a step has found.
struct Finding
{
    Verdict verdict = Verdict::Fine;
    std::string text;
    std::string remedy{}; ///< what to do about it
    ExitCode code = ExitCode::Success;
    ViStatus status = VI_SUCCESS;
};

/// What is examined, and what the steps have found out for those behind them.
struct Patient
{
    std::string resource;
    kvx2800t::Options options;
    std::string descriptor;
    ResourceManager visa;
    std::optional<kvx2800t::Session> supply;
};

/// A step on the way of an opening.
struct Step
{
    const char* name;
    Finding (*examine)(Patient& patient);
};

struct Remedy
{
    ViStatus status;
    const char* text;
};

constexpr auto kRemedies = std::to_array<Remedy>({
    {VI_ERROR_INV_RSRC_NAME,
     "resources look like TCPIP0::192.168.1.20::5025::SOCKET; `kvx2800t find` shows those that VISA finds"},
    {VI_ERROR_RSRC_NFOUND,
     "is the instrument on and connected? Are address and port those of its network settings? Does a firewall let this "
     "program through?"},
    {VI_ERROR_TMO, "is that the instrument's address? Something takes the connection and does not answer"},
    {VI_ERROR_RSRC_BUSY, "end the program that has it open: an instrument may take one connection at a time"},
    {VI_ERROR_RSRC_LOCKED, "end the program that holds a lock on it"},
    {VI_ERROR_NPERMISSION, "let this user open the device: groups dialout (serial lines) and plugdev (USB)"},
    {VI_ERROR_INTF_NUM_NCONFIG, "this VISA has no such interface: use another one, or another VISA"},
    {VI_ERROR_LIBRARY_NFOUND, "use a VISA that has such connections: kvx2800t-visa says which one this is"},
    {VI_ERROR_NSUP_OPER, "this VISA has no such connections: use another VISA"},
});

std::string remedyOf(ViStatus status)
{
    const auto* const row = std::find_if(kRemedies.begin(), kRemedies.end(),
                                         [status](const Remedy& known) { return known.status == status; });
    return row == kRemedies.end() ? "docs/troubleshooting.md tells what is behind the usual texts" : row->text;
}

Finding brokenByVisa(const Patient& patient, ViStatus status, const std::string& doing)
{
    return {Verdict::Broken, doing + ": " + patient.visa.reason(status), remedyOf(status), ExitCode::Unreachable,
            status};
}

Finding brokenByDriver(const kvx2800t::Error& error, const std::string& remedy)
{
    return {Verdict::Broken, error.text(), remedy, exitCodeOf(error.code(), Phase::Opening), error.code()};
}

Finding examineStore(Patient& patient)
{
    patient.descriptor = patient.resource;
    if (patient.resource.find("::") != std::string::npos)
        return {Verdict::Fine, "not needed: the resource is VISA's own name"};
    const ConfigurationStore store = readConfigurationStore();
    const StoredSession* const session = store.sessionOf(patient.resource);
    if (session == nullptr && store.status < VI_SUCCESS)
        return {Verdict::Remark, "none to look in (" + statusText(store.status) + ")"};
    if (session == nullptr)
        return {Verdict::Remark, store.location + " has no session '" + patient.resource + "'"};
    if (session->resource.empty())
        return {Verdict::Broken, "session '" + session->name + "' of " + store.location + " has no resource",
                "give it one: kvx2800t-store add " + session->name + " --replace --resource RESOURCE",
                ExitCode::Configuration};
    patient.descriptor = session->resource;
    return {Verdict::Fine, store.location + ": session '" + session->name + "' is at " + session->resource};
}

/// A simulated opening reads the store and the options as a real one does, and contacts nobody.
Finding examineOptions(Patient& patient)
{
    kvx2800t::Options simulated = patient.options;
    simulated.simulate = true;
    try {
        const kvx2800t::Session session(patient.resource, simulated);
    } catch (const kvx2800t::Error& error) {
        return brokenByDriver(error, "mend what the text names, in the configuration store or in the installation");
    }
    return {Verdict::Fine, patient.options.text()};
}

Finding examineVisa(Patient& patient)
{
    if (patient.visa.status() < VI_SUCCESS)
        return {Verdict::Broken, "there is no VISA, or it does not start",
                "install a VISA where the driver looks: docs/installation.md", ExitCode::Configuration,
                patient.visa.status()};
    return {Verdict::Fine, patient.visa.manufacturer() + ", " + ResourceManager::file()};
}

Finding examineName(Patient& patient)
{
    const ViStatus status = patient.visa.parse(patient.descriptor);
    if (status < VI_SUCCESS)
        return brokenByVisa(patient, status, "VISA does not know '" + patient.descriptor + "'");
    return {Verdict::Fine, patient.descriptor};
}

bool isNetworkConnection(std::string_view descriptor)
{
    constexpr std::string_view kInterface = "tcpip";
    // Not std::tolower, which asks the locale.
    return descriptor.size() > kInterface.size() &&
           std::equal(kInterface.begin(), kInterface.end(), descriptor.begin(),
                      [](char letter, char c) { return c == letter || c == letter - 'a' + 'A'; });
}

/// The host of "TCPIP0::host::...", without the brackets of an IPv6 address; empty for other connections.
std::string hostOf(const std::string& descriptor)
{
    std::size_t begin = descriptor.find("::");
    if (begin == std::string::npos || !isNetworkConnection(descriptor))
        return "";
    begin += 2;
    if (descriptor[begin] == '[')
        return descriptor.substr(begin + 1, descriptor.find(']', begin) - begin - 1);
    return descriptor.substr(begin, descriptor.find("::", begin) - begin);
}

Finding examineHost(Patient& patient)
{
    const std::string host = hostOf(patient.descriptor);
    if (host.empty())
        return {Verdict::Fine, "not needed: no network connection"};
    const Resolution resolution = resolveHost(host);
    if (resolution.addresses.empty())
        return {Verdict::Broken, "the host '" + host + "' is not known: " + resolution.reason,
                "is it spelled as the instrument shows it? Try its address in numbers", ExitCode::Unreachable};
    std::string text = host;
    for (const std::string& address : resolution.addresses)
        if (address != host)
            text += " " + address;
    return {Verdict::Fine, text};
}

Finding examineConnection(Patient& patient)
{
    const auto timeout = patient.options.openTimeout.value_or(std::chrono::seconds(2));
    const ViStatus status = patient.visa.tryToOpen(patient.descriptor, timeout);
    if (status < VI_SUCCESS)
        return brokenByVisa(patient, status, "VISA cannot open " + patient.descriptor);
    return {Verdict::Fine, "something takes connections there"};
}

std::string identityOf(const kvx2800t::Session& supply)
{
    namespace attribute = kvx2800t::attribute;
    return supply.get(attribute::instrumentManufacturer) + ' ' + supply.get(attribute::instrumentModel) +
           ", firmware " + supply.get(attribute::instrumentFirmwareRevision);
}

/// What answers in the place of the instrument; empty when it does not say.
std::string strangerAt(const Patient& patient)
{
    try {
        return identityOf(kvx2800t::Session(patient.resource, patient.options));
    } catch (const kvx2800t::Error&) {
        return "";
    }
}

Finding examineIdentity(Patient& patient)
{
    kvx2800t::Options checked = patient.options;
    checked.idQuery = true;
    try {
        patient.supply.emplace(patient.resource, checked);
    } catch (const kvx2800t::Error& error) {
        if (exitCodeOf(error.code(), Phase::Opening) != ExitCode::WrongInstrument)
            return brokenByDriver(error, "does the instrument speak SCPI at that port? Switch it off and on again");
        Finding finding = brokenByDriver(error, "this driver is for the KVX2833T: is it the right address?");
        if (const std::string stranger = strangerAt(patient); !stranger.empty())
            finding.text += " It is " + stranger;
        return finding;
    }
    return {Verdict::Fine, identityOf(*patient.supply)};
}

Finding examineStatus(Patient& patient)
{
    const kvx2800t::EventStatus events = patient.supply->eventStatus();
    const bool hasErrors =
        events.queryError() || events.deviceError() || events.executionError() || events.commandError();
    return {hasErrors ? Verdict::Remark : Verdict::Fine,
            std::string(hasErrors ? "errors were noted" : "no errors were noted") + ", event status " +
                std::to_string(events.bits)};
}

Finding examineErrors(Patient& patient)
{
    const auto errors = takeErrors(*patient.supply);
    if (errors.empty())
        return {Verdict::Fine, "empty"};
    std::string text;
    for (const auto& error : errors)
        text += (text.empty() ? "" : "; ") + errorText(error);
    return {Verdict::Remark, text};
}

constexpr auto kSteps = std::to_array<Step>({
    {"store", examineStore},
    {"options", examineOptions},
    {"VISA", examineVisa},
    {"resource", examineName},
    {"host", examineHost},
    {"connection", examineConnection},
    {"identity", examineIdentity},
    {"status", examineStatus},
    {"error queue", examineErrors},
});

const char* wordOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Fine:
        return "ok";
    case Verdict::Remark:
        return "note";
    default:
        return "BROKEN";
    }
}

/// The driver throws where an exchange fails that no step expects to.
Finding examine(const Step& step, Patient& patient)
{
    try {
        return step.examine(patient);
    } catch (const kvx2800t::Error& error) {
        Finding finding = brokenByDriver(error, "switch the instrument off and on again");
        finding.code = exitCodeOf(error.code(), Phase::Working);
        return finding;
    }
}

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

void tell(Console& console, const Step& step, const Finding& finding)
{
    Document::Object members = {{"step", step.name}, {"verdict", wordOf(finding.verdict)}, {"text", finding.text}};
    std::string text = padded(wordOf(finding.verdict), 8) + padded(step.name, 13) + finding.text;
    if (!finding.remedy.empty()) {
        members.emplace_back("remedy", finding.remedy);
        text += "\n        what to do:  " + finding.remedy;
    }
    showLine(console, members, text);
}

} // namespace

void doctor(const Arguments& arguments, Console& console)
{
    Patient patient{resourceOf(arguments), driverOptions(arguments), "", {}, {}};
    for (const Step& step : kSteps) {
        const Finding finding = examine(step, patient);
        tell(console, step, finding);
        if (finding.verdict != Verdict::Broken)
            continue;
        if (finding.status != VI_SUCCESS)
            throw Failure(finding.code, finding.status, finding.text);
        throw Failure(finding.code, finding.text);
    }
}

} // namespace command_line::commands
