#include "visa/attribute/attributes.h"
#include "visa/find/find_resources.h"
#include "visa/function_frame.h"
#include "visa/host/network.h"
#include "visa/session/find_list_session.h"
#include "visa/session/instrument_session.h"
#include "visa/session/manager_session.h"
#include "visa/session/status_texts.h"
#include "visa/transport/transports.h"

#include <visa.h>

#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string>

namespace
{

using visa::guarded;
using visa::InstrumentSession;
using visa::ManagerSession;
using visa::registry;
using visa::ResourceLock;
using visa::ResourceName;
using visa::Session;
using visa::withSession;

// Callers pass a negative attribute value sign-extended to a pointer's width.
static_assert(sizeof(ViAttrState) == sizeof(void*));

/// A read or a write; the count of bytes is told on a failure as well.
template <class Byte>
ViStatus transfer(ViSession handle, Byte* bytes, ViUInt32 size, ViPUInt32 counted,
                  ViStatus (Session::*operation)(std::span<Byte> bytes, std::size_t& count)) noexcept
{
    std::size_t count = 0;
    const ViStatus status = withSession(handle, [=, &count](Session& session) {
        return bytes == nullptr && size > 0 ? VI_ERROR_INV_PARAMETER : (session.*operation)({bytes, size}, count);
    });
    if (counted != nullptr)
        *counted = static_cast<ViUInt32>(count);
    return status;
}

std::optional<ResourceName> parsedName(ViConstRsrc name)
{
    return name == nullptr ? std::nullopt : visa::parseResourceName({name, std::strlen(name)});
}

void storeWanted(std::string_view text, ViChar target[])
{
    if (target != nullptr)
        visa::storeText(text, target);
}

ViStatus lockShared(Session& session, ViUInt32 timeout, ViConstKeyId requestedKey, ViChar accessKey[])
{
    std::optional<std::string> key;
    // An empty key is as good as none, for languages without null texts.
    if (requestedKey != nullptr && *requestedKey != '\0') {
        if (::strnlen(requestedKey, ResourceLock::kLongestKey + 1) > ResourceLock::kLongestKey)
            return VI_ERROR_INV_ACCESS_KEY;
        key = requestedKey;
    }
    const ViStatus status = session.lockShared(timeout, key);
    if (status >= 0)
        visa::storeText(*key, accessKey);
    return status;
}

/// What connecting has left of the time; without a time-out a lock is not waited for.
ViUInt32 lockTimeoutMs(ViUInt32 timeout, const visa::Deadline& deadline)
{
    const int leftMs = deadline.remainingMs(std::numeric_limits<int>::max());
    return timeout == VI_TMO_INFINITE || timeout == VI_TMO_IMMEDIATE ? timeout : static_cast<ViUInt32>(leftMs);
}

/// Keeps the names for viFindNext.
ViStatus openFindList(ViSession manager, std::vector<std::string> names, ViFindList& list)
{
    const ViSession handle = registry().reserveHandle();
    if (handle == VI_NULL)
        return VI_ERROR_ALLOC;
    if (!registry().add(handle, std::make_shared<visa::FindListSession>(manager, std::move(names))))
        return VI_ERROR_INV_OBJECT;
    list = handle;
    return VI_SUCCESS;
}

ViStatus find(ViSession manager, ViConstString text, ViPFindList list, ViPUInt32 count, ViChar first[])
{
    const auto expression = text == nullptr ? std::nullopt : visa::FindExpression::parse({text, std::strlen(text)});
    if (!expression)
        return VI_ERROR_INV_EXPR;
    std::vector<std::string> names = visa::findResources(*expression);
    if (names.empty())
        return VI_ERROR_RSRC_NFOUND;
    const auto found = static_cast<ViUInt32>(names.size());
    const std::string name = names.front();
    const ViStatus status = list == nullptr ? VI_SUCCESS : openFindList(manager, std::move(names), *list);
    if (status < 0)
        return status;
    if (count != nullptr)
        *count = found;
    visa::storeText(name, first);
    return VI_SUCCESS;
}

ViStatus openInstrument(ViSession manager, const ResourceName& name, ViAccessMode mode, ViUInt32 timeout,
                        ViSession& opened)
{
    constexpr ViUInt32 kDefaultTimeoutMs = 2000;
    const ViSession handle = registry().reserveHandle();
    if (handle == VI_NULL)
        return VI_ERROR_ALLOC;
    auto lock = registry().lockOf(name.canonical);
    visa::OpenedTransport transport;
    const visa::Deadline deadline(timeout == 0 ? kDefaultTimeoutMs : timeout);
    ViStatus status = visa::openTransport(name, deadline, transport);
    if (status < 0)
        return status;
    const auto session = std::make_shared<InstrumentSession>(InstrumentSession::Identity{handle, manager, name},
                                                             std::move(transport), lock);
    status = session->applyInitialAttributes();
    if (status < 0)
        return status;
    if ((mode & VI_EXCLUSIVE_LOCK) != 0 && session->lockExclusively(lockTimeoutMs(timeout, deadline)) < 0)
        return VI_ERROR_RSRC_LOCKED;
    if (!registry().add(handle, session))
        return VI_ERROR_INV_OBJECT;
    opened = handle;
    return (mode & VI_LOAD_CONFIG) != 0 ? VI_WARN_CONFIG_NLOADED : VI_SUCCESS;
}

} // namespace

ViStatus _VI_FUNC viOpenDefaultRM(ViPSession vi)
{
    if (vi == nullptr)
        return VI_ERROR_INV_PARAMETER;
    *vi = VI_NULL;
    return guarded([vi] {
        const ViSession handle = registry().reserveHandle();
        if (handle == VI_NULL)
            return VI_ERROR_ALLOC;
        // Every use of the network, the reading of addresses as well, comes through a manager.
        visa::startNetwork();
        registry().add(handle, std::make_shared<ManagerSession>());
        *vi = handle;
        return VI_SUCCESS;
    });
}

// The older name is a macro for programs that are compiled, and a function for those that load this library.
#undef viGetDefaultRM
extern "C" ViStatus _VI_FUNC viGetDefaultRM(ViPSession vi);

ViStatus _VI_FUNC viGetDefaultRM(ViPSession vi)
{
    return viOpenDefaultRM(vi);
}

ViStatus _VI_FUNC viFindRsrc(ViSession sesn, ViConstString expr, ViPFindList vi, ViPUInt32 retCnt, ViChar desc[])
{
    if (vi != nullptr)
        *vi = VI_NULL;
    if (retCnt != nullptr)
        *retCnt = 0;
    if (desc == nullptr)
        return VI_ERROR_INV_PARAMETER;
    visa::storeText({}, desc);
    return withSession(sesn, [=](const Session& manager) {
        return manager.manager() == VI_NULL ? find(sesn, expr, vi, retCnt, desc) : VI_ERROR_NSUP_OPER;
    });
}

ViStatus _VI_FUNC viFindNext(ViFindList vi, ViChar desc[])
{
    return withSession(vi, [=](Session& list) {
        if (desc == nullptr)
            return VI_ERROR_INV_PARAMETER;
        std::string name;
        const ViStatus status = list.findNext(name);
        visa::storeText(name, desc);
        return status;
    });
}

ViStatus _VI_FUNC viParseRsrc(ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum)
{
    return viParseRsrcEx(rmSesn, rsrcName, intfType, intfNum, nullptr, nullptr, nullptr);
}

ViStatus _VI_FUNC viParseRsrcEx(ViSession rmSesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum,
                                ViChar rsrcClass[], ViChar expandedUnaliasedName[], ViChar aliasIfExists[])
{
    return withSession(rmSesn, [=](const Session& manager) {
        if (manager.manager() != VI_NULL)
            return VI_ERROR_NSUP_OPER;
        if (intfType == nullptr || intfNum == nullptr)
            return VI_ERROR_INV_PARAMETER;
        const auto name = parsedName(rsrcName);
        if (!name)
            return VI_ERROR_INV_RSRC_NAME;
        *intfType = visa::interfaceType(name->kind);
        *intfNum = name->board;
        storeWanted(name->resourceClass, rsrcClass);
        storeWanted(name->canonical, expandedUnaliasedName);
        storeWanted({}, aliasIfExists);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC viOpen(ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi)
{
    constexpr ViAccessMode kKnownModes = VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG;
    if (vi == nullptr)
        return VI_ERROR_INV_PARAMETER;
    *vi = VI_NULL;
    return withSession(sesn, [=](const Session& manager) {
        if (manager.manager() != VI_NULL)
            return VI_ERROR_NSUP_OPER;
        if ((mode & ~kKnownModes) != 0)
            return VI_ERROR_INV_ACC_MODE;
        const auto parsed = parsedName(name);
        return parsed ? openInstrument(sesn, *parsed, mode, timeout, *vi) : VI_ERROR_INV_RSRC_NAME;
    });
}

ViStatus _VI_FUNC viClose(ViObject vi)
{
    if (vi == VI_NULL)
        return VI_WARN_NULL_OBJECT;
    return guarded([vi] { return registry().close(vi) ? VI_SUCCESS : VI_ERROR_INV_OBJECT; });
}

ViStatus _VI_FUNC viGetAttribute(ViObject vi, ViAttr attrName, void* attrValue)
{
    return withSession(vi, [=](Session& session) {
        return attrValue == nullptr ? VI_ERROR_INV_PARAMETER : session.getAttribute(attrName, attrValue);
    });
}

ViStatus _VI_FUNC viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrValue)
{
    return withSession(vi, [=](Session& session) { return session.setAttribute(attrName, attrValue); });
}

ViStatus _VI_FUNC viStatusDesc(ViObject, ViStatus status, ViChar desc[])
{
    // The handle is not looked at: a description is wanted most when opening failed and there is none.
    if (desc == nullptr)
        return VI_ERROR_INV_PARAMETER;
    const std::string_view text = visa::statusText(status);
    if (!text.empty()) {
        visa::storeText(text, desc);
        return VI_SUCCESS;
    }
    return guarded([status, desc] {
        std::array<char, 9> digits{};
        std::snprintf(digits.data(), digits.size(), "%08X", static_cast<unsigned>(status));
        visa::storeText(std::string("Unknown status code 0x") + digits.data() + ".", desc);
        return VI_WARN_UNKNOWN_STATUS;
    });
}

ViStatus _VI_FUNC viTerminate(ViObject vi, ViUInt16 degree, ViJobId jobId)
{
    return withSession(vi, [=](Session& session) {
        if (degree != VI_NULL)
            return VI_ERROR_INV_DEGREE;
        // Only asynchronous operations have jobs.
        return jobId == VI_NULL ? session.abort() : VI_ERROR_INV_JOB_ID;
    });
}

ViStatus _VI_FUNC viLock(ViSession vi, ViAccessMode lockType, ViUInt32 timeout, ViConstKeyId requestedKey,
                         ViChar accessKey[])
{
    return withSession(vi, [=](Session& session) {
        if (lockType == VI_EXCLUSIVE_LOCK) {
            storeWanted({}, accessKey);
            return session.lockExclusively(timeout);
        }
        if (lockType != VI_SHARED_LOCK)
            return VI_ERROR_INV_LOCK_TYPE;
        return accessKey == nullptr ? VI_ERROR_INV_PARAMETER : lockShared(session, timeout, requestedKey, accessKey);
    });
}

ViStatus _VI_FUNC viUnlock(ViSession vi)
{
    return withSession(vi, [](Session& session) { return session.unlock(); });
}

ViStatus _VI_FUNC viDisableEvent(ViSession vi, ViEventType, ViUInt16)
{
    return withSession(vi, [](const Session&) { return VI_SUCCESS_EVENT_DIS; });
}

ViStatus _VI_FUNC viDiscardEvents(ViSession vi, ViEventType, ViUInt16)
{
    return withSession(vi, [](const Session&) { return VI_SUCCESS_QUEUE_EMPTY; });
}

ViStatus _VI_FUNC viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    return transfer(vi, buf, cnt, retCnt, &Session::read);
}

ViStatus _VI_FUNC viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    return transfer(vi, buf, cnt, retCnt, &Session::write);
}

ViStatus _VI_FUNC viAssertTrigger(ViSession vi, ViUInt16 protocol)
{
    return withSession(
        vi, [=](Session& session) { return protocol == VI_TRIG_PROT_DEFAULT ? session.trigger() : VI_ERROR_INV_PROT; });
}

ViStatus _VI_FUNC viReadSTB(ViSession vi, ViPUInt16 status)
{
    return withSession(vi, [=](Session& session) {
        return status == nullptr ? VI_ERROR_INV_PARAMETER : session.readStatusByte(*status);
    });
}

ViStatus _VI_FUNC viGpibControlREN(ViSession vi, ViUInt16 mode)
{
    return withSession(vi, [=](Session& session) {
        return mode > VI_GPIB_REN_ADDRESS_GTL ? VI_ERROR_INV_MODE : session.controlRemote(mode);
    });
}

ViStatus _VI_FUNC viClear(ViSession vi)
{
    return withSession(vi, [](Session& session) { return session.clear(); });
}

ViStatus _VI_FUNC viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 size)
{
    return withSession(vi, [=](Session& session) { return session.setBuffer(mask, size); });
}

ViStatus _VI_FUNC viFlush(ViSession vi, ViUInt16 mask)
{
    return withSession(vi, [=](Session& session) { return session.flush(mask); });
}
