#include "visa/host/host_error.h"
#include "visa/host/network.h"
#include "visa/session/attributes.h"
#include "visa/session/instrument_session.h"
#include "visa/session/manager_session.h"
#include "visa/session/session_registry.h"
#include "visa/session/status_texts.h"
#include "visa/transport/backends.h"

#include <visa.h>

#include <cstdio>
#include <cstring>
#include <new>
#include <span>
#include <string>
#include <system_error>

namespace
{

using visa::InstrumentSession;
using visa::ManagerSession;
using visa::ResourceName;
using visa::Session;
using visa::SessionRegistry;

// Callers pass a negative attribute value sign-extended to a pointer's width.
static_assert(sizeof(ViAttrState) == sizeof(void*));

/// Never destroyed: drivers may close their sessions from their own clean-up while the process ends.
SessionRegistry& registry()
{
    static SessionRegistry& sessions = *new SessionRegistry;
    return sessions;
}

/// The frame of every function: no exception leaves the library.
template <class Action>
ViStatus guarded(Action action) noexcept
{
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return VI_ERROR_ALLOC;
    } catch (const std::system_error& failure) {
        return visa::isExhaustion(failure.code()) ? VI_ERROR_ALLOC : VI_ERROR_SYSTEM_ERROR;
    }
}

/// Runs action(session), which keeps the session alive while another thread closes it.
template <class Action>
ViStatus withSession(ViSession handle, Action action) noexcept
{
    return guarded([handle, &action] {
        const auto session = registry().find(handle);
        return session == nullptr ? VI_ERROR_INV_OBJECT : action(*session);
    });
}

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

ViStatus openInstrument(ViSession manager, const ResourceName& name, ViAccessMode mode, ViUInt32 timeout,
                        ViSession& opened)
{
    constexpr ViUInt32 kDefaultTimeoutMs = 2000;
    const ViSession handle = registry().reserveHandle();
    if (handle == VI_NULL)
        return VI_ERROR_ALLOC;
    auto lock = registry().lockOf(name.canonical);
    std::unique_ptr<visa::Stream> stream;
    ViStatus status = visa::openStream(name, visa::Deadline(timeout == 0 ? kDefaultTimeoutMs : timeout), stream);
    if (status < 0)
        return status;
    const auto session = std::make_shared<InstrumentSession>(InstrumentSession::Identity{handle, manager, name},
                                                             std::move(stream), lock);
    status = session->applyInitialAttributes();
    if (status < 0)
        return status;
    if ((mode & VI_EXCLUSIVE_LOCK) != 0 && !lock->acquire(handle))
        return VI_ERROR_RSRC_LOCKED;
    if (!registry().add(handle, session))
        return VI_ERROR_INV_OBJECT;
    opened = handle;
    return (mode & VI_LOAD_CONFIG) != 0 ? VI_WARN_CONFIG_NLOADED : VI_SUCCESS;
}

} // namespace

ViStatus _VI_FUNC viOpenDefaultRM(ViPSession sesn)
{
    if (sesn == nullptr)
        return VI_ERROR_INV_PARAMETER;
    *sesn = VI_NULL;
    return guarded([sesn] {
        const ViSession handle = registry().reserveHandle();
        if (handle == VI_NULL)
            return VI_ERROR_ALLOC;
        // Every use of the network, the reading of addresses as well, comes through a manager.
        visa::startNetwork();
        registry().add(handle, std::make_shared<ManagerSession>());
        *sesn = handle;
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
        const auto parsed = name == nullptr ? std::nullopt : visa::parseResourceName({name, std::strlen(name)});
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

ViStatus _VI_FUNC viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    return transfer(vi, buf, cnt, retCnt, &Session::read);
}

ViStatus _VI_FUNC viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt)
{
    return transfer(vi, buf, cnt, retCnt, &Session::write);
}

ViStatus _VI_FUNC viClear(ViSession vi)
{
    return withSession(vi, [](Session& session) { return session.clear(); });
}

ViStatus _VI_FUNC viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 size)
{
    return withSession(vi, [=](Session& session) { return session.setBuffer(mask, size); });
}
