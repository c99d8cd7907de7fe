#include "tests/support/fakes/platform_fakes.h"

#include "tests/support/fakes/fake_platform.h"

#include <algorithm>

namespace kvxtest
{
namespace
{

constexpr ViObject kGarbage = 0x0BADBAD0;

// Texts of the log

std::string flagArgument(const ViBoolean* flag)
{
    if (flag == nullptr)
        return "null";
    return *flag == VI_FALSE ? "VI_FALSE" : "VI_TRUE";
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
    if (fakes.lie == Lie::Late) {
        session.rest = *reply;
        return VI_ERROR_TMO;
    }
    received = static_cast<ViUInt32>(std::min<std::size_t>(capacity, reply->bytes.size()));
    std::copy_n(reply->bytes.begin(), received, buffer);
    session.rest = {reply->bytes.substr(received), reply->status};
    received += fakes.claimedBytes;
    return session.rest.bytes.empty() ? reply->status : VI_SUCCESS_MAX_CNT;
}

/// What a transfer tells of the bytes that it has moved.
ViUInt32 beyondBuffer(ViUInt32 count)
{
    constexpr ViUInt32 kImpossible = 0xFFFFFFF0;
    return locked([=](Platform& fakes) { return fakes.lie == Lie::Garbage ? kImpossible : count; });
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
        fakes.callsToNullDataPtr = 0;
        fakes.visaSessions.clear();
        fakes.nextVisaSession = kFirstVisaSession;
        fakes.replies.clear();
        fakes.claimedBytes = 0;
        fakes.answers.clear();
        fakes.iviSessions.clear();
        fakes.nextIviSession = kFirstIviSession;
        fakes.threadErrors.clear();
        fakes.configObjects.clear();
        fakes.store = {};
        fakes.leavesOutNul = false;
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

void claimBytes(ViUInt32 excess)
{
    locked([excess](Platform& fakes) { fakes.claimedBytes = excess; });
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

void giveNullAtNthCall(std::size_t n)
{
    addFailure({"", n, VI_SUCCESS, Lie::Null});
}

void giveGarbageAtNthCall(std::size_t n)
{
    addFailure({"", n, VI_SUCCESS, Lie::Garbage});
}

void delayNthCall(std::size_t n)
{
    addFailure({"", n, VI_ERROR_TMO, Lie::Late});
}

void giveNull(std::string_view function)
{
    addFailure({std::string(function), 0, VI_SUCCESS, Lie::Null});
}

void fillBuffersWithoutNul()
{
    locked([](Platform& fakes) { fakes.leavesOutNul = true; });
}

void giveNullDataPtr(std::size_t n)
{
    locked([n](Platform& fakes) { fakes.callsToNullDataPtr = n; });
}

bool failureHappened()
{
    return locked([](Platform& fakes) { return fakes.failureHappened; });
}

void clearFailures()
{
    locked([](Platform& fakes) {
        fakes.failures.clear();
        fakes.callsToNullDataPtr = 0;
    });
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
        if (fakes.lie != Lie::Garbage)
            *sesn = addVisaSession(fakes, VI_NULL);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC viOpen(ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi)
{
    *vi = kGarbage;
    return perform("viOpen", callText("viOpen", sesn, textArgument(name), mode, timeout), [=](Platform& fakes) {
        return withVisaSession(fakes, sesn, [&](const VisaSession& /*manager*/) {
            if (fakes.lie != Lie::Garbage)
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
        *retCnt = beyondBuffer(count);
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
        *retCnt = beyondBuffer(status < 0 ? 0 : cnt);
    return status;
}

ViStatus _VI_FUNC IviSession_New(ViSession* handle)
{
    return perform("IviSession_New", "IviSession_New()", [=](Platform& fakes) {
        *handle = kGarbage;
        if (fakes.lie != Lie::Garbage) {
            *handle = fakes.nextIviSession++;
            fakes.iviSessions[*handle];
        }
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
        return withIviSession(fakes, handle, [&](const IviSession& session) {
            const bool givesNull = fakes.callsToNullDataPtr != 0 && --fakes.callsToNullDataPtr == 0;
            *dataPtr = givesNull || fakes.lie == Lie::Garbage ? nullptr : session.data;
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
