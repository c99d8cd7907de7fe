#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace kvxtest
{

/// A message of HiSLIP as it crosses the network, by the numbers of the standard.
struct HislipMessage
{
    unsigned type = 0;
    unsigned control = 0;
    std::uint32_t parameter = 0;
    std::string payload{};
    bool operator==(const HislipMessage&) const = default;
};

void PrintTo(const HislipMessage& message, std::ostream* out);

namespace hislip
{
inline constexpr unsigned kInitialize = 0;
inline constexpr unsigned kInitializeResponse = 1;
inline constexpr unsigned kFatalError = 2;
inline constexpr unsigned kError = 3;
inline constexpr unsigned kAsyncLock = 4;
inline constexpr unsigned kAsyncLockResponse = 5;
inline constexpr unsigned kData = 6;
inline constexpr unsigned kDataEnd = 7;
inline constexpr unsigned kDeviceClearComplete = 8;
inline constexpr unsigned kDeviceClearAcknowledge = 9;
inline constexpr unsigned kAsyncRemoteLocalControl = 10;
inline constexpr unsigned kAsyncRemoteLocalResponse = 11;
inline constexpr unsigned kTrigger = 12;
inline constexpr unsigned kInterrupted = 13;
inline constexpr unsigned kAsyncInterrupted = 14;
inline constexpr unsigned kAsyncMaximumMessageSize = 15;
inline constexpr unsigned kAsyncMaximumMessageSizeResponse = 16;
inline constexpr unsigned kAsyncInitialize = 17;
inline constexpr unsigned kAsyncInitializeResponse = 18;
inline constexpr unsigned kAsyncDeviceClear = 19;
inline constexpr unsigned kAsyncServiceRequest = 20;
inline constexpr unsigned kAsyncStatusQuery = 21;
inline constexpr unsigned kAsyncStatusResponse = 22;
inline constexpr unsigned kAsyncDeviceClearAcknowledge = 23;
inline constexpr unsigned kAsyncLockInfo = 24;
inline constexpr unsigned kAsyncLockInfoResponse = 25;

inline constexpr std::uint32_t kFirstId = 0xFFFFFF00;
inline constexpr std::uint32_t kBeforeFirstId = 0xFFFFFEFE;

/// The message with a length that need not be that of its payload.
std::string bytesOf(const HislipMessage& message, std::uint64_t length);
std::string bytesOf(const HislipMessage& message);
/// Eight bytes.
std::string size(std::uint64_t bytes);
} // namespace hislip

/// One of a client's connections, seen by the device. Calls wait; what is sent ahead of its question waits there.
class HislipEnd
{
public:
    explicit HislipEnd(asio::io_context& context) : socket_(context) {}

    void accept(asio::ip::tcp::acceptor& acceptor);
    void send(const HislipMessage& message) { sendBytes(hislip::bytesOf(message)); }
    void sendBytes(const std::string& bytes);
    /// A message of type 999 when the connection ends first.
    HislipMessage receive();
    std::string receiveBytes(std::size_t count);
    bool isAtEnd() { return receiveBytes(1).empty(); }
    /// Whether the client has sent something that was not received.
    bool hasInput() { return socket_.available() > 0; }
    void close() { socket_.close(); }

private:
    asio::ip::tcp::socket socket_;
};

/// A device that says what a test has it say.
class HislipPeer
{
public:
    HislipPeer();

    /// "TCPIP0::127.0.0.1::hislip0,<port>::INSTR"
    std::string resource(const std::string& device = "hislip0") const;
    unsigned short port() const { return acceptor_.local_endpoint().port(); }

    /// What a client that opens a session expects, with what it is told.
    struct Welcome
    {
        std::uint32_t version = 0x0100;
        unsigned features = 0;
        std::uint64_t largest = 0x100000 + 16;
        bool clears = false; ///< the device prefers overlapped, and is told otherwise
    };
    void welcome(const Welcome& welcome);
    /// The same step by step.
    void greet(std::uint32_t version, unsigned features);
    void join();
    void negotiate(std::uint64_t largest);

    HislipEnd& sync() { return sync_; }
    HislipEnd& async() { return async_; }
    asio::ip::tcp::acceptor& acceptor() { return acceptor_; }

    HislipMessage initialize; ///< the client's
    HislipMessage asyncInitialize;
    HislipMessage maximumSize;

private:
    asio::io_context context_;
    asio::ip::tcp::acceptor acceptor_;
    HislipEnd sync_{context_};
    HislipEnd async_{context_};
};

} // namespace kvxtest
