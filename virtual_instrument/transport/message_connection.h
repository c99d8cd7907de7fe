#pragma once

#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/journal.h"

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace kvxvirtual
{

/// A stream of bytes from one client (a socket, a serial line) to the instrument and back. It reads no further while a
/// reply is on its way, so a client that does not take its replies holds up nobody else and fills no memory.
template <class Stream>
class MessageConnection final : public Connection, public std::enable_shared_from_this<MessageConnection<Stream>>
{
public:
    using Ended = std::function<void(MessageConnection&)>;

    /// `name` is the client's in the journal. `ended` is called once, when the stream has ended.
    MessageConnection(Stream stream, std::string name, VirtualInstrument& instrument, Journal& journal, Ended ended)
        : stream_(std::move(stream)), delayTimer_(stream_.get_executor()), name_(std::move(name)),
          instrument_(instrument), journal_(journal), ended_(std::move(ended))
    {
        asio::error_code ignored;
        stream_.non_blocking(true, ignored);
    }

    void start() { read(); }

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

    bool hasReached(std::uint64_t bytes) const override
    {
        if (state_ == State::Reading)
            return bytesRead_ >= bytes;
        return state_ != State::Replying;
    }

    std::uint64_t steps() const override { return steps_; }

private:
    enum class State
    {
        Reading,
        Delaying,
        Replying,
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
        bytesRead_ += count;
        ++steps_;
        lines_.append({chunk_.data(), count});
        executeLines();
    }

    void executeLines()
    {
        while (const auto line = lines_.next()) {
            if (auto response = execute(*line))
                return reply(std::move(*response));
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

    void reply(Response response)
    {
        reply_ = std::move(response.bytes);
        if (response.delay.count() == 0)
            return write();
        state_ = State::Delaying;
        delayTimer_.expires_after(response.delay);
        delayTimer_.async_wait([self = this->shared_from_this()](asio::error_code error) {
            if (!error)
                self->write();
        });
    }

    void write()
    {
        state_ = State::Replying;
        journal_.sent(name_, reply_);
        asio::async_write(stream_, asio::buffer(reply_),
                          [self = this->shared_from_this()](asio::error_code error, std::size_t) {
                              if (error)
                                  return self->close();
                              ++self->steps_;
                              self->executeLines();
                          });
    }

    Stream stream_;
    asio::steady_timer delayTimer_;
    std::string name_;
    VirtualInstrument& instrument_;
    Journal& journal_;
    Ended ended_;
    LineAssembler lines_;
    std::array<char, 4096> chunk_{};
    std::string reply_;
    std::uint64_t bytesRead_ = 0;
    std::uint64_t steps_ = 0;
    State state_ = State::Reading;
};

} // namespace kvxvirtual
