#include "virtual_instrument/transport/serial_line.h"

#include <stdexcept>

namespace kvxvirtual
{

SerialLine openSerialLine(asio::io_context&, VirtualInstrument&, Journal&)
{
    throw std::runtime_error("cannot offer a serial line: Windows has no pseudo terminals");
}

} // namespace kvxvirtual
