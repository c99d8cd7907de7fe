#include "virtual_instrument/transport/error_text.h"

#include <winsock2.h>

#include <algorithm>
#include <array>

namespace kvxvirtual
{
namespace
{

struct KnownError
{
    int code;
    const char* text;
};

constexpr std::array kKnownErrors{
    KnownError{WSAEACCES, "Permission denied"},
    KnownError{WSAEADDRINUSE, "Address already in use"},
    KnownError{WSAEADDRNOTAVAIL, "Cannot assign requested address"},
};

} // namespace

std::string messageOf(const std::error_code& error)
{
    const auto* const known = std::ranges::find(kKnownErrors, error.value(), &KnownError::code);
    return known == kKnownErrors.end() ? error.message() : known->text;
}

} // namespace kvxvirtual
