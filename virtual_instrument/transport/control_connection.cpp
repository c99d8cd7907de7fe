#include "virtual_instrument/transport/control_connection.h"

#include <utility>

namespace kvxvirtual
{

ControlConnection::ControlConnection(asio::ip::tcp::socket socket, TestControl& control, WhenQuiet whenQuiet)
    : socket_(std::move(socket)), control_(control), whenQuiet_(std::move(whenQuiet))
{
}

void ControlConnection::read()
{
    socket_.async_read_some(asio::buffer(chunk_),
                            [self = shared_from_this()](asio::error_code error, std::size_t count) {
                                if (error)
                                    return;
                                self->lines_.append({self->chunk_.data(), count});
                                self->executeLines();
                            });
}

void ControlConnection::executeLines()
{
    const auto line = lines_.next();
    if (!line)
        return read();
    if (line->overrun)
        return write("error the line is too long\n");
    whenQuiet_([self = shared_from_this(), text = line->bytes] { self->write(self->control_.execute(text)); });
}

void ControlConnection::write(std::string answer)
{
    answer_ = std::move(answer);
    asio::async_write(socket_, asio::buffer(answer_), [self = shared_from_this()](asio::error_code error, std::size_t) {
        if (!error)
            self->executeLines();
    });
}

} // namespace kvxvirtual
