// Any bytes to the HiSLIP server of the virtual instrument, over real connections of the loopback interface: it sends
// nothing but messages of HiSLIP, ends what is out of step, and serves another client afterwards. The input is cut into
// actions: a byte picks a channel and how the message is made, and the next ones are what it holds.
#include "fuzz/input.h"
#include "virtual_instrument/transport/server.h"

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace
{

using namespace kvxvirtual;
using asio::ip::tcp;
using kvxfuzz::Input;
using kvxfuzz::require;

/// One connection of a client.
struct Connected
{
    Connected(asio::io_context& context, const tcp::endpoint& server) : socket(context)
    {
        socket.connect(server);
        socket.non_blocking(true);
    }

    void send(std::string_view bytes)
    {
        asio::error_code ignored;
        socket.write_some(asio::buffer(bytes), ignored);
    }

    /// What has come; it must be messages.
    void receive()
    {
        std::array<char, 4096> chunk{};
        asio::error_code error;
        while (const auto count = socket.read_some(asio::buffer(chunk), error))
            received.append(chunk.data(), count);
        while (const auto message = first())
            received.erase(0, *message);
    }

    /// The length of the first message, when it is complete.
    std::optional<std::size_t> first() const
    {
        if (received.size() < hislip::kHeaderSize)
            return std::nullopt;
        hislip::HeaderBytes bytes{};
        std::copy_n(received.begin(), bytes.size(), bytes.begin());
        const auto header = hislip::parseHeader(bytes);
        require(header.has_value());
        require(header->length <= hislip::kLongestData);
        require(hislip::nameOf(header->type) != "VendorSpecific");
        const auto size = hislip::kHeaderSize + static_cast<std::size_t>(header->length);
        return received.size() < size ? std::nullopt : std::optional(size);
    }

    tcp::socket socket;
    std::string received;
};

/// A server and a client whose two channels are open, for one input.
class Bench
{
public:
    Bench()
    {
        one_.send(hislip::encode({hislip::Type::Initialize, 0, 0x02000000}, "hislip0"));
        work();
        other_.send(hislip::encode({hislip::Type::AsyncInitialize, 0, 1}));
        work();
    }

    void work()
    {
        while (context_.poll() > 0) {
        }
        one_.receive();
        other_.receive();
    }

    void act(Input& input)
    {
        const auto how = input.number();
        auto& channel = (how & 1U) != 0 ? one_ : other_;
        if ((how & 0xF0U) == 0xF0U)
            channel.send(input.take<std::string>(how & 0x0EU));
        else
            channel.send(message(how, input));
        work();
    }

    void expectService()
    {
        Connected good(clientContext_, server_);
        good.send(hislip::encode({hislip::Type::Initialize, 0, 0x01000000}));
        work();
        good.receive();
        require(good.received.empty());
    }

private:
    static std::string message(std::uint8_t how, Input& input)
    {
        hislip::Header header;
        header.type = static_cast<hislip::Type>(input.number());
        header.control = (how & 2U) != 0 ? input.number() : 0;
        header.parameter = (how & 4U) != 0 ? input.number() : 0xFFFFFF00U + input.number();
        auto bytes = hislip::encode(header, input.take<std::string>(input.number() % 64U));
        // A length that lies.
        if ((how & 8U) != 0)
            bytes[8U + input.number() % 8U] = static_cast<char>(input.number());
        return bytes;
    }

    static tcp::endpoint endpointOf(const std::string& address)
    {
        return {asio::ip::address_v4::loopback(),
                static_cast<unsigned short>(std::stoi(address.substr(address.rfind(':') + 1)))};
    }

    asio::io_context context_{1};
    asio::io_context clientContext_{1};
    VirtualInstrument instrument_{{}, [] { return InstrumentClock::Duration(0); }};
    Journal journal_{[](const std::string&) {}, true};
    Server program_{context_, instrument_, journal_};
    tcp::endpoint server_ = endpointOf(program_.listenHislip("127.0.0.1", 0));
    Connected one_{clientContext_, server_};
    Connected other_{clientContext_, server_};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bench bench;
    for (Input input({data, size}); !input.isOver();)
        bench.act(input);
    bench.expectService();
    return 0;
}
