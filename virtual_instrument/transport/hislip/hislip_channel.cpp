#include "virtual_instrument/transport/hislip/hislip_channel.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kvxvirtual::hislip
{
namespace
{

using asio::ip::tcp;

/// How long a client may take to read why it is cut off.
constexpr std::chrono::seconds kGoodbye{1};

} // namespace

MessageChannel::MessageChannel(tcp::socket socket, std::string name, std::shared_ptr<Receiver> receiver,
                               std::function<void(const std::shared_ptr<Connection>&)> ended)
    : socket_(std::move(socket)), goodbye_(socket_.get_executor()), name_(std::move(name)),
      receiver_(std::move(receiver)), ended_(std::move(ended))
{
}

void MessageChannel::start()
{
    asio::error_code error;
    socket_.non_blocking(true, error);
    // A reply that its client does not take would hold up everybody.
    if (error)
        return close();
    read();
}

// Input --------------------------------------------------------------------------------------------------------------

void MessageChannel::read()
{
    state_ = State::Reading;
    waitForBytes();
}

void MessageChannel::waitForBytes()
{
    if (std::exchange(waiting_, true))
        return;
    socket_.async_wait(tcp::socket::wait_read, [self = shared_from_this()](asio::error_code error) {
        self->waiting_ = false;
        if (error)
            return self->close();
        self->bytesCame();
    });
}

void MessageChannel::bytesCame()
{
    if (state_ != State::Reading && state_ != State::Leaving)
        return;
    asio::error_code error;
    const auto count = socket_.read_some(asio::buffer(chunk_), error);
    if (error == asio::error::would_block)
        return waitForBytes();
    if (error)
        return close();
    bytesRead_ += count;
    if (state_ == State::Leaving)
        return waitForBytes();
    unread_ = {chunk_.data(), count};
    work();
}

void MessageChannel::work()
{
    const auto self = shared_from_this();
    state_ = State::Working;
    while (state_ == State::Working && (headerSize_ == kHeaderSize || !unread_.empty())) {
        if (choked())
            state_ = State::Choked;
        else if (inPayload_)
            takePayload();
        else
            takeHeader();
    }
    if (state_ != State::Working)
        return;
    const auto receiver = receiver_;
    receiver->idle(*this);
    if (state_ == State::Working)
        read();
}

void MessageChannel::takeHeader()
{
    const auto count = std::min(unread_.size(), kHeaderSize - headerSize_);
    std::copy_n(unread_.begin(), count, headerBytes_.begin() + static_cast<std::ptrdiff_t>(headerSize_));
    headerSize_ += count;
    unread_.remove_prefix(count);
    if (headerSize_ < kHeaderSize)
        return;
    const auto receiver = receiver_;
    const auto header = parseHeader(headerBytes_);
    if (!header)
        return receiver->outOfStep(*this);
    header_ = *header;
    use_ = receiver->arrived(*this, header_);
    if (state_ != State::Working)
        return;
    if (use_ == Use::Hold)
        state_ = State::Held;
    else
        beginPayload();
}

void MessageChannel::beginPayload()
{
    headerSize_ = 0;
    payloadLeft_ = header_.length;
    whole_.clear();
    inPayload_ = true;
    if (payloadLeft_ == 0)
        takePayload();
}

void MessageChannel::takePayload()
{
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(unread_.size(), payloadLeft_));
    auto piece = unread_.substr(0, count);
    unread_.remove_prefix(count);
    payloadLeft_ -= count;
    const bool complete = payloadLeft_ == 0;
    inPayload_ = !complete;
    if (use_ == Use::Whole)
        piece = whole_ += piece;
    if (use_ == Use::Pieces || (use_ == Use::Whole && complete)) {
        const auto receiver = receiver_;
        receiver->received(*this, header_, piece, complete);
    }
}

void MessageChannel::resume()
{
    if (state_ == State::Held || (state_ == State::Choked && !choked()))
        work();
}

void MessageChannel::readInSpiteOfOutput(bool enabled)
{
    inSpiteOfOutput_ = enabled;
    resume();
}

// Output -------------------------------------------------------------------------------------------------------------

void MessageChannel::send(const Header& header, std::string_view payload)
{
    if (state_ == State::Leaving || state_ == State::Ended)
        return;
    output_.push_back(encode(header, payload));
    write();
}

void MessageChannel::sendComplaint(Complaint code)
{
    send({Type::Error, static_cast<std::uint8_t>(code)}, textOf(code));
}

void MessageChannel::sendFatal(Fatal code, std::string_view text)
{
    send({Type::FatalError, static_cast<std::uint8_t>(code)}, text.empty() ? textOf(code) : text);
    leave();
}

bool MessageChannel::write()
{
    if (writing_)
        return false;
    while (!output_.empty()) {
        asio::error_code error;
        const auto& message = output_.front();
        sent_ += socket_.write_some(asio::buffer(message) + sent_, error);
        if (error == asio::error::would_block) {
            writeLater();
            return false;
        }
        if (error) {
            // Whoever sends is not to find the channel ended.
            asio::post(socket_.get_executor(), [self = shared_from_this()] { self->close(); });
            output_.clear();
            sent_ = 0;
            return false;
        }
        if (sent_ == message.size()) {
            output_.pop_front();
            sent_ = 0;
        }
    }
    return true;
}

void MessageChannel::writeLater()
{
    writing_ = true;
    socket_.async_wait(tcp::socket::wait_write, [self = shared_from_this()](asio::error_code error) {
        self->writing_ = false;
        if (error)
            return self->close();
        if (!self->write())
            return;
        if (self->state_ == State::Leaving)
            return self->saidGoodbye();
        if (const auto receiver = self->receiver_)
            receiver->drained(*self);
        self->resume();
    });
}

void MessageChannel::dropUnsent()
{
    if (output_.size() > 1)
        output_.erase(output_.begin() + 1, output_.end());
    if (sent_ == 0)
        output_.clear();
}

// The end ------------------------------------------------------------------------------------------------------------

void MessageChannel::leave()
{
    if (state_ == State::Leaving || state_ == State::Ended)
        return;
    state_ = State::Leaving;
    goodbye_.expires_after(kGoodbye);
    goodbye_.async_wait([self = shared_from_this()](asio::error_code error) {
        if (!error)
            self->close();
    });
    if (output_.empty())
        saidGoodbye();
}

/// To close with input unread would take back from the client what it has not read yet.
void MessageChannel::saidGoodbye()
{
    asio::error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_send, ignored);
    waitForBytes();
}

void MessageChannel::abandon()
{
    receiver_.reset();
    ended_ = nullptr;
    close();
}

void MessageChannel::close()
{
    const auto self = shared_from_this();
    state_ = State::Ended;
    unread_ = {};
    headerSize_ = 0;
    output_.clear();
    sent_ = 0;
    asio::error_code ignored;
    socket_.close(ignored);
    goodbye_.cancel();
    if (const auto receiver = std::exchange(receiver_, nullptr))
        receiver->ended(*this);
    if (const auto ended = std::exchange(ended_, nullptr))
        ended(self);
}

std::uint64_t MessageChannel::bytesWaiting()
{
    tcp::socket::bytes_readable waiting;
    asio::error_code error;
    socket_.io_control(waiting, error);
    return error ? 0 : waiting.get();
}

bool MessageChannel::hasReached(std::uint64_t bytes)
{
    return state_ != State::Reading || bytesRead_ >= bytes || bytesWaiting() == 0;
}

} // namespace kvxvirtual::hislip
