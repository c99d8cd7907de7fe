#include "virtual_instrument/transport/serial_line.h"

#include <array>
#include <cerrno>
#include <pty.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace kvxvirtual
{
namespace
{

using Descriptor = asio::posix::stream_descriptor;

/// The instrument's end of a pseudo terminal, which also holds the clients' end open: without that the line would hang
/// up whenever a client closes it, and would lose its raw mode.
class PseudoTerminal : public Descriptor
{
public:
    PseudoTerminal(asio::io_context& context, int instrumentEnd, int clientEnd)
        : Descriptor(context, instrumentEnd), clientEnd_(context, clientEnd)
    {
    }

private:
    Descriptor clientEnd_;
};

[[noreturn]] void throwLastError(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

SerialLine openSerialLine(asio::io_context& context, VirtualInstrument& instrument, Journal& journal)
{
    termios raw{};
    cfmakeraw(&raw);
    int instrumentEnd = -1;
    int clientEnd = -1;
    if (openpty(&instrumentEnd, &clientEnd, nullptr, &raw, nullptr) != 0)
        throwLastError("cannot open a pseudo terminal");
    PseudoTerminal terminal(context, instrumentEnd, clientEnd);

    std::array<char, 256> path{};
    if (const int error = ttyname_r(clientEnd, path.data(), path.size()); error != 0)
        throw std::system_error(error, std::generic_category(), "the pseudo terminal has no name");

    using SerialConnection = MessageConnection<PseudoTerminal>;
    const std::string name = path.data();
    const auto connection =
        std::make_shared<SerialConnection>(std::move(terminal), name, instrument, journal, nullptr, std::nullopt);
    connection->start();
    return {name, connection};
}

} // namespace kvxvirtual
