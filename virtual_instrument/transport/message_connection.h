#pragma once

#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/http_guard.h"
#include "virtual_instrument/transport/journal.h"

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kvxvirtual
{

/// A stream of bytes from one client (a socket, a serial line) to the instrument and back. What waits for the client is
/// one reply and what the host holds for it; when the host takes no more, nothing is read from this client until it has
/// taken its replies, which holds up nobody else and fills no memory.
template <class Stream>
class MessageConnection final : public Connection, public std::enable_shared_from_this<MessageConnection<Stream>>
{
public:
    using Ended = std::function<void(MessageConnection&)>;

    /// `name` is the client's in the journal. `ended` is called once, when the stream has ended. With `guard`, an HTTP
    /// request ends it before anything is executed.
    MessageConnection(Stream stream, std::string name, VirtualInstrument& instrument, Journal& journal, Ended ended,
                      std::optional<HttpGuard> guard)
        : stream_(std::move(stream)), delayTimer_(stream_.get_executor()), name_(std::move(name)),
          instrument_(instrument), journal_(journal), ended_(std::move(ended)), guard_(std::move(guard))
    {
    }

    void start()
    {
        asio::error_code error;
        stream_.non_blocking(true, error);
        // A reply that its client does not take would hold up everybody.
        if (error)
            return close();
        read();
    }

    const std::string& name() const { return name_; }

    void close() override
    {
        state_ = State::Ended;
        asio::error_code ignored;
        stream_.close(ignored);
        delayTimer_.cancel();
        if (const auto ended = std::exchange(ended_, nullptr))
            ended(*this);
    }

    std::uint64_t bytesRead() const override { return bytesRead_; }

    std::uint64_t bytesWaiting() override
    {
        typename Stream::bytes_readable waiting;
        asio::error_code error;
        stream_.io_control(waiting, error);
        return error ? 0 : waiting.get();
    }

    bool hasReached(std::uint64_t bytes) override
    {
        // What a client has discarded on its way (a serial line's output) never comes.
        return state_ != State::Reading || bytesRead_ >= bytes || bytesWaiting() == 0;
    }

private:
    enum class State
    {
        Reading,
        Delaying,
        Blocked,
        Ended
    };

    void read()
    {
        state_ = State::Reading;
        // An asynchronous read could hold bytes that neither bytesRead() nor bytesWaiting() counts.
        stream_.async_wait(Stream::wait_read, [self = this->shared_from_this()](asio::error_code error) {
            if (error)
                return self->close();
            self->readWaiting();
        });
    }

    void readWaiting()
    {
        asio::error_code error;
        const auto count = stream_.read_some(asio::buffer(chunk_), error);
        if (error == asio::error::would_block)
            return read();
        if (error)
            return close();
        take({chunk_.data(), count});
    }

    void take(std::string_view bytes)
    {
        bytesRead_ += bytes.size();
        if (guard_ && guard_->detects(bytes)) {
            journal_.refusedHttp(name_);
            return close();
        }
        lines_.append(bytes);
        executeLines();
    }

    void executeLines()
    {
        while (const auto line = lines_.next()) {
            auto response = execute(*line);
            if (response && !reply(std::move(*response)))
                return;
        }
        read();
    }

    std::optional<Response> execute(const LineAssembler::Line& line)
    {
        if (line.overrun) {
            journal_.overrun(name_);
            instrument_.inputOverrun();
            return std::nullopt;
        }
        journal_.received(name_, line.bytes);
        return instrument_.receive(line.bytes);
    }

    /// Whether the reply has left; otherwise executeLines() is called when it has.
    bool reply(Response response)
    {
        reply_ = std::move(response.bytes);
        if (response.delay.count() == 0)
            return write();
        state_ = State::Delaying;
        delayTimer_.expires_after(response.delay);
        delayTimer_.async_wait([self = this->shared_from_this()](asio::error_code error) {
            if (!error && self->write())
                self->executeLines();
        });
        return false;
    }

    bool write()
    {
        journal_.sent(name_, reply_);
        asio::error_code error;
        const auto count = stream_.write_some(asio::buffer(reply_), error);
        if (error && error != asio::error::would_block) {
            close();
            return false;
        }
        if (count < reply_.size())
            writeRest(count);
        return count == reply_.size();
    }

    void writeRest(std::size_t begin)
    {
        state_ = State::Blocked;
        asio::async_write(stream_, asio::buffer(reply_) + begin,
                          [self = this->shared_from_this()](asio::error_code error, std::size_t) {
                              if (error)
                                  return self->close();
                              self->executeLines();
                          });
    }

    Stream stream_;
    asio::steady_timer delayTimer_;
    std::string name_;
    VirtualInstrument& instrument_;
    Journal& journal_;
    Ended ended_;
    std::optional<HttpGuard> guard_;
    LineAssembler lines_;
    std::array<char, 4096> chunk_{};
    std::string reply_;
    std::uint64_t bytesRead_ = 0;
    State state_ = State::Reading;
};

} // namespace kvxvirtual
