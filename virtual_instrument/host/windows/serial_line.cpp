#include "serial_line.h"

#include <system_error>

namespace kvxvirtual
{

SerialLine openSerialLine(asio::io_context&, VirtualInstrument&, Journal&)
{
    throw std::system_error(std::make_error_code(std::errc::not_supported), "Windows has no pseudo serial lines");
}

} // namespace kvxvirtual
