#pragma once

#include "visa/host/host_error.h"
#include "visa/session/session_registry.h"

#include <visa.h>

#include <new>
#include <system_error>

namespace visa
{

/// The frame of every function: no exception leaves the library.
template <class Action>
ViStatus guarded(Action action) noexcept
{
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return VI_ERROR_ALLOC;
    } catch (const std::system_error& failure) {
        return isExhaustion(failure.code()) ? VI_ERROR_ALLOC : VI_ERROR_SYSTEM_ERROR;
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

} // namespace visa
