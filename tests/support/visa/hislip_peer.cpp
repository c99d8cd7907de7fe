#include "tests/support/visa/hislip_peer.h"

#include <asio/buffer.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <gtest/gtest-printers.h>

#include <ostream>

namespace kvxtest
{
namespace
{

using asio::ip::tcp;

constexpr std::size_t kHeaderSize = 16;
constexpr unsigned kNothing = 999;
constexpr std::uint32_t kSessionId = 0x1234;
constexpr std::uint32_t kVendorId = 0x5858;

void append(std::string& bytes, std::uint64_t number, unsigned count)
{
    for (unsigned shift = count * 8; shift > 0; shift -= 8)
        bytes += static_cast<char>(number >> (shift - 8));
}

std::uint64_t numberIn(const std::string& bytes, std::size_t begin, std::size_t count)
{
    std::uint64_t number = 0;
    for (std::size_t i = begin; i < begin + count; ++i)
        number = number << 8U | static_cast<unsigned char>(bytes[i]);
    return number;
}

} // namespace

void PrintTo(const HislipMessage& message, std::ostream* out)
{
    *out << message.type << ' ' << message.control << ' ' << std::hex << message.parameter << std::dec << ' '
         << testing::PrintToString(message.payload);
}

namespace hislip
{

std::string bytesOf(const HislipMessage& message, std::uint64_t length)
{
    std::string bytes = "HS";
    append(bytes, message.type, 1);
    append(bytes, message.control, 1);
    append(bytes, message.parameter, 4);
    append(bytes, length, 8);
    return bytes + message.payload;
}

std::string bytesOf(const HislipMessage& message)
{
    return bytesOf(message, message.payload.size());
}

std::string size(std::uint64_t bytes)
{
    std::string text;
    append(text, bytes, 8);
    return text;
}

} // namespace hislip

void HislipEnd::accept(tcp::acceptor& acceptor)
{
    socket_ = acceptor.accept();
    socket_.set_option(tcp::no_delay(true));
}

void HislipEnd::sendBytes(const std::string& bytes)
{
    asio::error_code ignored;
    asio::write(socket_, asio::buffer(bytes), ignored);
}

std::string HislipEnd::receiveBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    asio::error_code error;
    bytes.resize(asio::read(socket_, asio::buffer(bytes), error));
    return bytes;
}

HislipMessage HislipEnd::receive()
{
    const auto header = receiveBytes(kHeaderSize);
    if (header.size() < kHeaderSize || header.substr(0, 2) != "HS")
        return {kNothing, 0, 0, header};
    return {static_cast<unsigned>(numberIn(header, 2, 1)), static_cast<unsigned>(numberIn(header, 3, 1)),
            static_cast<std::uint32_t>(numberIn(header, 4, 4)),
            receiveBytes(static_cast<std::size_t>(numberIn(header, 8, 8)))};
}

HislipPeer::HislipPeer() : acceptor_(context_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)) {}

std::string HislipPeer::resource(const std::string& device) const
{
    return "TCPIP0::127.0.0.1::" + device + ',' + std::to_string(port()) + "::INSTR";
}

void HislipPeer::greet(std::uint32_t version, unsigned features)
{
    sync_.accept(acceptor_);
    initialize = sync_.receive();
    sync_.send({hislip::kInitializeResponse, features, version << 16U | kSessionId});
}

void HislipPeer::join()
{
    async_.accept(acceptor_);
    asyncInitialize = async_.receive();
    async_.send({hislip::kAsyncInitializeResponse, 0, kVendorId});
}

void HislipPeer::negotiate(std::uint64_t largest)
{
    maximumSize = async_.receive();
    async_.send({hislip::kAsyncMaximumMessageSizeResponse, 0, 0, hislip::size(largest)});
}

void HislipPeer::welcome(const Welcome& welcome)
{
    greet(welcome.version, welcome.features);
    join();
    if (welcome.clears) {
        async_.receive();
        async_.send({hislip::kAsyncDeviceClearAcknowledge, 1});
        sync_.receive();
        sync_.send({hislip::kDeviceClearAcknowledge});
    }
    negotiate(welcome.largest);
}

} // namespace kvxtest
