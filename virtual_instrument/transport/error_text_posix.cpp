#include "virtual_instrument/transport/error_text.h"

namespace kvxvirtual
{

std::string messageOf(const std::error_code& error)
{
    return error.message();
}

} // namespace kvxvirtual
