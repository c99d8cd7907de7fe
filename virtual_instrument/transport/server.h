#pragma once

#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/control_connection.h"
#include "virtual_instrument/transport/hislip/hislip_server.h"
#include "virtual_instrument/transport/journal.h"
#include "virtual_instrument/transport/link/link_hub.h"
#include "virtual_instrument/transport/listening_socket.h"
#include "virtual_instrument/transport/message_connection.h"
#include "virtual_instrument/transport/test_control.h"
#include "virtual_instrument/transport/vxi11/portmapper.h"
#include "virtual_instrument/transport/vxi11/vxi11_server.h"

#include <asio.hpp>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kvxvirtual
{

/// Offers one instrument on any number of transports. Everything happens in the thread that runs `context`; the
/// references must outlive the server, and the server must outlive the running of `context`.
class Server
{
public:
    Server(asio::io_context& context, VirtualInstrument& instrument, Journal& journal);
    ~Server();

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Takes clients on a raw socket; port 0 takes any free port. Returns where it listens, as `127.0.0.1:5025`.
    /// Throws std::system_error when the address cannot be had.
    std::string listen(const std::string& address, unsigned short port);

    /// Takes clients of HiSLIP, otherwise as listen().
    std::string listenHislip(const std::string& address, unsigned short port);

    /// Where VXI-11 is, and who tells its clients of it: a portmapper of its own at the same address, or the one that
    /// runs on this machine already, or nobody.
    struct Vxi11Places
    {
        std::string core;
        std::string portmapper; ///< empty when there is none of its own
        bool isRegistered = false;
    };
    /// Takes clients of VXI-11; `port` is that of the core channel. As listen().
    Vxi11Places listenVxi11(const std::string& address, unsigned short port);

    /// Offers a serial line; returns the path that clients open. Throws std::system_error.
    std::string openSerial();

    /// Offers the test control, to clients that show the token when there is one; otherwise as listen().
    std::string listenControl(const std::string& address, unsigned short port, std::optional<std::string> token);

private:
    using Socket = asio::ip::tcp::socket;
    using Accepted = std::function<void(Socket)>;

    struct Listener
    {
        Listener(asio::io_context& context, const ListeningSocket::Endpoint& endpoint, Accepted then)
            : socket(context, endpoint), accepted(std::move(then))
        {
        }

        ListeningSocket socket;
        Accepted accepted;
    };

    std::string listenOn(const std::string& address, unsigned short port, Accepted accepted);
    void waitForClients(Listener& listener);
    void pauseBeforeClients(Listener& listener);
    /// Takes every client that is waiting; whether the host could give them all.
    bool acceptWaiting(Listener& listener);
    void addClient(Socket socket);
    void addHislipClient(Socket socket);
    void addVxi11Client(Socket socket);
    void addAbortClient(Socket socket);
    void addPortmapperClient(Socket socket, const std::vector<vxi11::PortMapping>& mappings);
    bool offerPortmapper(const std::string& address, const std::vector<vxi11::PortMapping>& mappings);
    void keep(const std::shared_ptr<Connection>& client);
    std::function<void(const std::shared_ptr<Connection>&)> forget();
    void disconnectClients();
    void whenQuiet(std::function<void()> action);

    asio::io_context& context_;
    VirtualInstrument& instrument_;
    Journal& journal_;
    TestControl control_;
    LinkHub hub_;
    hislip::HislipServer hislip_;
    vxi11::Vxi11Server vxi11_;
    std::optional<vxi11::PortmapperDatagrams> portmapper_;
    std::optional<vxi11::PortMapping> registered_; ///< with the portmapper of this machine
    std::list<Listener> listeners_;
    std::set<std::shared_ptr<Connection>> clients_;
    std::shared_ptr<Connection> serial_;
};

} // namespace kvxvirtual
