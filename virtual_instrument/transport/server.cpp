#include "virtual_instrument/transport/server.h"

#include "virtual_instrument/transport/quiet_wait.h"
#include "virtual_instrument/transport/serial_line.h"
#include "virtual_instrument/transport/vxi11/rpcbind.h"

#include <chrono>
#include <sstream>
#include <utility>

namespace kvxvirtual
{
namespace
{

/// How long to leave a listener alone when the host could not give it a client, for example for want of descriptors.
constexpr std::chrono::milliseconds kAcceptPause{100};

template <class Endpoint>
std::string textOf(const Endpoint& endpoint)
{
    std::ostringstream text;
    text << endpoint;
    return text.str();
}

/// Where the client is; nothing when it has gone already.
std::optional<std::string> clientName(const asio::ip::tcp::socket& socket)
{
    asio::error_code gone;
    const auto endpoint = socket.remote_endpoint(gone);
    return gone ? std::nullopt : std::optional(textOf(endpoint));
}

} // namespace

Server::Server(asio::io_context& context, VirtualInstrument& instrument, Journal& journal)
    : context_(context), instrument_(instrument), journal_(journal),
      control_(instrument, [this] { disconnectClients(); }), hub_(context, instrument, journal), hislip_(hub_),
      vxi11_(hub_)
{
}

Server::~Server()
{
    if (registered_)
        vxi11::unregisterFromRpcbind(*registered_);
}

std::string Server::listen(const std::string& address, unsigned short port)
{
    return listenOn(address, port, [this](Socket socket) { addClient(std::move(socket)); });
}

std::string Server::listenHislip(const std::string& address, unsigned short port)
{
    return listenOn(address, port, [this](Socket socket) { addHislipClient(std::move(socket)); });
}

Server::Vxi11Places Server::listenVxi11(const std::string& address, unsigned short port)
{
    const auto portOfLast = [this] { return listeners_.back().socket.endpoint().port(); };
    listenOn(address, 0, [this](Socket socket) { addAbortClient(std::move(socket)); });
    vxi11_.setAbortPort(portOfLast());
    Vxi11Places places;
    places.core = listenOn(address, port, [this](Socket socket) { addVxi11Client(std::move(socket)); });
    const std::vector<vxi11::PortMapping> mappings{{vxi11::kCoreProgram, vxi11::kVersion, portOfLast()}};
    if (offerPortmapper(address, mappings))
        places.portmapper = address + ':' + std::to_string(vxi11::kPortmapperPort);
    else if (vxi11::registerWithRpcbind(address, mappings.front()))
        registered_ = mappings.front();
    places.isRegistered = registered_.has_value();
    return places;
}

bool Server::offerPortmapper(const std::string& address, const std::vector<vxi11::PortMapping>& mappings)
{
    try {
        const asio::ip::udp::endpoint datagrams(asio::ip::make_address(address), vxi11::kPortmapperPort);
        portmapper_.emplace(context_, datagrams, mappings);
        listenOn(address, vxi11::kPortmapperPort,
                 [this, mappings](Socket socket) { addPortmapperClient(std::move(socket), mappings); });
        return true;
    } catch (const std::system_error&) {
        portmapper_.reset();
        return false;
    }
}

std::string Server::openSerial()
{
    auto line = openSerialLine(context_, instrument_, journal_);
    serial_ = std::move(line.connection);
    return line.path;
}

std::string Server::listenControl(const std::string& address, unsigned short port, std::optional<std::string> token)
{
    return listenOn(address, port, [this, token = std::move(token)](Socket socket) {
        const auto name = clientName(socket);
        if (!name)
            return;
        std::make_shared<ControlConnection>(std::move(socket), *name, control_, journal_, token, [this](auto action) {
            whenQuiet(std::move(action));
        })->start();
    });
}

std::string Server::listenOn(const std::string& address, unsigned short port, Accepted accepted)
{
    const asio::ip::tcp::endpoint endpoint(asio::ip::make_address(address), port);
    auto& listener = listeners_.emplace_back(context_, endpoint, std::move(accepted));
    waitForClients(listener);
    return textOf(listener.socket.endpoint());
}

void Server::waitForClients(Listener& listener)
{
    listener.socket.wait([this, &listener](asio::error_code error) {
        if (error == asio::error::operation_aborted)
            return;
        if (!error && acceptWaiting(listener))
            return waitForClients(listener);
        pauseBeforeClients(listener);
    });
}

void Server::pauseBeforeClients(Listener& listener)
{
    const auto pause = std::make_shared<asio::steady_timer>(context_, kAcceptPause);
    pause->async_wait([this, pause, &listener](asio::error_code) { waitForClients(listener); });
}

bool Server::acceptWaiting(Listener& listener)
{
    while (true) {
        Socket socket(context_);
        if (const asio::error_code error = listener.socket.accept(socket))
            return error == asio::error::would_block;
        // A reply is one small write; it must not wait for the acknowledgement of the one before.
        asio::error_code ignored;
        socket.set_option(asio::ip::tcp::no_delay(true), ignored);
        listener.accepted(std::move(socket));
    }
}

void Server::addClient(Socket socket)
{
    using Client = MessageConnection<Socket>;
    const auto name = clientName(socket);
    if (!name)
        return;
    const auto ended = [this](Client& client) {
        journal_.clientWent(client.name());
        clients_.erase(client.shared_from_this());
    };
    const auto client = std::make_shared<Client>(std::move(socket), *name, instrument_, journal_, ended, HttpGuard());
    clients_.insert(client);
    journal_.clientCame(client->name());
    client->start();
}

void Server::addHislipClient(Socket socket)
{
    const auto name = clientName(socket);
    if (!name)
        return;
    clients_.insert(hislip_.serve(std::move(socket), *name, [this](const std::shared_ptr<Connection>& connection) {
        clients_.erase(connection);
    }));
}

std::function<void(const std::shared_ptr<Connection>&)> Server::forget()
{
    return [this](const std::shared_ptr<Connection>& client) { clients_.erase(client); };
}

void Server::keep(const std::shared_ptr<Connection>& client)
{
    if (client != nullptr)
        clients_.insert(client);
}

void Server::addVxi11Client(Socket socket)
{
    if (const auto name = clientName(socket))
        keep(vxi11_.serveCore(std::move(socket), *name, forget()));
}

void Server::addAbortClient(Socket socket)
{
    keep(vxi11_.serveAbort(std::move(socket), forget()));
}

void Server::addPortmapperClient(Socket socket, const std::vector<vxi11::PortMapping>& mappings)
{
    const auto client = std::make_shared<vxi11::RpcConnection>(
        std::move(socket), std::make_unique<vxi11::PortmapperService>(mappings), forget());
    keep(client);
    client->start();
}

void Server::disconnectClients()
{
    const auto clients = clients_;
    for (const auto& client : clients)
        client->close();
}

void Server::whenQuiet(std::function<void()> action)
{
    // A client that the host has connected may have sent before this server has taken it.
    for (auto& listener : listeners_)
        acceptWaiting(listener);
    std::vector<std::shared_ptr<Connection>> connections(clients_.begin(), clients_.end());
    if (serial_)
        connections.push_back(serial_);
    QuietWait::start(context_, connections, std::move(action));
}

} // namespace kvxvirtual
