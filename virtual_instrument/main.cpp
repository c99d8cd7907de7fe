#include "virtual_instrument/options.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/console.h"
#include "virtual_instrument/transport/error_text.h"
#include "virtual_instrument/transport/journal.h"
#include "virtual_instrument/transport/mdns/mdns_responder.h"
#include "virtual_instrument/transport/output_queue.h"
#include "virtual_instrument/transport/server.h"
#include "virtual_instrument/transport/standard_input.h"
#include "virtual_instrument/transport/vxi11/portmapper.h"

#include <asio.hpp>
#include <charconv>
#include <chrono>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace kvxvirtual;

InstrumentClock::Duration steadyTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// Runs `start` and says what could not be had when it fails.
template <class Start>
auto startOrExplain(const std::string& what, Start start)
{
    try {
        return start();
    } catch (const std::system_error& error) {
        throw std::runtime_error("cannot " + what + ": " + messageOf(error.code()));
    }
}

constexpr auto kLoopback = "127.0.0.1";

std::string listenText(const std::string& address, unsigned short port)
{
    return "listen on " + address + ':' + std::to_string(port);
}

/// The port of "127.0.0.1:5025".
unsigned short portOf(const std::string& endpoint)
{
    unsigned short port = 0;
    std::from_chars(endpoint.data() + endpoint.rfind(':') + 1, endpoint.data() + endpoint.size(), port);
    return port;
}

void startVxi11(Server& server, const Options& options, OutputQueue& output, Journal& journal,
                std::vector<mdns::Service>& services)
{
    const unsigned short port = *options.vxi11Port;
    const auto places = startOrExplain(listenText(options.bindAddress, port),
                                       [&] { return server.listenVxi11(options.bindAddress, port); });
    output.add("VXI-11 on " + places.core);
    if (!places.portmapper.empty())
        output.add("portmapper on " + places.portmapper);
    else if (places.isRegistered)
        output.add("registered with the portmapper of this machine");
    else
        journal.warn("clients of VXI-11 do not find this instrument without a portmapper: allow the program port " +
                     std::to_string(vxi11::kPortmapperPort) +
                     " (setcap cap_net_bind_service=+ep), or start rpcbind before it");
    if (!places.portmapper.empty() || places.isRegistered)
        services.push_back({"_vxi-11._tcp", vxi11::kPortmapperPort});
}

/// The lines that scripts read to learn where to connect; each leaves as soon as it is true.
/// @return the services that can be announced, the raw socket first
std::vector<mdns::Service> startTransports(Server& server, const Options& options, OutputQueue& output,
                                           Journal& journal)
{
    std::vector<mdns::Service> services;
    const std::string socket = startOrExplain(listenText(options.bindAddress, options.port),
                                              [&] { return server.listen(options.bindAddress, options.port); });
    output.add("listening on " + socket);
    services.push_back({"_scpi-raw._tcp", portOf(socket)});
    if (const auto port = options.hislipPort) {
        const std::string hislip = startOrExplain(listenText(options.bindAddress, *port),
                                                  [&] { return server.listenHislip(options.bindAddress, *port); });
        output.add("HiSLIP on " + hislip);
        services.push_back({"_hislip._tcp", portOf(hislip)});
    }
    if (options.vxi11Port)
        startVxi11(server, options, output, journal, services);
    if (options.serial)
        output.add("serial line at " + startOrExplain("offer a serial line", [&] { return server.openSerial(); }));
    if (const auto port = options.controlPort) {
        const std::string address = options.controlToken ? options.bindAddress : kLoopback;
        output.add("test control on " + startOrExplain(listenText(address, *port), [&] {
                       return server.listenControl(address, *port, options.controlToken);
                   }));
    }
    return services;
}

/// Several instruments of one host differ in the port of their raw sockets.
std::unique_ptr<MdnsResponder> startMdns(asio::io_context& context, const Options& options,
                                         const std::vector<mdns::Service>& services, OutputQueue& output)
{
    const std::string name = "kvx2800t-virtual-" + std::to_string(services.front().port);
    auto responder = startOrExplain("announce services", [&] {
        return std::make_unique<MdnsResponder>(context, asio::ip::make_address_v4(options.bindAddress),
                                               mdns::ServiceRecords(services, options.instrument.identity, name));
    });
    output.add("announced as " + name + ".local");
    return responder;
}

void warnOfNetwork(Journal& journal, const Options& options)
{
    if (asio::ip::make_address(options.bindAddress).is_loopback())
        return;
    journal.warn("anyone who reaches " + options.bindAddress +
                 " can operate this instrument: its port has no password");
    if (options.controlToken)
        journal.warn("whoever listens on the network sees the token of the test control");
}

OutputQueue::Write writerTo(StandardOutput output)
{
    return [output](std::string_view bytes) { writeTo(output, bytes); };
}

void run(const Options& options, OutputQueue& output, OutputQueue& errors)
{
    asio::io_context context(1);
    VirtualInstrument instrument(options.instrument, steadyTime);
    for (const auto& [channel, ohms] : options.loads)
        instrument.supply().setLoad(channel, ohms);
    Journal journal([&errors](std::string line) { errors.add(std::move(line)); }, options.trace);
    warnOfNetwork(journal, options);
    Server server(context, instrument, journal);

    asio::signal_set signals(context);
    for (const int signal : stopSignals())
        signals.add(signal);
    signals.async_wait([&context](asio::error_code, int) { context.stop(); });
    if (options.untilStdinCloses)
        startOrExplain("watch the standard input",
                       [&] { whenStandardInputEnds(context, [&context] { context.stop(); }); });
    const auto services = startTransports(server, options, output, journal);
    const auto responder = options.mdns ? startMdns(context, options, services, output) : nullptr;
    context.run();
}

constexpr std::string_view kComplaint = "kvx2800t-virtual: ";

/// The exit code, behind lines that leave without holding the instrument up.
int runWithOutputs(const Options& options)
{
    OutputQueue output(writerTo(StandardOutput::Output));
    OutputQueue errors(writerTo(StandardOutput::Errors));
    try {
        run(options, output, errors);
        return 0;
    } catch (const std::exception& error) {
        errors.add(std::string(kComplaint) + error.what());
        return 1;
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    try {
        writePlainLineFeeds();
        outliveReaders();
        const auto commandLine = parseCommandLine(argumentCount, arguments);
        return commandLine.options ? runWithOutputs(*commandLine.options) : commandLine.exitCode;
    } catch (const std::exception& error) {
        // Piece by piece: there may be no memory for one text.
        for (const std::string_view text : {kComplaint, std::string_view(error.what()), std::string_view("\n")})
            writeTo(StandardOutput::Errors, text);
        return 1;
    }
}
