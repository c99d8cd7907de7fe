#pragma once

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

#include <cstddef>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Stand-ins, at link time, of the C functions that the driver calls: VISA, the IVI session service and the IVI
/// configuration server. They write down every call in one log, answer from what a test has prepared, and fail where a
/// test wants them to. Any thread may call them; tests prepare and inspect while no other thread does.
namespace kvxtest
{

/// The status whose bit pattern is `bits`, as the standards write codes.
constexpr ViStatus code(ViUInt32 bits)
{
    return static_cast<ViStatus>(bits);
}

/// A data component of the fake configuration store.
struct StoredDataComponent
{
    std::string name;
    /// The word for its type, which need not fit the value.
    std::string type;
    /// Nothing for a structure.
    std::variant<std::monostate, std::string, ViInt32, ViReal64, ViBoolean> value;
    /// What a structure consists of.
    std::vector<StoredDataComponent> components;
};

// Data components with the words that the configuration server uses for their types.
StoredDataComponent stringComponent(std::string name, std::string value);
StoredDataComponent integerComponent(std::string name, ViInt32 value);
StoredDataComponent realComponent(std::string name, ViReal64 value);
StoredDataComponent booleanComponent(std::string name, ViBoolean value);
StoredDataComponent structureComponent(std::string name, std::vector<StoredDataComponent> components);

/// What a component of the fake configuration store has apart from its own properties.
struct StoredComponent
{
    std::vector<StoredDataComponent> dataComponents;

    /// The contents of the structure "Configurable Initial Settings", which comes to be when there is none.
    std::vector<StoredDataComponent>& settings();
};

struct StoredPhysicalName
{
    std::string name;
    std::string repeatedCapability = "OutputChannel";
};

struct StoredSoftwareModule : StoredComponent
{
    std::string name = "KVX2800T";
    std::vector<StoredPhysicalName> physicalNames;
};

struct StoredVirtualRange
{
    ViInt32 minimum = 0;
    ViInt32 maximum = 0;
    ViInt32 startingPhysicalIndex = 0;
};

struct StoredVirtualName
{
    std::string name;
    std::string mapTo;
    std::vector<StoredVirtualRange> ranges;
};

/// A driver session of the fake configuration store, and what it refers to.
struct StoredDriverSession : StoredComponent
{
    std::string name = "KVX2800T";
    ViBoolean cache = VI_FALSE;
    ViBoolean interchangeCheck = VI_FALSE;
    ViBoolean queryInstrumentStatus = VI_FALSE;
    ViBoolean rangeCheck = VI_FALSE;
    ViBoolean recordCoercions = VI_FALSE;
    ViBoolean simulate = VI_FALSE;
    std::string driverSetup;
    /// The I/O resource descriptor of its hardware asset; nothing when the session has no asset.
    std::optional<std::string> ioResourceDescriptor;
    std::vector<StoredVirtualName> virtualNames;
    /// The name of its software module; nothing when it refers to none.
    std::optional<std::string> softwareModule;
};

/// The fake configuration store.
struct ConfigurationStore
{
    std::string processDefaultLocation = "/store/process.xml";
    std::string masterLocation = "/store/master.xml";
    /// The entry of the driver itself.
    std::optional<StoredDriverSession> driverSession;
    std::vector<StoredDriverSession> furtherSessions;
    /// Logical names, and the names of the driver sessions they stand for; they hide driver sessions of the same name.
    std::map<std::string, std::string, std::less<>> logicalNames;
    std::vector<StoredSoftwareModule> softwareModules;
};

/// A status and its text, as the session service keeps them.
struct ErrorEntry
{
    ViStatus code = VI_SUCCESS;
    std::string text;

    bool operator==(const ErrorEntry&) const = default;
};

/// How GoogleTest shows an entry.
void PrintTo(const ErrorEntry& entry, std::ostream* stream);

/// Everything as it is when the process starts: no session, no reply, no failure, an empty store, an empty log. Handles
/// start over as well: VISA sessions count from 1, IVI sessions from 1001.
void reset();

// The log. A call reads `viOpen(1, "TCPIP0::h::1::SOCKET", 0, 2000)`: its arguments without the outputs; attributes and
// buffers by their names, other numbers in decimal, bytes quoted with \n, \r, \\, \" and \xHH, null as null. Handles of
// the configuration server are written by their kind (store, driverSession, hardwareAsset, dataComponents, ...); those
// of named things have the name behind it (virtualName[Core]), and so have driver sessions and their assets apart from
// the driver's own entry (driverSession[BenchSupply], hardwareAsset[BenchSupply]).

/// Every call since the start or clearLog(), those that fail included.
std::vector<std::string> calls();
/// The calls of functions whose name begins with `prefix`: "vi", "IviSession_", "IviConfig_".
std::vector<std::string> calls(std::string_view prefix);
/// The bytes of each viWrite.
std::vector<std::string> written();
void clearLog();

// What viRead gives: queued replies in order; when there is none, the answer to the command that was written last; when
// there is none either, VI_ERROR_TMO. A reply that is longer than the buffer comes in pieces, all but the last with
// VI_SUCCESS_MAX_CNT.

/// Queues one reply: exactly these bytes, and the status behind the last of them. A negative status may come with
/// bytes.
void queueReply(std::string bytes, ViStatus status = VI_SUCCESS_TERM_CHAR);
/// Answers `command`, as often as it is written, with `reply`; both without the line feed.
void answer(std::string_view command, std::string_view reply);

// Failures. A call that is to fail is logged and does nothing but return the status (sessions and handles that it would
// have opened come back as garbage, and a function of the configuration server leaves the text "<function> failed" in
// the thread's error record). A status that is not negative is returned by a call that does its work.

/// The n-th call from now on, counted from 1, whatever its function.
void failNthCall(std::size_t n, ViStatus status);
/// The n-th call of one function from now on.
void failNthCallOf(std::string_view function, std::size_t n, ViStatus status);
/// Every further call of one function.
void failCall(std::string_view function, ViStatus status);
/// Whether the call of failNthCall() or failNthCallOf() has come.
bool failureHappened();
void clearFailures();

// What is alive.

std::size_t openVisaSessions();
std::size_t openIviSessions();
/// Handles of the configuration server of every kind, the store's included.
std::size_t openConfigHandles();
/// How often the session's lock is held; 0 for an unknown session.
std::size_t lockDepth(ViSession session);

/// The error record of a session or, for VI_NULL, of the calling thread; reading leaves it in place.
ErrorEntry errorOf(ViSession session);
/// Forgets the calling thread's error record.
void clearThreadError();

/// The store that IviConfig_Deserialize loads, to be changed in place; what is loaded stays as it was.
ConfigurationStore& configurationStore();

} // namespace kvxtest
