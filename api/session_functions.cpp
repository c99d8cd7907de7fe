#include "api/KVX2800T.h"

#include "api/arguments.h"
#include "api/attribute_table.h"
#include "api/frame.h"
#include "base/option_grammar.h"
#include "runtime/close_listeners.h"
#include "runtime/driver_identity.h"
#include "runtime/kvx2800t_driver_session.h"

#include <new>
#include <string>
#include <utility>

using drivekit::DriverSession;

namespace
{

std::string textOrEmpty(const ViChar* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

/// What an application opens a session with.
struct InitArguments
{
    ViRsrc resourceName;
    ViBoolean idQuery;
    ViBoolean reset;
    ViConstString optionString;
};

/// Deletes the session of a handle that stays with the session service, which then knows of none.
void deleteSession(ViSession vi, const DriverSession* session)
{
    delete session;
    IviSession_SetDataPtr(vi, VI_NULL);
}

/// A session for a new handle. After a failure the handle stays with the session service, without its session; after an
/// exception `session` is what there is of it.
ViStatus createSession(const InitArguments& arguments, ViSession* vi, DriverSession*& session)
{
    // KVX2800T_close deletes it; the session service holds nothing but the pointer.
    session = new KVX2800TDriverSession(*vi, api::attributeRegistry());
    ViStatus status = IviSession_SetDataPtr(*vi, session);
    if (status < 0) {
        delete session;
        *vi = VI_NULL;
        return status;
    }
    status = session->Initialize(textOrEmpty(arguments.resourceName), arguments.idQuery == VI_TRUE,
                                 arguments.reset == VI_TRUE, textOrEmpty(arguments.optionString));
    if (status < 0)
        deleteSession(std::exchange(*vi, VI_NULL), session);
    return status;
}

/// Resets the instrument of a new session when asked to, whatever comes of it.
ViStatus finishInit(ViBoolean reset, ViSession vi)
{
    ViAddr data = nullptr;
    const ViStatus status = IviSession_GetDataPtr(vi, &data);
    if (status < 0)
        return status;
    if (data == nullptr)
        return base::kErrorInvalidSessionHandle;
    if (reset != VI_FALSE)
        static_cast<DriverSession*>(data)->instrument()->reset();
    return status;
}

bool asksForSafeErrors(std::string_view driverSetup)
{
    drivekit::SessionSettings settings;
    drivekit::takeSettings(driverSetup, settings);
    return settings.safeErrors;
}

/// Whether a session that an exception has ended early wants it recorded: as its option string says or, without a
/// DriverSetup in that, as the configuration store does if the session has got as far as reading it.
bool wantsSafeErrors(const DriverSession* session, ViConstString optionString)
{
    const auto own = base::splitOptionString(optionString == nullptr ? "" : optionString).driverSetup;
    if (own)
        return asksForSafeErrors(*own);
    return session != nullptr && asksForSafeErrors(session->driverSetup());
}

/// In a catch block of init: records the exception, and closes and deletes the session.
ViStatus endInit(ViSession* vi, DriverSession* session)
{
    const ViSession handle = std::exchange(*vi, VI_NULL);
    if (session == nullptr)
        return drivekit::ReportError(handle, base::kErrorOutOfMemory);
    session->setRecordsExceptions(true);
    const ViStatus status = api::endWithException(*session);
    if (session->instrument())
        session->instrument()->close();
    deleteSession(handle, session);
    return status;
}

ViStatus initialize(const InitArguments& arguments, ViSession* vi)
{
    if (vi == nullptr)
        return base::kErrorNullPointer;
    *vi = VI_NULL;
    ViStatus status = IviSession_New(vi);
    if (status < 0)
        return status;
    DriverSession* session = nullptr;
    try {
        status = createSession(arguments, vi, session);
        return status < 0 ? status : finishInit(arguments.reset, *vi);
    } catch (const std::bad_alloc&) {
        return endInit(vi, session);
    } catch (...) {
        if (!wantsSafeErrors(session, arguments.optionString))
            throw;
        return endInit(vi, session);
    }
}

ViStatus resetInstrument(ViSession vi)
{
    return api::framedSession(
        vi, [](DriverSession& session) { return api::recordFailure(session, session.instrument()->reset()); });
}

std::string instrumentRevision(const DriverSession& session)
{
    if (session.simulate())
        return "Sim" + std::string(drivekit::kDriverRevision);
    return session.instrument()->identity()->firmwareRevision;
}

/// Tells the listeners that a session is about to be closed, which nothing that one of them throws keeps back where the
/// session records exceptions.
void notifyListeners(ViSession vi, DriverSession* session)
{
    const auto notify = [vi](const auto& /*session*/) -> ViStatus {
        drivekit::notifyCloseListeners(vi);
        return VI_SUCCESS;
    };
    if (session == nullptr)
        notify(session);
    else
        api::guarded(*session, api::Exceptions::AsTheSessionHasIt, notify);
}

ViStatus reportUnknownCode(ViSession vi, ViStatus code)
{
    if (vi == VI_NULL)
        return base::kErrorInvalidValue;
    return drivekit::ReportErrorWithElaboration(vi, base::kErrorInvalidValue, drivekit::elaborations::kUnknownCode,
                                                {drivekit::DecimalArgument(code), "error_message", "ErrorCode"});
}

} // namespace

ViStatus _VI_FUNC KVX2800T_init(ViRsrc ResourceName, ViBoolean IdQuery, ViBoolean Reset, ViSession* Vi)
{
    return initialize({ResourceName, IdQuery, Reset, ""}, Vi);
}

ViStatus _VI_FUNC KVX2800T_InitWithOptions(ViRsrc ResourceName, ViBoolean IdQuery, ViBoolean Reset,
                                           ViConstString OptionString, ViSession* Vi)
{
    return initialize({ResourceName, IdQuery, Reset, OptionString}, Vi);
}

ViStatus _VI_FUNC KVX2800T_close(ViSession Vi)
{
    ViAddr data = nullptr;
    if (IviSession_GetDataPtr(Vi, &data) < 0)
        return base::kErrorInvalidSessionHandle;
    notifyListeners(Vi, static_cast<DriverSession*>(data));
    const ViStatus status = IviSession_GetDataPtr(Vi, &data);
    if (status < 0 || data == nullptr)
        return status;
    auto* const session = static_cast<DriverSession*>(data);
    api::guarded(*session, api::Exceptions::AsTheSessionHasIt, [](DriverSession& closed) { return closed.Close(); });
    delete session;
    const ViStatus disposed = IviSession_Dispose(Vi);
    // A handle that stays must not lead to what is gone.
    if (disposed < 0)
        IviSession_SetDataPtr(Vi, VI_NULL);
    return disposed;
}

ViStatus _VI_FUNC KVX2800T_LockSession(ViSession Vi, ViBoolean* CallerHasLock)
{
    return api::framed(Vi, [&] { return IviSession_Lock(Vi, CallerHasLock); });
}

ViStatus _VI_FUNC KVX2800T_UnlockSession(ViSession Vi, ViBoolean* CallerHasLock)
{
    return api::framed(Vi, [&] { return IviSession_Unlock(Vi, CallerHasLock); });
}

ViStatus _VI_FUNC KVX2800T_GetError(ViSession Vi, ViStatus* ErrorCode, ViInt32 ErrorDescriptionBufferSize,
                                    ViChar ErrorDescription[])
{
    return IviSession_GetError(Vi, ErrorDescriptionBufferSize, ErrorCode, ErrorDescription);
}

ViStatus _VI_FUNC KVX2800T_ClearError(ViSession Vi)
{
    return IviSession_ClearError(Vi);
}

ViStatus _VI_FUNC KVX2800T_error_message(ViSession Vi, ViStatus ErrorCode, ViChar ErrorMessage[])
{
    const ViStatus status = api::checkPointers(Vi, "KVX2800T_error_message", "ErrorMessage", ErrorMessage);
    if (status < 0)
        return status;
    const std::string_view message = drivekit::GetErrorMessage(ErrorCode);
    if (message.empty())
        return reportUnknownCode(Vi, ErrorCode);
    api::copyText(ErrorMessage, api::kTextBufferSize, message);
    return VI_SUCCESS;
}

ViStatus _VI_FUNC KVX2800T_error_query(ViSession Vi, ViInt32* ErrorCode, ViChar ErrorMessage[])
{
    return api::framedSession(Vi, [&](DriverSession& session) {
        ViStatus status =
            api::checkPointers(Vi, "KVX2800T_error_query", "ErrorCode, ErrorMessage", ErrorCode, ErrorMessage);
        if (status < 0)
            return status;
        ViInt32 code = 0;
        std::string message;
        status = session.instrument()->nextError(code, message);
        if (status == VI_SUCCESS) {
            *ErrorCode = code;
            api::copyText(ErrorMessage, api::kTextBufferSize, message);
        }
        return api::recordFailure(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_reset(ViSession Vi)
{
    return resetInstrument(Vi);
}

ViStatus _VI_FUNC KVX2800T_ResetWithDefaults(ViSession Vi)
{
    return resetInstrument(Vi);
}

ViStatus _VI_FUNC KVX2800T_Disable(ViSession Vi)
{
    return api::framedSession(Vi, [](DriverSession& session) {
        TSRO::InstBase& instrument = *session.instrument();
        ViStatus status = instrument.writeRaw(TSRO::kAllOutputsOff);
        // The operation does not tell how the write went.
        if (status >= 0 && session.settings().trueReadings && instrument.connectionStatus() < 0)
            status = base::kErrorIo;
        return api::recordFailure(session, status);
    });
}

ViStatus _VI_FUNC KVX2800T_self_test(ViSession Vi, ViInt16* TestResult, ViChar TestMessage[])
{
    return api::framed(Vi, [&] {
        const ViStatus status =
            api::checkPointers(Vi, "KVX2800T_self_test", "TestResult, TestMessage", TestResult, TestMessage);
        return status < 0 ? status : base::kWarnNsupSelfTest;
    });
}

ViStatus _VI_FUNC KVX2800T_revision_query(ViSession Vi, ViChar DriverRev[], ViChar InstrRev[])
{
    return api::framedSession(Vi, [&](DriverSession& session) {
        const ViStatus status =
            api::checkPointers(Vi, "KVX2800T_revision_query", "DriverRev, InstrRev", DriverRev, InstrRev);
        if (status < 0)
            return status;
        api::copyText(DriverRev, api::kTextBufferSize, drivekit::kDriverRevision);
        api::copyText(InstrRev, api::kTextBufferSize, instrumentRevision(session));
        return status;
    });
}

ViStatus _VI_FUNC KVX2800T_InvalidateAllAttributes(ViSession Vi)
{
    return api::framedSession(Vi, [](DriverSession& session) -> ViStatus {
        session.InvalidateAllAttributes();
        return VI_SUCCESS;
    });
}
