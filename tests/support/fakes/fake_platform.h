#pragma once

#include "tests/support/fakes/platform_contents.h"

#include <IviCShared.h>
#include <visa.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

/// What the fakes of the platform share: their state, the log, the planned failures and the error records. Tests use
/// platform_fakes.h.
namespace kvxtest
{

inline constexpr ViSession kFirstVisaSession = 1;
inline constexpr ViSession kFirstIviSession = 1001;

struct Reply
{
    std::string bytes;
    ViStatus status = VI_SUCCESS_TERM_CHAR;
};

struct VisaSession
{
    /// The session it was opened from; VI_NULL for a resource manager's.
    ViSession manager = VI_NULL;
    std::string lastCommand;
    /// What a read has left of a reply, and the status behind its last piece.
    Reply rest;
};

struct IviSession
{
    ViAddr data = nullptr;
    ErrorEntry error;
    std::thread::id owner;
    std::size_t depth = 0;
};

// The kinds of handle of the configuration server that point to nothing of the store's own.
struct StoreRoot
{
};
struct HardwareAsset
{
    const StoredDriverSession* owner;
};

/// What a handle of the configuration server points to; the alternative is the handle's kind.
using ConfigData = std::variant<
    StoreRoot, HardwareAsset, const StoredDriverSession*, const StoredSoftwareModule*,
    const std::vector<StoredSoftwareModule>*, const StoredPhysicalName*, const std::vector<StoredPhysicalName>*,
    const StoredVirtualName*, const std::vector<StoredVirtualName>*, const StoredVirtualRange*,
    const std::vector<StoredVirtualRange>*, const StoredDataComponent*, const std::vector<StoredDataComponent>*>;

struct ConfigObject
{
    /// The store as it was when it was loaded, which `data` points into; null before.
    std::shared_ptr<const ConfigurationStore> loaded;
    ConfigData data;
};

struct Failure
{
    /// Empty: every function.
    std::string function;
    /// 0: every call.
    std::size_t callsToGo = 0;
    ViStatus status = VI_SUCCESS;
    Lie lie = Lie::None;
};

/// Everything that the fakes know. One lock over all of it.
struct Platform
{
    std::mutex mutex;
    std::condition_variable lockReleased;

    std::vector<std::string> log;
    std::vector<std::string> written;
    std::vector<Failure> failures;
    bool failureHappened = false;
    /// What the call at work does with its outputs.
    Lie lie = Lie::None;
    /// The calls of IviSession_GetDataPtr up to the one that gives null; 0: none does.
    std::size_t callsToNullDataPtr = 0;

    std::map<ViSession, VisaSession> visaSessions;
    ViSession nextVisaSession = kFirstVisaSession;
    std::deque<Reply> replies;
    /// Bytes that viRead tells of beside those that it has stored.
    ViUInt32 claimedBytes = 0;
    std::map<std::string, std::string, std::less<>> answers;

    std::map<ViSession, IviSession> iviSessions;
    ViSession nextIviSession = kFirstIviSession;
    std::map<std::thread::id, ErrorEntry> threadErrors;

    std::vector<std::unique_ptr<ConfigObject>> configObjects;
    ConfigurationStore store;
    bool leavesOutNul = false;
};

Platform& platform();

template <class Action>
auto locked(Action action)
{
    const std::lock_guard guard(platform().mutex);
    return action(platform());
}

// Texts of the log

/// A text in quotes, to be written to the log.
struct Quoted
{
    std::string_view text;
};

std::string quoted(std::string_view bytes);
std::ostream& operator<<(std::ostream& stream, Quoted value);
std::string textArgument(ViConstString text);
std::string hexArgument(ViUInt32 number);

/// "name(a, b)"
template <class... Arguments>
std::string callText(std::string_view function, const Arguments&... arguments)
{
    std::ostringstream text;
    text << function << '(';
    std::string_view separator;
    ((text << std::exchange(separator, ", ") << arguments), ...);
    text << ')';
    return text.str();
}

// Failures

/// The status that this call of `function` is to return, if a test has said so; counts the call.
std::optional<ViStatus> plannedStatus(Platform& fakes, std::string_view function);

/// Whether a call may do its work and tell of a failure all the same.
inline bool isTransfer(std::string_view function)
{
    return function == "viRead" || function == "viWrite";
}

/// The frame of every fake: logs the call, fails if a test wants it to, and otherwise does the work.
template <class Work>
ViStatus perform(std::string_view function, std::string text, Work work)
{
    return locked([&](Platform& fakes) {
        fakes.log.push_back(std::move(text));
        const auto planned = plannedStatus(fakes, function);
        if (planned.value_or(VI_SUCCESS) < 0) {
            if (fakes.lie == Lie::Late && isTransfer(function))
                work(fakes);
            return *planned;
        }
        const ViStatus status = work(fakes);
        return status >= 0 ? planned.value_or(status) : status;
    });
}

// Error records and texts

void updateError(ErrorEntry& entry, ViStatus code, ViConstString text);
ErrorEntry& threadError(Platform& fakes);

/// Gives a text to a caller's buffer by the rules of IVI-3.2 section 3.1.2.1.
ViStatus putText(const std::string& text, ViInt32 bufferSize, ViChar* buffer);

/// Gives a caller the record, whose code may be unwanted (null), and clears it unless only the size was asked for.
ViStatus takeError(ErrorEntry& error, ViInt32 bufferSize, ViStatus* code, ViChar* description);

} // namespace kvxtest
