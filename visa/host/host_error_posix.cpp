#include "visa/host/host_error.h"

#include <asio/error.hpp>

namespace visa
{
namespace
{

/// The error in a category that compares with std::errc; Asio's own category for such errors does not.
std::error_code comparable(const std::error_code& error)
{
    return error.category() == asio::error::get_system_category()
               ? std::error_code(error.value(), std::system_category())
               : error;
}

} // namespace

bool isExhaustion(const std::error_code& error)
{
    const std::error_code reason = comparable(error);
    return reason == std::errc::too_many_files_open || reason == std::errc::too_many_files_open_in_system ||
           reason == std::errc::not_enough_memory || reason == std::errc::no_buffer_space;
}

bool isOccupied(const std::error_code& error)
{
    const std::error_code reason = comparable(error);
    return reason == std::errc::device_or_resource_busy || reason == std::errc::permission_denied;
}

} // namespace visa
