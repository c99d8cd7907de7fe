#include "virtual_instrument/transport/control_connection.h"

#include "virtual_instrument/scpi/text.h"

#include <utility>

namespace kvxvirtual
{
namespace
{

/// Takes as long for every wrong token of the right length.
bool isSame(std::string_view one, std::string_view other)
{
    unsigned int difference = one.size() == other.size() ? 0 : 1;
    for (std::size_t i = 0; i < one.size() && i < other.size(); ++i)
        difference |=
            static_cast<unsigned char>(one[i]) ^ static_cast<unsigned int>(static_cast<unsigned char>(other[i]));
    return difference == 0;
}

} // namespace

ControlConnection::ControlConnection(asio::ip::tcp::socket socket, std::string name, TestControl& control,
                                     Journal& journal, std::optional<std::string> token, WhenQuiet whenQuiet)
    : socket_(std::move(socket)), name_(std::move(name)), control_(control), journal_(journal),
      token_(std::move(token)), whenQuiet_(std::move(whenQuiet))
{
}

void ControlConnection::read()
{
    socket_.async_read_some(asio::buffer(chunk_),
                            [self = shared_from_this()](asio::error_code error, std::size_t count) {
                                if (error)
                                    return;
                                self->take({self->chunk_.data(), count});
                            });
}

void ControlConnection::take(std::string_view bytes)
{
    if (guard_.detects(bytes)) {
        journal_.refusedHttp(name_);
        return;
    }
    lines_.append(bytes);
    executeLines();
}

void ControlConnection::executeLines()
{
    const auto line = lines_.next();
    if (!line)
        return read();
    if (token_)
        return admit(*line);
    if (line->overrun)
        return write("error the line is too long\n");
    whenQuiet_([self = shared_from_this(), text = line->bytes] { self->write(self->control_.execute(text)); });
}

void ControlConnection::admit(const LineAssembler::Line& line)
{
    const auto command = splitWord(trimmed(line.bytes));
    if (command.word != "token" || !isSame(command.rest, *token_))
        return refuse();
    token_.reset();
    write("ok\n");
}

void ControlConnection::refuse()
{
    journal_.refusedControl(name_);
    answer_ = "error the first line has to be: token <token>\n";
    asio::async_write(socket_, asio::buffer(answer_), [self = shared_from_this()](asio::error_code, std::size_t) {
        // Its end is the end of the connection.
    });
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
