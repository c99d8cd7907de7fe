#pragma once

#include "virtual_instrument/transport/message_connection.h"

#include <asio.hpp>
#include <memory>
#include <string>

namespace kvxvirtual
{

/// A serial line that other programs can open, and the instrument at its other end.
struct SerialLine
{
    /// What other programs open.
    std::string path;
    std::shared_ptr<Connection> connection;
};

/// Opens a raw serial line (bytes pass unchanged both ways, no echo) and starts serving it. Throws std::system_error
/// when this host has none to give at the moment, and std::runtime_error with the whole complaint when it never has.
SerialLine openSerialLine(asio::io_context& context, VirtualInstrument& instrument, Journal& journal);

} // namespace kvxvirtual
