#include "tests/support/processes/line_client.h"

#include "tests/support/processes/child_process.h"

#include <asio.hpp>

#include <chrono>

namespace kvxtest
{
struct LineClient::Link
{
    asio::io_context context{1};
    asio::ip::tcp::socket socket{context};
    std::string received;

    /// Runs one asynchronous operation to its end or to the hang guard.
    template <class Start>
    asio::error_code complete(Start start)
    {
        asio::error_code result = asio::error::timed_out;
        start([&result](asio::error_code error, auto&&...) { result = error; });
        context.restart();
        context.run_for(kHangGuard);
        if (!context.stopped()) {
            // The operation still refers to this frame.
            asio::error_code ignored;
            socket.close(ignored);
            context.run();
            result = asio::error::timed_out;
        }
        return result;
    }

    std::string take(std::size_t count)
    {
        auto bytes = received.substr(0, count);
        received.erase(0, count);
        return bytes;
    }
};

namespace
{

void throwOn(asio::error_code error, const char* what)
{
    if (error)
        throw std::system_error(error, what);
}

} // namespace

LineClient::LineClient(unsigned short port) : link_(std::make_unique<Link>())
{
    const asio::ip::tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
    throwOn(link_->complete([&](auto done) { link_->socket.async_connect(endpoint, done); }), "connect");
    link_->socket.set_option(asio::ip::tcp::no_delay(true));
}

LineClient::~LineClient() = default;
LineClient::LineClient(LineClient&&) noexcept = default;
LineClient& LineClient::operator=(LineClient&&) noexcept = default;

void LineClient::send(std::string_view bytes)
{
    throwOn(link_->complete([&](auto done) { asio::async_write(link_->socket, asio::buffer(bytes), done); }), "send");
}

std::string LineClient::readLine()
{
    throwOn(link_->complete([&](auto done) {
        asio::async_read_until(link_->socket, asio::dynamic_buffer(link_->received), '\n', done);
    }),
            "read a line");
    auto line = link_->take(link_->received.find('\n') + 1);
    line.pop_back();
    return line;
}

std::string LineClient::readBytes(std::size_t count)
{
    if (link_->received.size() < count)
        throwOn(link_->complete([&](auto done) {
            asio::async_read(link_->socket, asio::dynamic_buffer(link_->received),
                             asio::transfer_exactly(count - link_->received.size()), done);
        }),
                "read bytes");
    return link_->take(count);
}

std::string LineClient::query(std::string_view line)
{
    send(std::string(line) + '\n');
    return readLine();
}

bool LineClient::waitForEnd()
{
    const auto error = link_->complete([&](auto done) {
        asio::async_read(link_->socket, asio::dynamic_buffer(link_->received), asio::transfer_all(), done);
    });
    link_->received.clear();
    return error == asio::error::eof || error == asio::error::connection_reset;
}

} // namespace kvxtest
