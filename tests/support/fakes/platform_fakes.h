#pragma once

#include "tests/support/fakes/platform_contents.h"

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
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

// Data components with the words that the configuration server uses for their types.
StoredDataComponent stringComponent(std::string name, std::string value);
StoredDataComponent integerComponent(std::string name, ViInt32 value);
StoredDataComponent realComponent(std::string name, ViReal64 value);
StoredDataComponent booleanComponent(std::string name, ViBoolean value);
StoredDataComponent structureComponent(std::string name, std::vector<StoredDataComponent> components);

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
/// From now on viRead tells of this many bytes more than it has stored.
void claimBytes(ViUInt32 excess);
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
/// The n-th call from now on succeeds; if it is one that gives a handle of the configuration server, that is null.
void giveNullAtNthCall(std::size_t n);
/// The n-th call from now on says that it has succeeded and gives garbage: handles of nothing, counts beyond every
/// buffer, texts without a NUL, numbers that nobody has stored, null for the data of a session.
void giveGarbageAtNthCall(std::size_t n);
/// The n-th call from now on is out of time. A message is written all the same, and a reply is there for the next read.
void delayNthCall(std::size_t n);
/// Every further call of one function succeeds with a null handle.
void giveNull(std::string_view function);
/// From now on a text of the configuration server that does not fit fills the whole buffer, and no NUL ends it.
void fillBuffersWithoutNul();
/// The n-th call of IviSession_GetDataPtr from now on succeeds and gives null.
void giveNullDataPtr(std::size_t n);
/// Whether the call of failNthCall(), failNthCallOf() or giveNullAtNthCall() has come.
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
