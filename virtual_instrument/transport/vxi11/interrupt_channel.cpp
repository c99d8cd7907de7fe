#include "virtual_instrument/transport/vxi11/interrupt_channel.h"

#include "virtual_instrument/transport/vxi11/vxi11_protocol.h"
#include "virtual_instrument/transport/vxi11/xdr.h"

#include <utility>

namespace kvxvirtual::vxi11
{
namespace
{

constexpr std::size_t kMostUnsent = 65536;

} // namespace

InterruptChannel::InterruptChannel(asio::io_context& context, std::uint32_t program, std::uint32_t version)
    : socket_(context), limit_(context), program_(program), version_(version)
{
}

void InterruptChannel::connect(const asio::ip::tcp::endpoint& endpoint, std::chrono::milliseconds timeout,
                               std::function<void(bool)> then)
{
    limit_.expires_after(timeout);
    limit_.async_wait([weak = weak_from_this()](asio::error_code error) {
        const auto self = weak.lock();
        if (!error && self != nullptr)
            self->close();
    });
    socket_.async_connect(endpoint, [self = shared_from_this(), then = std::move(then)](asio::error_code error) {
        self->limit_.cancel();
        if (!error)
            self->readAnswers();
        then(!error);
    });
}

void InterruptChannel::requestService(const std::string& handle)
{
    if (unsent_.size() > kMostUnsent)
        return;
    unsent_ +=
        asRecord(encodeCall({++lastNumber_, program_, version_, kDeviceIntrSrq, XdrWriter().opaque(handle).bytes()}));
    if (sending_.empty())
        write();
}

void InterruptChannel::close()
{
    limit_.cancel();
    asio::error_code ignored;
    socket_.close(ignored);
}

void InterruptChannel::readAnswers()
{
    socket_.async_read_some(asio::buffer(answers_), [self = shared_from_this()](asio::error_code error, std::size_t) {
        if (error)
            return self->close();
        self->readAnswers();
    });
}

void InterruptChannel::write()
{
    sending_ = std::exchange(unsent_, {});
    asio::async_write(socket_, asio::buffer(sending_),
                      [self = shared_from_this()](asio::error_code error, std::size_t) {
                          self->sending_.clear();
                          if (error)
                              return self->close();
                          if (!self->unsent_.empty())
                              self->write();
                      });
}

} // namespace kvxvirtual::vxi11
