#include "visa/discovery/lan_search.h"

#include "visa/discovery/announced_services.h"
#include "visa/discovery/get_port_message.h"

#include <array>
#include <deque>
#include <random>

namespace visa
{
namespace
{

using asio::ip::udp;

/// A socket of one interface with what arrives at it.
struct Listener
{
    Listener(asio::io_context& context) : socket(context) {}

    udp::socket socket;
    udp::endpoint sender{};
    std::array<std::uint8_t, 9000> message{};
};

/// The search on all interfaces beside each other, in the thread that runs it.
class RunningSearch
{
public:
    explicit RunningSearch(const LanSearch& search) : search_(search)
    {
        for (const NetworkInterface& found : search.interfaces) {
            startMulticastDns(found);
            startBroadcast(found);
        }
    }

    std::vector<std::string> run()
    {
        if (!listeners_.empty())
            context_.run_for(search_.duration);
        std::vector<std::string> names = services_.resourceNames();
        names.insert(names.end(), servers_.begin(), servers_.end());
        return names;
    }

private:
    /// @return null where the host gives none for this interface
    Listener* open(const NetworkInterface& on)
    {
        Listener& listener = listeners_.emplace_back(context_);
        asio::error_code error;
        listener.socket.open(udp::v4(), error);
        if (!error)
            listener.socket.bind({on.address, 0}, error);
        if (!error)
            return &listener;
        listeners_.pop_back();
        return nullptr;
    }

    void startMulticastDns(const NetworkInterface& on)
    {
        Listener* const listener = open(on);
        if (listener == nullptr)
            return;
        // Messages of multicast DNS that have passed a router are not taken.
        constexpr int kHops = 255;
        asio::error_code ignored;
        listener->socket.set_option(asio::ip::multicast::outbound_interface(on.address), ignored);
        listener->socket.set_option(asio::ip::multicast::hops(kHops), ignored);
        const DnsBytes query = serviceQuery(AnnouncedServices::wanted());
        listener->socket.send_to(asio::buffer(query), search_.multicastDns, 0, ignored);
        receive(*listener, &RunningSearch::takeAnnouncement);
    }

    void startBroadcast(const NetworkInterface& on)
    {
        Listener* const listener = open(on);
        if (listener == nullptr)
            return;
        asio::error_code ignored;
        listener->socket.set_option(udp::socket::broadcast(true), ignored);
        broadcaster_ = listener;
        askForServer(*listener, on.broadcast.value_or(on.address));
        receive(*listener, &RunningSearch::takeServer);
    }

    void askForServer(Listener& listener, const asio::ip::address_v4& whom)
    {
        asio::error_code ignored;
        listener.socket.send_to(asio::buffer(getPortCall(identifier_)), {whom, search_.portmapperPort}, 0, ignored);
    }

    using Take = void (RunningSearch::*)(std::span<const std::uint8_t> message, const asio::ip::address_v4& sender);

    void receive(Listener& listener, Take take)
    {
        listener.socket.async_receive_from(
            asio::buffer(listener.message), listener.sender,
            [this, &listener, take](const asio::error_code& error, std::size_t size) {
                // On Windows a host without a portmapper makes an error of the socket that has asked.
                if (!error)
                    (this->*take)({listener.message.data(), size}, listener.sender.address().to_v4());
                if (--answersLeft_ > 0)
                    receive(listener, take);
                else
                    context_.stop();
            });
    }

    void takeAnnouncement(std::span<const std::uint8_t> message, const asio::ip::address_v4& sender)
    {
        const auto records = readDnsAnswer(message);
        if (!records)
            return;
        services_.add(*records, sender);
        if (broadcaster_ != nullptr && AnnouncedServices::hasInstrument(*records))
            askForServer(*broadcaster_, sender);
    }

    void takeServer(std::span<const std::uint8_t> message, const asio::ip::address_v4& sender)
    {
        if (readGetPortReply(message, identifier_))
            servers_.push_back("TCPIP0::" + sender.to_string() + "::inst0::INSTR");
    }

    const LanSearch& search_;
    asio::io_context context_{1};
    std::deque<Listener> listeners_{};
    Listener* broadcaster_ = nullptr;
    AnnouncedServices services_{};
    std::vector<std::string> servers_{};
    const std::uint32_t identifier_ = std::random_device()();
    int answersLeft_ = 1000;
};

} // namespace

std::vector<std::string> lanInstruments(const LanSearch& search)
{
    return RunningSearch(search).run();
}

std::vector<std::string> findLanInstruments()
{
    LanSearch search;
    search.interfaces = networkInterfaces();
    return lanInstruments(search);
}

} // namespace visa
