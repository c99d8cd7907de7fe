#pragma once

#include "virtual_instrument/transport/connection.h"
#include "virtual_instrument/transport/hislip/hislip_message.h"

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kvxvirtual::hislip
{

/// One of the two TCP connections of a client: cuts what comes in into messages, whatever sizes they claim, and sends
/// messages without waiting. It reads no further while more than a little waits to be sent.
class MessageChannel final : public Connection, public std::enable_shared_from_this<MessageChannel>
{
public:
    /// What is to become of a message.
    enum class Use
    {
        Whole,  ///< given to received() at once; for payloads that are bounded
        Pieces, ///< given to received() piece by piece, as it comes in
        Drop,   ///< its payload is read and forgotten
        Hold,   ///< left where it is, with all behind it, until resume(), when it is asked for again
    };

    /// Who the messages are for. A call may end the channel, and may replace the receiver.
    class Receiver
    {
    public:
        Receiver() = default;
        Receiver(const Receiver&) = delete;
        Receiver& operator=(const Receiver&) = delete;
        virtual ~Receiver() = default;

        virtual Use arrived(MessageChannel& channel, const Header& header) = 0;
        /// `complete` with the last piece, which may be empty.
        virtual void received(MessageChannel& channel, const Header& header, std::string_view piece, bool complete) = 0;
        /// What has come does not begin as a message does.
        virtual void outOfStep(MessageChannel& channel) = 0;
        /// All that has come has been handled.
        virtual void idle(MessageChannel& channel) = 0;
        /// Everything has been sent.
        virtual void drained(MessageChannel& channel) = 0;
        /// The connection has ended; the last call.
        virtual void ended(MessageChannel& channel) = 0;
    };

    /// `ended` is called once, after the receiver's.
    MessageChannel(asio::ip::tcp::socket socket, std::string name, std::shared_ptr<Receiver> receiver,
                   std::function<void(const std::shared_ptr<Connection>&)> ended);

    void start();

    const std::string& name() const { return name_; }

    void setReceiver(std::shared_ptr<Receiver> receiver) { receiver_ = std::move(receiver); }

    void send(const Header& header, std::string_view payload = {});

    /// Ends the connection behind a fatal error, once that has been sent; what comes in is not looked at any more.
    void sendFatal(Fatal code, std::string_view text = {});
    void sendComplaint(Complaint code);

    /// Forgets the messages of which nothing has been sent.
    void dropUnsent();
    bool hasUnsent() const { return !output_.empty(); }

    /// Goes on behind Use::Hold.
    void resume();
    /// Reads on although messages wait to be sent.
    void readInSpiteOfOutput(bool enabled);

    /// Ends it without telling anybody.
    void abandon();

    // Connection
    void close() override;
    std::uint64_t bytesRead() const override { return bytesRead_; }
    std::uint64_t bytesWaiting() override;
    bool hasReached(std::uint64_t bytes) override;

private:
    enum class State
    {
        Reading, ///< waits for bytes
        Working, ///< handles those that have come
        Held,    ///< by the receiver
        Choked,  ///< by what it has to send
        Leaving, ///< says goodbye
        Ended
    };

    void read();
    void waitForBytes();
    void bytesCame();
    void work();
    void takeHeader();
    void beginPayload();
    void takePayload();
    bool choked() const { return !output_.empty() && !inSpiteOfOutput_; }
    /// Whether all is sent; otherwise it goes on when the host takes more.
    bool write();
    void writeLater();
    void leave();
    void saidGoodbye();

    asio::ip::tcp::socket socket_;
    asio::steady_timer goodbye_;
    std::string name_;
    std::shared_ptr<Receiver> receiver_;
    std::function<void(const std::shared_ptr<Connection>&)> ended_;

    State state_ = State::Reading;
    bool waiting_ = false;
    bool inSpiteOfOutput_ = false;
    std::array<char, 4096> chunk_{};
    std::string_view unread_; ///< of the chunk
    std::uint64_t bytesRead_ = 0;

    HeaderBytes headerBytes_{};
    std::size_t headerSize_ = 0;
    Header header_;
    bool inPayload_ = false;
    Use use_ = Use::Drop;
    std::uint64_t payloadLeft_ = 0;
    std::string whole_; ///< of a payload that is given at once

    std::deque<std::string> output_;
    std::size_t sent_ = 0; ///< of the first message
    bool writing_ = false;
};

} // namespace kvxvirtual::hislip
