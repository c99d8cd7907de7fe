#include "visa/host/host_error.h"

#include <asio/error.hpp>

#include <winsock2.h>

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

/// By number: those of Windows and of Winsock do not overlap, and std::errc has names for few of them.
template <class Numbers>
bool isOneOf(const std::error_code& error, const Numbers& numbers)
{
    const bool isHosts =
        error.category() == asio::error::get_system_category() || error.category() == std::system_category();
    return isHosts && std::find(numbers.begin(), numbers.end(), error.value()) != numbers.end();
}

} // namespace

bool isExhaustion(const std::error_code& error)
{
    constexpr std::array<int, 8> kNumbers{
        WSAEMFILE,
        WSAENOBUFS,
        ERROR_TOO_MANY_OPEN_FILES,
        ERROR_NOT_ENOUGH_MEMORY,
        ERROR_OUTOFMEMORY,
        ERROR_COMMITMENT_LIMIT,
        ERROR_NO_SYSTEM_RESOURCES,
        ERROR_NOT_ENOUGH_QUOTA,
    };
    return isOneOf(error, kNumbers);
}

bool isOccupied(const std::error_code& error)
{
    constexpr std::array<int, 3> kNumbers{ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_BUSY};
    return isOneOf(error, kNumbers);
}

} // namespace visa
