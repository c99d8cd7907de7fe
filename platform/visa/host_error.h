#pragma once

#include <asio/error.hpp>

#include <system_error>

namespace visa
{

/// The host's error in a category that compares with std::errc; Asio's own category for such errors does not.
inline std::error_code hostError(const std::error_code& error)
{
    return error.category() == asio::error::get_system_category()
               ? std::error_code(error.value(), std::system_category())
               : error;
}

/// Whether the host failed for want of descriptors or memory, which is VI_ERROR_ALLOC wherever it happens.
inline bool isExhaustion(const std::error_code& error)
{
    const std::error_code reason = hostError(error);
    return reason == std::errc::too_many_files_open || reason == std::errc::too_many_files_open_in_system ||
           reason == std::errc::not_enough_memory || reason == std::errc::no_buffer_space;
}

} // namespace visa
