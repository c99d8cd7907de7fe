#include "standard_input.h"

#include <system_error>

namespace kvxvirtual
{

void whenStandardInputEnds(asio::io_context&, std::function<void()>)
{
    throw std::system_error(std::make_error_code(std::errc::not_supported), "Windows cannot wait for a pipe's end");
}

} // namespace kvxvirtual
