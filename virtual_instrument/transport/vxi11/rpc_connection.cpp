#include "virtual_instrument/transport/vxi11/rpc_connection.h"

#include <utility>

namespace kvxvirtual::vxi11
{
namespace
{

using asio::ip::tcp;

/// A client may send a call before the one before is answered, and not many.
constexpr std::size_t kMostAhead = 2 * RecordAssembler::kLongestRecord;

} // namespace

RpcConnection::RpcConnection(tcp::socket socket, std::unique_ptr<RpcService> service, Ended ended)
    : socket_(std::move(socket)), service_(std::move(service)), ended_(std::move(ended))
{
}

void RpcConnection::start()
{
    asio::error_code error;
    socket_.non_blocking(true, error);
    if (error)
        return close();
    read();
}

void RpcConnection::close()
{
    if (std::exchange(isOver_, true))
        return;
    asio::error_code ignored;
    socket_.close(ignored);
    asio::post(socket_.get_executor(), [self = shared_from_this()] {
        self->service_.reset();
        if (const auto ended = std::exchange(self->ended_, nullptr))
            ended(self);
    });
}

void RpcConnection::abandon()
{
    isOver_ = true;
    ended_ = nullptr;
    asio::error_code ignored;
    socket_.close(ignored);
    service_.reset();
}

std::uint64_t RpcConnection::bytesWaiting()
{
    tcp::socket::bytes_readable waiting;
    asio::error_code error;
    socket_.io_control(waiting, error);
    return error ? 0 : waiting.get();
}

bool RpcConnection::hasReached(std::uint64_t bytes)
{
    return isBusy_ || isOver_ || bytesRead_ >= bytes || bytesWaiting() == 0;
}

void RpcConnection::read()
{
    if (isReading_ || isOver_ || records_.waitingBytes() > kMostAhead)
        return;
    isReading_ = true;
    socket_.async_wait(tcp::socket::wait_read, [self = shared_from_this()](asio::error_code error) {
        self->isReading_ = false;
        if (error)
            return self->close();
        self->bytesCame();
    });
}

void RpcConnection::bytesCame()
{
    asio::error_code error;
    const auto count = socket_.read_some(asio::buffer(chunk_), error);
    if (error && error != asio::error::would_block)
        return close();
    bytesRead_ += count;
    records_.append({chunk_.data(), count});
    work();
    read();
}

void RpcConnection::work()
{
    while (!isBusy_ && !isOver_) {
        const auto record = records_.next();
        if (records_.overrun())
            return close();
        if (!record)
            return;
        const auto message = readMessage(*record);
        if (message.call)
            carryOut(*message.call);
        else if (!message.reply.empty())
            send(message.reply);
        else
            return close();
    }
}

void RpcConnection::carryOut(const RpcCall& call)
{
    isBusy_ = true;
    // A reply that comes at once is followed by the next call in work(); one that comes later, out of whatever has
    // brought it about, is not: the next call may end what that is.
    const auto isWithin = std::make_shared<bool>(true);
    service_->call(call, [weak = weak_from_this(), number = call.number, isWithin](const RpcAnswer& answer) {
        const auto self = weak.lock();
        if (self == nullptr || self->isOver_)
            return;
        self->isBusy_ = false;
        self->send(replyTo(number, answer));
        if (!*isWithin)
            self->workLater();
    });
    *isWithin = false;
}

void RpcConnection::workLater()
{
    asio::post(socket_.get_executor(), [self = shared_from_this()] {
        self->work();
        self->read();
    });
}

void RpcConnection::send(const std::string& message)
{
    output_ = asRecord(message);
    asio::error_code error;
    const auto sent = socket_.write_some(asio::buffer(output_), error);
    if (error && error != asio::error::would_block)
        return close();
    if (sent == output_.size())
        return;
    isBusy_ = true;
    asio::async_write(socket_, asio::buffer(output_) + sent,
                      [self = shared_from_this()](asio::error_code failure, std::size_t) {
                          if (failure)
                              return self->close();
                          self->isBusy_ = false;
                          self->work();
                          self->read();
                      });
}

} // namespace kvxvirtual::vxi11
