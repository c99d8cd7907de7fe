#include "virtual_instrument/options.h"

#include "virtual_instrument/scpi/command_table.h"
#include "virtual_instrument/scpi/text.h"
#include "virtual_instrument/transport/test_control.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

namespace kvxvirtual
{
namespace
{

constexpr int kUsageError = 2;
/// As IANA has it.
constexpr unsigned short kHislipPort = 4880;
constexpr int kLongestSettleMilliseconds = 3'600'000;
constexpr std::size_t kLongestToken = 1024;

struct LoadOption
{
    int channel = 0;
    LoadText load;
};

/// Reads `CH1=10`.
std::optional<LoadOption> parseLoadOption(std::string_view text)
{
    const auto equals = text.find('=');
    if (equals == std::string_view::npos)
        return std::nullopt;
    const auto channel = channelNamed(text.substr(0, equals));
    const auto load = parseLoad(text.substr(equals + 1));
    if (!channel || !load.valid)
        return std::nullopt;
    return LoadOption{*channel, load};
}

std::string checkLoadOption(const std::string& text)
{
    return parseLoadOption(text) ? std::string() : "not <channel>=<ohms> or <channel>=open: " + text;
}

/// One word, which a line of the test control can hold.
std::string checkToken(const std::string& text)
{
    const bool isWord = !text.empty() && std::none_of(text.begin(), text.end(), isBlank);
    return isWord && text.size() <= kLongestToken ? std::string() : "not one word of at most 1024 bytes";
}

} // namespace

CommandLine parseCommandLine(int argumentCount, const char* const* arguments)
{
    Options options;
    unsigned short hislipPort = 0;
    unsigned short vxi11Port = 0;
    unsigned short controlPort = 0;
    std::string controlToken;
    int settleMilliseconds = static_cast<int>(options.instrument.settleTime.count());
    std::vector<std::string> loads;
    bool listCommands = false;

    CLI::App app("A stateful KVX2833T power supply in software, for tests, demos and users without hardware.",
                 "kvx2800t-virtual");
    app.set_version_flag("--version", "kvx2800t-virtual " KVX_VIRTUAL_INSTRUMENT_VERSION);
    // Texts may begin with a slash on every host.
    app.allow_windows_style_options(false);
    app.add_option("--port", options.port, "TCP port of the raw socket, 0 for any free one")->capture_default_str();
    app.add_option("--bind", options.bindAddress, "address of the raw socket")
        ->check(CLI::ValidIPV4)
        ->capture_default_str();
    app.add_flag("--serial", options.serial, "offer a serial line (a pseudo terminal) and print its path");
    auto* const hislip =
        app.add_option("--hislip", hislipPort, "TCP port of HiSLIP, 4880 without a number, 0 for any free one")
            ->expected(0, 1);
    auto* const vxi11 =
        app.add_option("--vxi11", vxi11Port,
                       "offer VXI-11 and a portmapper; TCP port of its core channel, any free one without a number")
            ->expected(0, 1);
    app.add_flag("--mdns", options.mdns, "announce the services on the network of --bind (multicast DNS)");
    auto* const control =
        app.add_option("--control-port", controlPort, "TCP port of the test control on 127.0.0.1, 0 for any free one");
    app.add_option("--control-token", controlToken,
                   "offer the test control where --bind says, to those who send \"token TOKEN\" first")
        ->check(CLI::Validator(checkToken, "TOKEN"))
        ->needs(control);
    app.add_option("--load", loads, "connect a load: CH1=10 (ohms) or CH1=open; may be repeated")
        ->check(CLI::Validator(checkLoadOption, "CHANNEL=OHMS"))
        ->take_all();
    app.add_option("--settle-ms", settleMilliseconds, "how long outputs settle after a change of the source mode")
        ->check(CLI::Range(0, kLongestSettleMilliseconds))
        ->capture_default_str();
    app.add_option("--idn", options.instrument.identity, "reply to *IDN?")->capture_default_str();
    app.add_flag("--boolean-words", options.instrument.wording.booleanWords, "answer ON and OFF instead of 1 and 0");
    app.add_flag("--alternate-keywords", options.instrument.wording.alternateKeywords,
                 "answer CH5, CH6, 4K, 8K instead of SER, PAR, 4000, 8000");
    app.add_flag("--trace", options.trace, "show every message and reply with a time stamp");
    app.add_flag("--until-stdin-closes", options.untilStdinCloses, "end when the standard input reaches its end");
    app.add_flag("--commands", listCommands, "print the command table as Markdown and end");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? 0 : kUsageError};
    }
    if (listCommands) {
        std::cout << commandTableAsMarkdown();
        return {};
    }

    if (hislip->count() > 0)
        options.hislipPort = hislip->results().front().empty() ? kHislipPort : hislipPort;
    if (vxi11->count() > 0)
        options.vxi11Port = vxi11Port;
    if (control->count() > 0)
        options.controlPort = controlPort;
    if (!controlToken.empty())
        options.controlToken = controlToken;
    options.instrument.settleTime = std::chrono::milliseconds(settleMilliseconds);
    for (const auto& text : loads) {
        if (const auto load = parseLoadOption(text))
            options.loads.emplace_back(load->channel, load->load.ohms);
    }
    return {std::move(options), 0};
}

} // namespace kvxvirtual
