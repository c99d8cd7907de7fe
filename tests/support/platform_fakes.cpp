#include "platform_fakes.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>
#include <utility>

namespace kvxtest
{
namespace
{

constexpr ViSession kFirstVisaSession = 1;
constexpr ViSession kFirstIviSession = 1001;
constexpr ViObject kGarbage = 0x0BADBAD0;

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

enum class ConfigKind
{
    Store,
    DriverSession,
    HardwareAsset,
};

/// What a handle of the configuration server points to.
struct ConfigObject
{
    ConfigKind kind;
    bool deserialized = false;
};

struct Failure
{
    /// Empty: every function.
    std::string function;
    /// 0: every call.
    std::size_t callsToGo = 0;
    ViStatus status = VI_SUCCESS;
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

    std::map<ViSession, VisaSession> visaSessions;
    ViSession nextVisaSession = kFirstVisaSession;
    std::deque<Reply> replies;
    std::map<std::string, std::string, std::less<>> answers;

    std::map<ViSession, IviSession> iviSessions;
    ViSession nextIviSession = kFirstIviSession;
    std::map<std::thread::id, ErrorEntry> threadErrors;

    std::vector<std::unique_ptr<ConfigObject>> configObjects;
    ConfigurationStore store;
};

Platform& platform()
{
    static Platform instance;
    return instance;
}

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

std::string quoted(std::string_view bytes)
{
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string text = "\"";
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else if (c == '\\' || c == '"')
            (text += '\\') += c;
        else if (code < 0x20 || code > 0x7E)
            ((text += "\\x") += kHexDigits[code / 16]) += kHexDigits[code % 16];
        else
            text += c;
    }
    return text += '"';
}

std::ostream& operator<<(std::ostream& stream, Quoted value)
{
    return stream << quoted(value.text);
}

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

std::string textArgument(ViConstString text)
{
    return text == nullptr ? "null" : quoted(text);
}

std::string flagArgument(const ViBoolean* flag)
{
    if (flag == nullptr)
        return "null";
    return *flag == VI_FALSE ? "VI_FALSE" : "VI_TRUE";
}

std::string hexArgument(ViUInt32 number)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << number;
    return text.str();
}

std::string attributeName(ViAttr attribute)
{
    static const std::map<ViAttr, std::string> kNames = {
        {VI_ATTR_TMO_VALUE, "VI_ATTR_TMO_VALUE"},           {VI_ATTR_TERMCHAR, "VI_ATTR_TERMCHAR"},
        {VI_ATTR_TERMCHAR_EN, "VI_ATTR_TERMCHAR_EN"},       {VI_ATTR_ASRL_END_IN, "VI_ATTR_ASRL_END_IN"},
        {VI_ATTR_ASRL_END_OUT, "VI_ATTR_ASRL_END_OUT"},     {VI_ATTR_ASRL_BAUD, "VI_ATTR_ASRL_BAUD"},
        {VI_ATTR_ASRL_DATA_BITS, "VI_ATTR_ASRL_DATA_BITS"}, {VI_ATTR_ASRL_STOP_BITS, "VI_ATTR_ASRL_STOP_BITS"},
        {VI_ATTR_ASRL_PARITY, "VI_ATTR_ASRL_PARITY"},       {VI_ATTR_ASRL_FLOW_CNTRL, "VI_ATTR_ASRL_FLOW_CNTRL"},
    };
    const auto found = kNames.find(attribute);
    return found == kNames.end() ? hexArgument(attribute) : found->second;
}

std::string bufferName(ViUInt16 mask)
{
    static const std::map<ViUInt16, std::string> kNames = {
        {VI_READ_BUF, "VI_READ_BUF"},
        {VI_WRITE_BUF, "VI_WRITE_BUF"},
        {VI_IO_IN_BUF, "VI_IO_IN_BUF"},
        {VI_IO_OUT_BUF, "VI_IO_OUT_BUF"},
    };
    const auto found = kNames.find(mask);
    return found == kNames.end() ? std::to_string(mask) : found->second;
}

// Failures

/// Whether `failure` strikes this call of `function`; counts the call if it might have.
bool strikes(Failure& failure, std::string_view function)
{
    if (!failure.function.empty() && failure.function != function)
        return false;
    return failure.callsToGo == 0 || --failure.callsToGo == 0;
}

/// The status that this call of `function` is to return, if a test has said so.
std::optional<ViStatus> plannedStatus(Platform& fakes, std::string_view function)
{
    std::optional<ViStatus> status;
    std::vector<Failure> remaining;
    for (Failure& failure : fakes.failures) {
        const bool forEver = failure.callsToGo == 0;
        const bool strikesNow = strikes(failure, function);
        if (strikesNow)
            status = failure.status;
        if (forEver || !strikesNow)
            remaining.push_back(failure);
        else
            fakes.failureHappened = true;
    }
    fakes.failures = std::move(remaining);
    return status;
}

/// The frame of every fake: logs the call, fails if a test wants it to, and otherwise does the work.
template <class Work>
ViStatus perform(std::string_view function, std::string text, Work work)
{
    return locked([&](Platform& fakes) {
        fakes.log.push_back(std::move(text));
        const auto planned = plannedStatus(fakes, function);
        if (planned.value_or(VI_SUCCESS) < 0)
            return *planned;
        const ViStatus status = work(fakes);
        return status >= 0 ? planned.value_or(status) : status;
    });
}

// Error records and texts

int severity(ViStatus code)
{
    if (code < 0)
        return 2;
    return code > 0 ? 1 : 0;
}

void updateError(ErrorEntry& entry, ViStatus code, ViConstString text)
{
    const bool replaces = severity(code) > severity(entry.code) || (code == entry.code && entry.text.empty());
    if (replaces)
        entry = {code, text == nullptr ? "" : text};
}

ErrorEntry& threadError(Platform& fakes)
{
    return fakes.threadErrors[std::this_thread::get_id()];
}

/// Gives a text to a caller's buffer by the rules of IVI-3.2 section 3.1.2.1.
ViStatus putText(const std::string& text, ViInt32 bufferSize, ViChar* buffer)
{
    if (bufferSize != 0 && buffer == nullptr)
        return IVI_ERROR_NULL_POINTER;
    const std::size_t needed = text.size() + 1;
    if (bufferSize == 0)
        return static_cast<ViStatus>(needed);
    const std::size_t size = bufferSize < 0 ? needed : static_cast<std::size_t>(bufferSize);
    const std::size_t length = text.copy(buffer, size - 1);
    buffer[length] = '\0';
    return size < needed ? static_cast<ViStatus>(needed) : VI_SUCCESS;
}

// VISA

template <class Work>
ViStatus withVisaSession(Platform& fakes, ViSession session, Work work)
{
    const auto found = fakes.visaSessions.find(session);
    return found == fakes.visaSessions.end() ? VI_ERROR_INV_OBJECT : work(found->second);
}

ViSession addVisaSession(Platform& fakes, ViSession manager)
{
    const ViSession session = fakes.nextVisaSession++;
    fakes.visaSessions[session].manager = manager;
    return session;
}

std::optional<Reply> nextReply(Platform& fakes, const VisaSession& session)
{
    if (!fakes.replies.empty()) {
        Reply reply = std::move(fakes.replies.front());
        fakes.replies.pop_front();
        return reply;
    }
    const auto found = fakes.answers.find(session.lastCommand);
    if (found == fakes.answers.end())
        return std::nullopt;
    return Reply{found->second + "\n"};
}

ViStatus read(Platform& fakes, VisaSession& session, ViPBuf buffer, ViUInt32 capacity, ViUInt32& received)
{
    received = 0;
    auto reply = session.rest.bytes.empty() ? nextReply(fakes, session) : session.rest;
    if (!reply)
        return VI_ERROR_TMO;
    received = static_cast<ViUInt32>(std::min<std::size_t>(capacity, reply->bytes.size()));
    std::copy_n(reply->bytes.begin(), received, buffer);
    session.rest = {reply->bytes.substr(received), reply->status};
    return session.rest.bytes.empty() ? reply->status : VI_SUCCESS_MAX_CNT;
}

// IVI sessions

template <class Work>
ViStatus withIviSession(Platform& fakes, ViSession session, Work work)
{
    const auto found = fakes.iviSessions.find(session);
    return found == fakes.iviSessions.end() ? IVI_ERROR_INVALID_SESSION_HANDLE : work(found->second);
}

/// Whether this thread may go on: the session is gone or its lock can be had.
bool canLock(Platform& fakes, ViSession session)
{
    const auto found = fakes.iviSessions.find(session);
    return found == fakes.iviSessions.end() || found->second.depth == 0 ||
           found->second.owner == std::this_thread::get_id();
}

ViStatus acquire(ViSession handle)
{
    Platform& fakes = platform();
    std::unique_lock guard(fakes.mutex);
    fakes.lockReleased.wait(guard, [&] { return canLock(fakes, handle); });
    return withIviSession(fakes, handle, [](IviSession& session) {
        session.owner = std::this_thread::get_id();
        ++session.depth;
        return VI_SUCCESS;
    });
}

// Configuration server

std::string configName(IviConfigHandle handle)
{
    if (handle == nullptr)
        return "null";
    const std::vector<std::unique_ptr<ConfigObject>>& objects = platform().configObjects;
    const auto found =
        std::find_if(objects.begin(), objects.end(), [handle](const auto& object) { return object.get() == handle; });
    if (found == objects.end())
        return "unknown";
    switch ((*found)->kind) {
    case ConfigKind::Store:
        return "store";
    case ConfigKind::DriverSession:
        return "driverSession";
    default:
        return "hardwareAsset";
    }
}

IviConfigHandle addConfigObject(Platform& fakes, ConfigKind kind)
{
    return fakes.configObjects.emplace_back(std::make_unique<ConfigObject>(ConfigObject{kind})).get();
}

ConfigObject* findConfigObject(Platform& fakes, IviConfigHandle handle, ConfigKind kind)
{
    for (const auto& object : fakes.configObjects)
        if (object.get() == handle && object->kind == kind)
            return object.get();
    return nullptr;
}

ViStatus removeConfigObject(Platform& fakes, IviConfigHandle handle, bool isStore)
{
    const auto found = std::find_if(fakes.configObjects.begin(), fakes.configObjects.end(), [=](const auto& object) {
        return object.get() == handle && (object->kind == ConfigKind::Store) == isStore;
    });
    if (found == fakes.configObjects.end())
        return IVICONFIG_ERROR_INVALID_HANDLE;
    fakes.configObjects.erase(found);
    return VI_SUCCESS;
}

/// The frame of the configuration server's fakes: a failure leaves a text in the thread's error record.
template <class Work, class... Arguments>
ViStatus performConfig(std::string_view function, Work work, const Arguments&... arguments)
{
    const ViStatus status = perform(function, callText(function, arguments...), work);
    if (status < 0)
        locked([&](Platform& fakes) {
            updateError(threadError(fakes), status, (std::string(function) + " failed").c_str());
        });
    return status;
}

/// Work on an object of one kind.
template <class Work>
auto onObject(IviConfigHandle handle, ConfigKind kind, Work work)
{
    return [=](Platform& fakes) -> ViStatus {
        ConfigObject* const object = findConfigObject(fakes, handle, kind);
        return object == nullptr ? IVICONFIG_ERROR_INVALID_HANDLE : work(fakes, *object);
    };
}

std::string configArgument(IviConfigHandle handle)
{
    return locked([handle](Platform&) { return configName(handle); });
}

const ViBoolean* storedFlag(const StoredDriverSession& session, ViInt32 property)
{
    switch (property) {
    case IVICONFIG_VAL_DRIVER_SESSION_CACHE:
        return &session.cache;
    case IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK:
        return &session.interchangeCheck;
    case IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS:
        return &session.queryInstrumentStatus;
    case IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK:
        return &session.rangeCheck;
    case IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS:
        return &session.recordCoercions;
    case IVICONFIG_VAL_DRIVER_SESSION_SIMULATE:
        return &session.simulate;
    default:
        return nullptr;
    }
}

void addFailure(Failure failure)
{
    locked([&](Platform& fakes) {
        fakes.failureHappened = false;
        fakes.failures.push_back(std::move(failure));
    });
}

} // namespace

void reset()
{
    locked([](Platform& fakes) {
        fakes.log.clear();
        fakes.written.clear();
        fakes.failures.clear();
        fakes.failureHappened = false;
        fakes.visaSessions.clear();
        fakes.nextVisaSession = kFirstVisaSession;
        fakes.replies.clear();
        fakes.answers.clear();
        fakes.iviSessions.clear();
        fakes.nextIviSession = kFirstIviSession;
        fakes.threadErrors.clear();
        fakes.configObjects.clear();
        fakes.store = {};
    });
}

std::vector<std::string> calls()
{
    return locked([](Platform& fakes) { return fakes.log; });
}

std::vector<std::string> calls(std::string_view prefix)
{
    std::vector<std::string> found = calls();
    std::erase_if(found, [prefix](const std::string& call) { return !call.starts_with(prefix); });
    return found;
}

std::vector<std::string> written()
{
    return locked([](Platform& fakes) { return fakes.written; });
}

void clearLog()
{
    locked([](Platform& fakes) {
        fakes.log.clear();
        fakes.written.clear();
    });
}

void queueReply(std::string bytes, ViStatus status)
{
    locked([&](Platform& fakes) { fakes.replies.push_back({std::move(bytes), status}); });
}

void answer(std::string_view command, std::string_view reply)
{
    locked([&](Platform& fakes) { fakes.answers[std::string(command) + "\n"] = reply; });
}

void failNthCall(std::size_t n, ViStatus status)
{
    addFailure({"", n, status});
}

void failNthCallOf(std::string_view function, std::size_t n, ViStatus status)
{
    addFailure({std::string(function), n, status});
}

void failCall(std::string_view function, ViStatus status)
{
    addFailure({std::string(function), 0, status});
}

bool failureHappened()
{
    return locked([](Platform& fakes) { return fakes.failureHappened; });
}

void clearFailures()
{
    locked([](Platform& fakes) { fakes.failures.clear(); });
}

std::size_t openVisaSessions()
{
    return locked([](Platform& fakes) { return fakes.visaSessions.size(); });
}

std::size_t openIviSessions()
{
    return locked([](Platform& fakes) { return fakes.iviSessions.size(); });
}

std::size_t openConfigHandles()
{
    return locked([](Platform& fakes) { return fakes.configObjects.size(); });
}

std::size_t lockDepth(ViSession session)
{
    return locked([session](Platform& fakes) {
        const auto found = fakes.iviSessions.find(session);
        return found == fakes.iviSessions.end() ? std::size_t{0} : found->second.depth;
    });
}

ErrorEntry errorOf(ViSession session)
{
    return locked([session](Platform& fakes) {
        if (session == VI_NULL)
            return threadError(fakes);
        const auto found = fakes.iviSessions.find(session);
        return found == fakes.iviSessions.end() ? ErrorEntry() : found->second.error;
    });
}

void clearThreadError()
{
    locked([](Platform& fakes) { threadError(fakes) = {}; });
}

void PrintTo(const ErrorEntry& entry, std::ostream* stream)
{
    *stream << hexArgument(static_cast<ViUInt32>(entry.code)) << ' ' << quoted(entry.text);
}

ConfigurationStore& configurationStore()
{
    return platform().store;
}

} // namespace kvxtest

using namespace kvxtest;

ViStatus _VI_FUNC viOpenDefaultRM(ViPSession sesn)
{
    *sesn = kGarbage;
    return perform("viOpenDefaultRM", "viOpenDefaultRM()", [=](Platform& fakes) {
        *sesn = addVisaSession(fakes, VI_NULL);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC viOpen(ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi)
{
    *vi = kGarbage;
    return perform("viOpen", callText("viOpen", sesn, textArgument(name), mode, timeout), [=](Platform& fakes) {
        return withVisaSession(fakes, sesn, [&](const VisaSession& /*manager*/) {
            *vi = addVisaSession(fakes, sesn);
            return VI_SUCCESS;
        });
    });
}

ViStatus _VI_FUNC viClose(ViObject vi)
{
    return perform("viClose", callText("viClose", vi), [=](Platform& fakes) {
        if (fakes.visaSessions.erase(vi) == 0)
            return VI_ERROR_INV_OBJECT;
        std::erase_if(fakes.visaSessions, [vi](const auto& session) { return session.second.manager == vi; });
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrValue)
{
    return perform("viSetAttribute", callText("viSetAttribute", vi, attributeName(attrName), attrValue),
                   [=](Platform& fakes) {
                       return withVisaSession(fakes, vi, [](const VisaSession& /*session*/) { return VI_SUCCESS; });
                   });
}

ViStatus _VI_FUNC viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 size)
{
    return perform("viSetBuf", callText("viSetBuf", vi, bufferName(mask), size), [=](Platform& fakes) {
        return withVisaSession(fakes, vi, [](const VisaSession& /*session*/) { return VI_SUCCESS; });
    });
}

ViStatus _VI_FUNC viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    ViUInt32 count = 0;
    const ViStatus status = perform("viRead", callText("viRead", vi, cnt), [&](Platform& fakes) {
        return withVisaSession(fakes, vi, [&](VisaSession& session) { return read(fakes, session, buf, cnt, count); });
    });
    if (retCnt != nullptr)
        *retCnt = count;
    return status;
}

ViStatus _VI_FUNC viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    const std::string bytes(buf, buf + cnt);
    const ViStatus status = perform("viWrite", callText("viWrite", vi, Quoted{bytes}), [&](Platform& fakes) {
        return withVisaSession(fakes, vi, [&](VisaSession& session) {
            session.lastCommand = bytes;
            fakes.written.push_back(bytes);
            return VI_SUCCESS;
        });
    });
    if (retCnt != nullptr)
        *retCnt = status < 0 ? 0 : cnt;
    return status;
}

ViStatus _VI_FUNC IviSession_New(ViSession* handle)
{
    return perform("IviSession_New", "IviSession_New()", [=](Platform& fakes) {
        *handle = fakes.nextIviSession++;
        fakes.iviSessions[*handle];
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviSession_Dispose(ViSession handle)
{
    return perform("IviSession_Dispose", callText("IviSession_Dispose", handle), [=](Platform& fakes) {
        fakes.lockReleased.notify_all();
        return fakes.iviSessions.erase(handle) == 0 ? IVI_ERROR_INVALID_SESSION_HANDLE : VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviSession_SetDataPtr(ViSession handle, ViAddr dataPtr)
{
    return perform("IviSession_SetDataPtr", callText("IviSession_SetDataPtr", handle), [=](Platform& fakes) {
        return withIviSession(fakes, handle, [=](IviSession& session) {
            session.data = dataPtr;
            return VI_SUCCESS;
        });
    });
}

ViStatus _VI_FUNC IviSession_GetDataPtr(ViSession handle, ViAddr* dataPtr)
{
    return perform("IviSession_GetDataPtr", callText("IviSession_GetDataPtr", handle), [=](Platform& fakes) {
        return withIviSession(fakes, handle, [=](const IviSession& session) {
            *dataPtr = session.data;
            return VI_SUCCESS;
        });
    });
}

ViStatus _VI_FUNC IviSession_Lock(ViSession handle, ViBoolean* hasLock)
{
    const bool wanted = hasLock == nullptr || *hasLock == VI_FALSE;
    ViStatus status =
        perform("IviSession_Lock", callText("IviSession_Lock", handle, flagArgument(hasLock)), [=](Platform& fakes) {
            return withIviSession(fakes, handle, [](const IviSession& /*session*/) { return VI_SUCCESS; });
        });
    if (status == VI_SUCCESS && wanted)
        status = acquire(handle);
    if (status == VI_SUCCESS && hasLock != nullptr)
        *hasLock = VI_TRUE;
    return status;
}

ViStatus _VI_FUNC IviSession_Unlock(ViSession handle, ViBoolean* hasLock)
{
    const bool wanted = hasLock == nullptr || *hasLock != VI_FALSE;
    const ViStatus status = perform(
        "IviSession_Unlock", callText("IviSession_Unlock", handle, flagArgument(hasLock)), [=](Platform& fakes) {
            return withIviSession(fakes, handle, [&](IviSession& session) {
                const bool held = session.depth > 0 && session.owner == std::this_thread::get_id();
                if (wanted && held && --session.depth == 0)
                    fakes.lockReleased.notify_all();
                return VI_SUCCESS;
            });
        });
    if (status >= 0 && hasLock != nullptr)
        *hasLock = VI_FALSE;
    return status;
}

ViStatus _VI_FUNC IviSession_SetError(ViSession handle, ViStatus code, ViConstString description)
{
    return perform(
        "IviSession_SetError",
        callText("IviSession_SetError", handle, hexArgument(static_cast<ViUInt32>(code)), textArgument(description)),
        [=](Platform& fakes) {
            updateError(threadError(fakes), code, description);
            if (handle == VI_NULL)
                return VI_SUCCESS;
            return withIviSession(fakes, handle, [=](IviSession& session) {
                updateError(session.error, code, description);
                return VI_SUCCESS;
            });
        });
}

namespace
{

ViStatus takeError(ErrorEntry& error, ViInt32 bufferSize, ViStatus* code, ViChar* description)
{
    if (code != nullptr)
        *code = error.code;
    const ViStatus status = putText(error.text, bufferSize, description);
    if (bufferSize != 0 && status >= 0)
        error = {};
    return status;
}

} // namespace

ViStatus _VI_FUNC IviSession_GetError(ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar description[])
{
    return perform("IviSession_GetError", callText("IviSession_GetError", handle, bufferSize), [=](Platform& fakes) {
        if (handle == VI_NULL)
            return takeError(threadError(fakes), bufferSize, code, description);
        return withIviSession(fakes, handle, [=](IviSession& session) {
            return takeError(session.error, bufferSize, code, description);
        });
    });
}

ViStatus _VI_FUNC IviSession_ClearError(ViSession handle)
{
    return perform("IviSession_ClearError", callText("IviSession_ClearError", handle), [=](Platform& fakes) {
        if (handle == VI_NULL) {
            threadError(fakes) = {};
            return VI_SUCCESS;
        }
        return withIviSession(fakes, handle, [](IviSession& session) {
            session.error = {};
            return VI_SUCCESS;
        });
    });
}

ViStatus _VI_FUNC IviConfig_Initialize(IviConfigStoreHandle* store)
{
    return performConfig("IviConfig_Initialize", [=](Platform& fakes) {
        *store = addConfigObject(fakes, ConfigKind::Store);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_Close(IviConfigStoreHandle store)
{
    return performConfig(
        "IviConfig_Close", [=](Platform& fakes) { return removeConfigObject(fakes, store, true); },
        configArgument(store));
}

ViStatus _VI_FUNC IviConfig_DisposeHandle(IviConfigHandle handle)
{
    return performConfig(
        "IviConfig_DisposeHandle", [=](Platform& fakes) { return removeConfigObject(fakes, handle, false); },
        configArgument(handle));
}

ViStatus _VI_FUNC IviConfig_ClearError()
{
    return perform("IviConfig_ClearError", "IviConfig_ClearError()", [](Platform& fakes) {
        threadError(fakes) = {};
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC IviConfig_GetError(ViInt32 bufferSize, ViChar errorDescription[])
{
    return perform("IviConfig_GetError", callText("IviConfig_GetError", bufferSize), [=](Platform& fakes) {
        return takeError(threadError(fakes), bufferSize, nullptr, errorDescription);
    });
}

ViStatus _VI_FUNC IviConfig_Deserialize(IviConfigStoreHandle store, ViConstString location)
{
    return performConfig("IviConfig_Deserialize",
                         onObject(store, ConfigKind::Store,
                                  [](Platform& /*fakes*/, ConfigObject& object) {
                                      object.deserialized = true;
                                      return VI_SUCCESS;
                                  }),
                         configArgument(store), textArgument(location));
}

ViStatus _VI_FUNC IviConfig_GetConfigStorePropertyViString(IviConfigStoreHandle store, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[])
{
    return performConfig("IviConfig_GetConfigStorePropertyViString",
                         onObject(store, ConfigKind::Store,
                                  [=](Platform& fakes, ConfigObject& /*object*/) -> ViStatus {
                                      if (propertyID == IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION)
                                          return putText(fakes.store.processDefaultLocation, bufferSize, value);
                                      if (propertyID == IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION)
                                          return putText(fakes.store.masterLocation, bufferSize, value);
                                      return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
                                  }),
                         configArgument(store), propertyID, bufferSize);
}

ViStatus _VI_FUNC IviConfig_GetDriverSession(IviConfigStoreHandle store, ViConstString name,
                                             IviDriverSessionHandle* driverSession)
{
    return performConfig("IviConfig_GetDriverSession",
                         onObject(store, ConfigKind::Store,
                                  [=](Platform& fakes, ConfigObject& object) -> ViStatus {
                                      const auto& stored = fakes.store.driverSession;
                                      *driverSession = nullptr;
                                      if (!object.deserialized || !stored || stored->name != name)
                                          return IVICONFIG_ERROR_SESSION_NOT_FOUND;
                                      *driverSession = addConfigObject(fakes, ConfigKind::DriverSession);
                                      return VI_SUCCESS;
                                  }),
                         configArgument(store), textArgument(name));
}

ViStatus _VI_FUNC IviConfig_GetSessionHardwareAssetReference(IviSessionHandle session,
                                                             IviHardwareAssetHandle* hardwareAsset)
{
    return performConfig("IviConfig_GetSessionHardwareAssetReference",
                         onObject(session, ConfigKind::DriverSession,
                                  [=](Platform& fakes, ConfigObject& /*object*/) {
                                      const bool present = fakes.store.driverSession->ioResourceDescriptor.has_value();
                                      *hardwareAsset =
                                          present ? addConfigObject(fakes, ConfigKind::HardwareAsset) : nullptr;
                                      return VI_SUCCESS;
                                  }),
                         configArgument(session));
}

ViStatus _VI_FUNC IviConfig_GetHardwareAssetPropertyViString(IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return performConfig("IviConfig_GetHardwareAssetPropertyViString",
                         onObject(hardwareAsset, ConfigKind::HardwareAsset,
                                  [=](Platform& fakes, ConfigObject& /*object*/) -> ViStatus {
                                      if (propertyID != IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR)
                                          return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
                                      return putText(*fakes.store.driverSession->ioResourceDescriptor, bufferSize,
                                                     value);
                                  }),
                         configArgument(hardwareAsset), propertyID, bufferSize);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViBoolean(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                              ViBoolean* value)
{
    return performConfig("IviConfig_GetDriverSessionPropertyViBoolean",
                         onObject(driverSession, ConfigKind::DriverSession,
                                  [=](Platform& fakes, ConfigObject& /*object*/) -> ViStatus {
                                      const ViBoolean* const flag = storedFlag(*fakes.store.driverSession, propertyID);
                                      if (flag == nullptr)
                                          return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
                                      *value = *flag;
                                      return VI_SUCCESS;
                                  }),
                         configArgument(driverSession), propertyID);
}

ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViString(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[])
{
    return performConfig("IviConfig_GetDriverSessionPropertyViString",
                         onObject(driverSession, ConfigKind::DriverSession,
                                  [=](Platform& fakes, ConfigObject& /*object*/) -> ViStatus {
                                      if (propertyID != IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP)
                                          return IVICONFIG_ERROR_INVALID_PROPERTY_ID;
                                      return putText(fakes.store.driverSession->driverSetup, bufferSize, value);
                                  }),
                         configArgument(driverSession), propertyID, bufferSize);
}
