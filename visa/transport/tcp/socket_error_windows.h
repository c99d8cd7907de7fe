#pragma once

#include <asio/error.hpp>

#include <winsock2.h>

namespace visa
{

/// What the calling thread's last call of Winsock failed with.
inline asio::error_code lastError()
{
    return {WSAGetLastError(), asio::error::get_system_category()};
}

} // namespace visa
