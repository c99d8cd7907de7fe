#include "virtual_instrument/options.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/console.h"
#include "virtual_instrument/transport/error_text.h"
#include "virtual_instrument/transport/journal.h"
#include "virtual_instrument/transport/server.h"
#include "virtual_instrument/transport/standard_input.h"

#include <asio.hpp>
#include <chrono>
#include <exception>
#include <iostream>
#include <string>

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

std::string listenText(const std::string& address, unsigned short port)
{
    return "listen on " + address + ':' + std::to_string(port);
}

/// Scripts read these lines to learn where to connect; each is flushed as soon as it is true.
void announce(const std::string& line)
{
    std::cout << line << std::endl;
}

void startTransports(Server& server, const Options& options)
{
    announce("listening on " + startOrExplain(listenText(options.bindAddress, options.port),
                                              [&] { return server.listen(options.bindAddress, options.port); }));
    if (options.serial)
        announce("serial line at " + startOrExplain("offer a serial line", [&] { return server.openSerial(); }));
    if (const auto port = options.controlPort)
        announce("test control on " +
                 startOrExplain(listenText("127.0.0.1", *port), [&] { return server.listenControl(*port); }));
}

void run(const Options& options)
{
    asio::io_context context(1);
    VirtualInstrument instrument(options.instrument, steadyTime);
    for (const auto& [channel, ohms] : options.loads)
        instrument.supply().setLoad(channel, ohms);
    Journal journal(std::cerr, options.trace);
    Server server(context, instrument, journal);

    asio::signal_set signals(context);
    for (const int signal : stopSignals())
        signals.add(signal);
    signals.async_wait([&context](asio::error_code, int) { context.stop(); });
    if (options.untilStdinCloses)
        startOrExplain("watch the standard input",
                       [&] { whenStandardInputEnds(context, [&context] { context.stop(); }); });
    startTransports(server, options);
    context.run();
}

} // namespace

int main(int argumentCount, char** arguments)
{
    writePlainLineFeeds();
    try {
        const auto commandLine = parseCommandLine(argumentCount, arguments);
        if (!commandLine.options)
            return commandLine.exitCode;
        run(*commandLine.options);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "kvx2800t-virtual: " << error.what() << std::endl;
        return 1;
    }
}
